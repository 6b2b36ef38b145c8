#include "cli/TextFile.h"

#include "cli/Fingerprint.h"
#include "cli/XmlTags.h"
#include "tests/cli/CliRun.h"

namespace encap::test {
namespace {

std::string Bytes16(const std::u16string& units, bool isBigEndian)
{
    std::string bytes;
    for (const char16_t unit : units) {
        const char high = static_cast<char>(unit >> 8);
        const char low = static_cast<char>(unit & 0xFF);
        bytes += isBigEndian ? high : low;
        bytes += isBigEndian ? low : high;
    }
    return bytes;
}

// One text, every way in which a file can hold it.
TEST(TextFile, EncodingsGiveTheSameText)
{
    const TemporaryFolder folder;
    const CString text = L"<F a='\xE4\u20AC'>12345678 and more \xFC</F>";
    const std::u16string units = platform::WideToUtf16(text);
    const std::string utf8 = platform::WideToUtf8(text);
    const std::string files[] = {
        utf8,
        "\xEF\xBB\xBF" + utf8,
        "\xFF\xFE" + Bytes16(units, false),
        "\xFE\xFF" + Bytes16(units, true),
        Bytes16(units, false),
        Bytes16(units, true),
    };
    for (const std::string& bytes : files) {
        WriteFile(folder, L"f.xml", bytes);
        EXPECT_EQ(text, cli::ReadXmlFile(folder.File(L"f.xml"), nullptr));
    }
    WriteFile(folder, L"f.xml",
              "<?xml version='1.0' encoding='windows-1252'?><F a='\xE4\x80'>x</F>");
    EXPECT_NE(CString::npos, cli::ReadXmlFile(folder.File(L"f.xml"), nullptr).find(L"\xE4\u20AC"));
}

TEST(TextFile, Utf8IsStrict)
{
    const struct {
        std::string bytes;
        std::size_t position;
    } bad[] = {
        {"\x80", 0},
        {"12345678\xC3", 8},
        {"a\xC0\x80", 1},
        {"\xE0\x80\x80", 0},
        {"\xED\xA0\x80", 0},
        {"\xF4\x90\x80\x80", 0},
        {"\xF5\x80\x80\x80", 0},
        {"\xC3(", 0},
        {std::string("1234\0", 5) + "678", 4},
    };
    CString text;
    std::size_t position = 0;
    for (const auto& [bytes, place] : bad) {
        EXPECT_FALSE(cli::DecodeUtf8(bytes, text, position));
        EXPECT_EQ(place, position);
    }
    for (const char* good : {"", "\x7F", "\xC2\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "12345678",
                             "\xF0\x90\x80\x80 12345678", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(cli::DecodeUtf8(good, text, position));
        EXPECT_EQ(good, platform::WideToUtf8(text));
    }
}

TEST(TextFile, Utf16PairsMustBeWhole)
{
    CString text;
    std::size_t position = 0;
    EXPECT_TRUE(cli::DecodeUtf16(Bytes16(u"a\U0001F600z", true), true, text, position));
    EXPECT_EQ("a\xF0\x9F\x98\x80z", platform::WideToUtf8(text));
    for (const std::u16string& bad : {std::u16string(u"a\xD83D"), std::u16string(u"a\xDE00z"),
                                      std::u16string(u"a\xD83Dz"), std::u16string(u"a\0z", 3)}) {
        EXPECT_FALSE(cli::DecodeUtf16(Bytes16(bad, false), false, text, position));
        EXPECT_EQ(2U, position);
    }
    EXPECT_FALSE(cli::DecodeUtf16("a\0b", false, text, position));
}

TEST(XmlTags, AreWalkedOverWithoutATree)
{
    const auto names = [](const wchar_t* text) {
        CString found;
        for (cli::XmlTags tags(text); tags.Next();) {
            found += CString(tags.Name()) + L' ';
        }
        return found;
    };
    EXPECT_EQ(L"a c c a ", names(L"<a><c/><c x='>'>1</a>"));
    EXPECT_EQ(L"a c c ", names(L"<?xml version='1.0'?><!-- <b> --><a><![CDATA[<b>]]><c></c>"));
    for (const wchar_t* text : {L"", L"c", L"<a", L"<a x='", L"<!-- <c/>", L"<![CDATA[<c>"}) {
        EXPECT_EQ(L"", names(text)) << platform::WideToUtf8(text);
    }
}

TEST(Fingerprint, TellsSequencesApart)
{
    const auto hex = [](const std::vector<std::string>& texts) {
        cli::Fingerprint fingerprint;
        for (const std::string& text : texts) {
            fingerprint.Add(text);
        }
        return fingerprint.Hex();
    };
    // By hand from the definition of FNV-1a, each text behind its length in eight bytes.
    EXPECT_EQ("6c62272e07bb014262b821756295c58d", hex({}));
    EXPECT_EQ("426d56754e03ad9adb79f299c730f21f", hex({"a"}));
    EXPECT_EQ("49d306c34319fab14b922e81f1c859bd", hex({"", std::string(40, '\xFF')}));
    const std::vector<std::vector<std::string>> sequences = {
        {}, {""}, {"", ""}, {"a"}, {"b"}, {"ab"}, {"a", "b"}, {"b", "a"}, {"a", "b", ""}};
    std::set<std::string> seen;
    for (const auto& sequence : sequences) {
        EXPECT_EQ(32U, hex(sequence).size());
        EXPECT_TRUE(seen.insert(hex(sequence)).second);
    }
}

} // namespace
} // namespace encap::test
