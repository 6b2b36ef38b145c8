#include "encap/platform/Encoding.h"

#include "encap/foundation/CodePoints.h"

#include <random>

#include <gtest/gtest.h>

namespace encap::platform {
namespace {

CString Wide(std::initializer_list<uint32_t> units)
{
    CString text;
    for (const uint32_t unit : units) {
        text += static_cast<wchar_t>(unit);
    }
    return text;
}

CString WideOfCodePoint(char32_t codePoint)
{
    wchar_t units[2];
    return CString(units, WriteCodePoint(units, codePoint));
}

TEST(Encoding, EveryCharacterSurvivesUtf8AndUtf16)
{
    // Beyond the first plane every 23rd, and the last.
    for (char32_t c = 0; c <= kLastCodePoint; c += c < 0x10000                ? 1
                                                   : c + 23 <= kLastCodePoint ? 23
                                                                              : 1) {
        const CString text = WideOfCodePoint(c);
        if (!IsSurrogate(c)) {
            const std::size_t length = c < 0x80 ? 1U : c < 0x800 ? 2U : c < 0x10000 ? 3U : 4U;
            const std::string utf8 = WideToUtf8(text);
            ASSERT_EQ(utf8.size(), length) << static_cast<uint32_t>(c);
            ASSERT_EQ(Utf8ToWide(utf8), text) << static_cast<uint32_t>(c);
        }
        const std::u16string units = WideToUtf16(text);
        ASSERT_EQ(units.size(), c < 0x10000 ? 1U : 2U);
        ASSERT_EQ(Utf16ToWide(units), text) << static_cast<uint32_t>(c);
    }
}

TEST(Encoding, KnownBytes)
{
    EXPECT_EQ(WideToUtf8(L"\u00E4\u20AC\U0001F600"), "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(WideToUtf16(L"A\U0001F600"), (std::u16string{u'A', 0xD83D, 0xDE00}));
    EXPECT_EQ(Utf16ToWide(u"A\U0001F600"), L"A\U0001F600");
}

TEST(Encoding, LoneSurrogatesBecomeReplacementsInUtf8AndPassThroughUtf16)
{
    const CString alone = Wide({0xD800, 'a', 0xDC00, 0xD800, 0xD800});
    EXPECT_EQ(WideToUtf8(alone), "\xEF\xBF\xBD"
                                 "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(Utf16ToWide(WideToUtf16(alone)), alone);
    EXPECT_EQ(WideToUtf8(Wide({0xD83D, 0xDE00})), "\xF0\x9F\x98\x80");
    if constexpr (sizeof(wchar_t) == 4) {
        EXPECT_EQ(WideToUtf8(Wide({0x110000, 0xFFFFFFFF})), "\xEF\xBF\xBD\xEF\xBF\xBD");
        EXPECT_EQ(WideToUtf16(Wide({0x110000})), u"\uFFFD");
    }
}

TEST(Encoding, MalformedUtf8BecomesOneReplacementPerBrokenSequence)
{
    const std::pair<std::string, const wchar_t*> cases[] = {
        {"\x80", L"\uFFFD"},                               // no first byte
        {"\xC3", L"\uFFFD"},                               // cut off
        {"\xC3(", L"\uFFFD("},                             // wrong second byte
        {"\xC0\xAF", L"\uFFFD\uFFFD"},                     // overlong
        {"\xE0\x80\x80", L"\uFFFD\uFFFD\uFFFD"},           // overlong
        {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},           // surrogate
        {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"}, // past U+10FFFF
        {"\xE2\x82"
         "A\xF0\x9F\x98",
         L"\uFFFDA\uFFFD"},                        // cut off twice
        {"\xFF\xFE", L"\uFFFD\uFFFD"},             // never in UTF-8
        {"\xF0\x9F\xE2\x82\xAC", L"\uFFFD\u20AC"}, // the next one is whole
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(Utf8ToWide(bytes), text) << testing::PrintToString(bytes);
    }
}

TEST(Encoding, BlocksOfAsciiMeetOtherCharactersAtEveryPosition)
{
    for (std::size_t length = 0; length < 40; ++length) {
        for (std::size_t position = 0; position <= length; ++position) {
            CString text(length, L'x');
            std::string utf8(length, 'x');
            text.insert(position, L"\u00E4\U0001F600\u0000", 3);
            utf8.insert(position, "\xC3\xA4\xF0\x9F\x98\x80", 7);
            text = sizeof(wchar_t) == 2 ? Utf8ToWide(utf8) : text;
            ASSERT_EQ(WideToUtf8(text), utf8);
            ASSERT_EQ(Utf8ToWide(utf8), text);
        }
    }
}

TEST(Encoding, AppendingKeepsAndAssigningReplaces)
{
    std::string utf8 = "a";
    AppendUtf8(utf8, L"\u00E4");
    EXPECT_EQ(utf8, "a\xC3\xA4");
    CString wide = L"a";
    AppendWide(wide, "\xC3\xA4");
    EXPECT_EQ(wide, L"a\u00E4");
    AssignWide(wide, "b");
    EXPECT_EQ(wide, L"b");
}

TEST(Encoding, RandomBytesGiveTextThatSurvives)
{
    std::mt19937 random(3);
    for (int i = 0; i < 20000; ++i) {
        std::string bytes(random() % 24, '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(random() % 3 == 0 ? random() % 128 : 0x80 + random() % 128);
        }
        const CString text = Utf8ToWide(bytes);
        ASSERT_LE(text.size(), bytes.size());
        ASSERT_EQ(Utf8ToWide(WideToUtf8(text)), text);
    }
}

} // namespace
} // namespace encap::platform
