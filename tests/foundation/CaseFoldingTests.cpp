#include "encap/foundation/CaseFolding.h"

#include "encap/foundation/FoldedCharacters.h"
#include "encap/foundation/StringMap.h"

#include <random>
#include <unordered_set>

#include <gtest/gtest.h>

namespace encap {
namespace {

CString Ascii(int first, int last)
{
    CString text;
    for (int c = first; c <= last; ++c) {
        text += static_cast<wchar_t>(c);
    }
    return text;
}

TEST(CaseFolding, AsciiFoldsItsLettersAndNothingElse)
{
    const CString folded = FoldCase(Ascii(0, 0x7F));
    EXPECT_EQ(folded, Ascii(0, 0x40) + L"abcdefghijklmnopqrstuvwxyz" + Ascii(0x5B, 0x7F));
    // "@" and "`", "[" and "{" differ by the same bit as letters do.
    EXPECT_FALSE(EqualNoCase(L"@[", L"`{"));
}

TEST(CaseFolding, CharactersBeyondAsciiFoldOneByOne)
{
    const std::pair<const wchar_t*, const wchar_t*> equal[] = {
        {L"\u00C4pfel", L"\u00E4PFEL"},   // A with diaeresis
        {L"\u0130", L"i"},                // capital I with dot above
        {L"\u212A9", L"K9"},              // Kelvin sign
        {L"\u1E9E", L"\u00DF"},           // sharp s
        {L"\u03A3", L"\u03C3"},           // sigma
        {L"\u0416", L"\u0436"},           // Cyrillic zhe
        {L"\U00010400x", L"\U00010428X"}, // Deseret, beyond the first plane
    };
    for (const auto& [left, right] : equal) {
        SCOPED_TRACE(testing::PrintToString(CString(left)));
        EXPECT_TRUE(EqualNoCase(left, right));
        EXPECT_EQ(CompareNoCase(left, right), 0);
        EXPECT_EQ(FoldCase(std::wstring_view(left)), FoldCase(std::wstring_view(right)));
        EXPECT_EQ(HashNoCase(left), HashNoCase(right));
    }
    EXPECT_FALSE(EqualNoCase(L"\u03C2", L"\u03C3")); // a final sigma is its own lower case
    EXPECT_FALSE(EqualNoCase(L"ss", L"\u00DF"));
    EXPECT_FALSE(EqualNoCase(L"\u0131", L"I")); // dotless i
}

TEST(CaseFolding, OrderIsThatOfTheFoldedTexts)
{
    EXPECT_LT(CompareNoCase(L"abc", L"ABD"), 0);
    EXPECT_GT(CompareNoCase(L"B", L"a"), 0);
    EXPECT_LT(CompareNoCase(L"_", L"A"), 0); // "_" stands before "a", behind "A"
    EXPECT_LT(CompareNoCase(L"AB", L"abc"), 0);
    EXPECT_GT(CompareNoCase(L"a", L""), 0);
    EXPECT_LT(CompareNoCase(L"\uFFFD", L"\U00010400"), 0);
}

TEST(CaseFolding, FoldedTextsOf16BitUnitsJoinTheirPairs)
{
    const auto fold = [](std::u16string_view text) {
        std::u16string out(text.size(), u'\0');
        char16_t* write = out.data();
        for (FoldedCharacters<char16_t> characters(text); !characters.AtEnd();) {
            write = WriteCodePoint(write, characters.Next());
        }
        EXPECT_EQ(write, out.data() + out.size());
        return out;
    };
    EXPECT_EQ(fold(u"A\U00010400\u00C4"), u"a\U00010428\u00E4");
    const std::u16string alone{u'A', char16_t{0xD801}, u'B', char16_t{0xDC00}, char16_t{0xD801}};
    const std::u16string folded{u'a', char16_t{0xD801}, u'b', char16_t{0xDC00}, char16_t{0xD801}};
    EXPECT_EQ(fold(alone), folded);
}

TEST(CaseFolding, FoldingKeepsTheNumberOfUnitsAndIsDone)
{
    for (char32_t c = 0; c <= kLastCodePoint + 2; ++c) {
        const char32_t folded = FoldCodePoint(c);
        ASSERT_EQ(folded > 0xFFFF, c > 0xFFFF) << static_cast<uint32_t>(c);
        ASSERT_EQ(FoldCodePoint(folded), folded) << static_cast<uint32_t>(c);
    }
}

TEST(CaseFolding, EqualTextsHashEqualAtEveryLength)
{
    const CString alphabet = L"aAbBzZ@[`{019_-kK\u212A\u00C4\u00E4\u0130iI\u03A3\u03C3\U00010400";
    std::mt19937 random(7);
    const auto pick = [&](std::size_t count) { return random() % count; };
    for (int i = 0; i < 20000; ++i) {
        CString left(pick(28), L'a');
        for (wchar_t& character : left) {
            character = alphabet[pick(pick(4) == 0 ? alphabet.size() : 12)];
        }
        CString right = FoldCase(std::wstring_view(left));
        ASSERT_TRUE(EqualNoCase(left, right));
        ASSERT_EQ(HashNoCase(left), HashNoCase(right)) << testing::PrintToString(left);
        if (!right.empty()) {
            right[pick(right.size())] = L'#';
            ASSERT_FALSE(EqualNoCase(left, right));
            ASSERT_NE(HashNoCase(left), HashNoCase(right)) << testing::PrintToString(left);
        }
    }
}

TEST(CaseFolding, HashesOfNumberedIdentifiersSpread)
{
    std::unordered_set<std::size_t> whole;
    std::unordered_set<std::size_t> lowBits;
    constexpr std::size_t kCount = 1 << 16;
    for (std::size_t i = 0; i < kCount; ++i) {
        const std::size_t hash = HashNoCase(L"Row" + std::to_wstring(i));
        whole.insert(hash);
        lowBits.insert(hash % kCount);
    }
    EXPECT_EQ(whole.size(), kCount);
    // A random function hits 63 % of as many places.
    EXPECT_GT(lowBits.size(), kCount * 6 / 10);
}

TEST(CaseFolding, MapsFindKeysInAnyCase)
{
    CStringMapTo<int> map;
    map[L"Durchmesser_\u00C4u\u00DFen"] = 1;
    EXPECT_EQ(map.count(L"DURCHMESSER_\u00E4U\u1E9EEN"), 1U);
    EXPECT_NE(map.find(std::wstring_view(L"durchmesser_\u00C4u\u00DFen")), map.end());
    EXPECT_EQ(map.count(L"Durchmesser"), 0U);
}

TEST(CaseFolding, LettersAndDigitsGoByTheirCategories)
{
    for (const wchar_t letter : std::wstring_view(L"azAZ\u00E4\u00DF\u03C3\u4E2D\u05D0\u02B0")) {
        EXPECT_TRUE(IsLetter(letter)) << static_cast<uint32_t>(letter);
        EXPECT_FALSE(IsDecimalDigit(letter)) << static_cast<uint32_t>(letter);
    }
    for (const wchar_t digit : std::wstring_view(L"09\u0661\uFF15")) {
        EXPECT_TRUE(IsDecimalDigit(digit)) << static_cast<uint32_t>(digit);
        EXPECT_FALSE(IsLetter(digit)) << static_cast<uint32_t>(digit);
    }
    // Neither: signs, a superscript, a fraction, a roman numeral, a combining mark.
    for (const wchar_t other : std::wstring_view(L"@[`{/:_ \u00B2\u00BD\u2160\u0301\uFFFF")) {
        EXPECT_FALSE(IsLetter(other) || IsDecimalDigit(other)) << static_cast<uint32_t>(other);
    }
}

} // namespace
} // namespace encap
