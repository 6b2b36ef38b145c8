#include "encap/platform/Files.h"

#include "encap/platform/Guid.h"
#include "tests/xml/XmlTestSupport.h"

#include <filesystem>
#include <regex>

#include <gmock/gmock.h>

namespace {

using namespace encap::platform;

class XmlFiles : public testing::Test {
protected:
    void SetUp() override
    {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        m_directory =
            WithTrailingSeparator(TemporaryDirectory()) + L"encap_xml_" + Utf8ToWide(test->name());
        ASSERT_TRUE(MakeDirectories(m_directory));
    }
    void TearDown() override { std::filesystem::remove_all(WideToUtf8(m_directory)); }

    [[nodiscard]] CString Path(const wchar_t* name) const
    {
        return WithTrailingSeparator(m_directory) + name;
    }
    [[nodiscard]] std::string BytesOf(const wchar_t* name) const
    {
        std::string bytes;
        EXPECT_TRUE(ReadWholeFile(Path(name), bytes));
        return bytes;
    }

    CString m_directory;
};

std::string Utf16(std::string_view utf8, bool isBigEndian)
{
    std::string bytes;
    for (const char16_t unit : WideToUtf16(Utf8ToWide(utf8))) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += isBigEndian ? high : low;
        bytes += isBigEndian ? low : high;
    }
    return bytes;
}

} // namespace

TEST_F(XmlFiles, AreReadAndWrittenInTheirDeclaredEncoding)
{
    const std::string bolt = "\xF0\x9F\x94\xA9";
    const auto text = [](const std::string& encoding, const std::string& content) {
        return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>\n<a x=\"" + content + "\">" +
               content + "</a>\n";
    };
    const std::string wide = text("UTF-16", "\xC3\xA4" + bolt);
    const struct {
        std::string bytes;
        std::string content;
        std::string saved;
    } cases[] = {
        {text("UTF-8", "\xC3\xA4"), "\xC3\xA4", text("UTF-8", "\xC3\xA4")},
        {"\xEF\xBB\xBF" + text("utf-8", bolt), bolt, text("utf-8", bolt)},
        {"<a x=\"" + bolt + "\">" + bolt + "</a>", bolt,
         "<a x=\"" + bolt + "\">" + bolt + "</a>\n"},
        {"\xFF\xFE" + Utf16(wide, false), "\xC3\xA4" + bolt, "\xFF\xFE" + Utf16(wide, false)},
        {"\xFE\xFF" + Utf16(wide, true), "\xC3\xA4" + bolt, "\xFF\xFE" + Utf16(wide, false)},
        {text("ISO-8859-1", "\xE4"), "\xC3\xA4", text("ISO-8859-1", "\xE4")},
        {text("windows-1252", "\x80 \xE4"), "\xE2\x82\xAC \xC3\xA4",
         text("windows-1252", "\x80 \xE4")},
    };
    for (const auto& item : cases) {
        ASSERT_TRUE(ReplaceFileContent(Path(L"in.xml"), item.bytes));
        XMLParser parser;
        ASSERT_TRUE(parser.LoadXmlDocument(Path(L"in.xml").c_str())) << item.saved;
        EXPECT_EQ(TextOf(parser.GetRootNode()), item.content);
        EXPECT_EQ(WideToUtf8(PropertyOf(parser.GetRootNode(), L"x")), item.content);
        EXPECT_TRUE(parser.SaveXmlDocument(Path(L"out.xml").c_str(), false));
        EXPECT_EQ(BytesOf(L"out.xml"), item.saved);
    }
}

TEST_F(XmlFiles, CharactersThatAnEncodingLacksBecomeReferencesOrRefuseTheSave)
{
    XMLParser parser(L"<?xml version='1.0' encoding='ISO-8859-1'?><a x='\x20AC'>\x20AC</a>");
    const CString path = Path(L"file.xml");
    ASSERT_TRUE(parser.SaveXmlDocument(path.c_str(), false));
    const std::string saved = BytesOf(L"file.xml");
    EXPECT_NE(saved.find("x=\"&#8364;\">&#8364;</a>"), std::string::npos) << saved;
    testing::internal::CaptureStderr();
    for (const wchar_t* refused : {L"<a><!--\x20AC--></a>", L"<a><?p \x20AC?></a>", L"<\x4E2D/>"}) {
        EXPECT_TRUE(parser.SetXml(refused));
        EXPECT_FALSE(parser.SaveXmlDocument(path.c_str(), false));
    }
    EXPECT_TRUE(parser.SetXml(L"<a><!--\x00E4 &--><?p \x00E4?></a>"));
    EXPECT_TRUE(parser.SaveXmlDocument(path.c_str(), false));
    EXPECT_TRUE(parser.CreateXmlDocument(L"x-unknown-9"));
    const std::string before = BytesOf(L"file.xml");
    EXPECT_FALSE(parser.SaveXmlDocument(path.c_str(), false));
    EXPECT_EQ(BytesOf(L"file.xml"), before);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(XmlFiles, BrokenFilesDoNotParseWithoutAWord)
{
    const std::string cases[] = {
        "",
        std::string("\xFF\xFE<\0a\0", 6),
        "\xFF\xFE<",
        "<a>\xFF</a>",
        "<a>\xC3</a>",
        "<?xml version='1.0' encoding='x-unknown-9'?><a/>",
        "<?xml version='1.0' encoding='UTF-16'?><a/>",
        "<?xml version='1.0' encoding='EUC-JP'?><a>\x8F\xFF</a>",
    };
    testing::internal::CaptureStderr();
    for (const std::string& bytes : cases) {
        ASSERT_TRUE(ReplaceFileContent(Path(L"bad.xml"), bytes));
        XMLParser parser(L"<old/>");
        EXPECT_FALSE(parser.LoadXmlDocument(Path(L"bad.xml").c_str())) << bytes;
        EXPECT_FALSE(parser.GetRootNode().IsNode());
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    XMLParser parser(L"<old/>");
    EXPECT_FALSE(parser.LoadXmlDocument(Path(L"missing.xml").c_str()));
    EXPECT_FALSE(parser.LoadXmlDocument(m_directory.c_str()));
    EXPECT_FALSE(parser.LoadXmlDocument(nullptr));
    EXPECT_EQ(RootXmlOf(parser), "<old/>");
}

TEST_F(XmlFiles, FormattingASaveChangesTheLiveDocument)
{
    XMLParser parser(L"<r><a/></r>");
    const CString path = Path(L"file.xml");
    EXPECT_TRUE(parser.SaveXmlDocument(path.c_str(), true));
    EXPECT_EQ(BytesOf(L"file.xml"), "<r>\n  <a/>\n</r>\n");
    EXPECT_TRUE(parser.SaveXmlDocument(path.c_str(), true));
    EXPECT_EQ(BytesOf(L"file.xml"), "<r>\n  \n  <a/>\n</r>\n");
    EXPECT_TRUE(parser.LoadXmlDocument(path.c_str()));
    EXPECT_EQ(RootXmlOf(parser), "<r><a/></r>");
    EXPECT_FALSE(parser.SaveXmlDocument(Path(L"no/such/file.xml").c_str(), false));
    FailReplaceStep(1);
    EXPECT_FALSE(parser.SaveXmlDocument(path.c_str(), false));
    FailReplaceStep(0);
    EXPECT_EQ(BytesOf(L"file.xml"), "<r>\n  \n  <a/>\n</r>\n");
}

TEST(XmlFilesWithoutAPath, GoToANewFileInTheTemporaryDirectory)
{
    const std::string mark = "mark" + std::to_string(CreateGuid().data1);
    XMLParser parser(L"<" + Utf8ToWide(mark) + L"/>");
    EXPECT_TRUE(parser.SaveXmlDocument(nullptr, false));
    EXPECT_TRUE(parser.SaveXmlDocument(nullptr, false));
    int files = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(WideToUtf8(TemporaryDirectory()))) {
        const std::string name = entry.path().filename().string();
        const CString path = Utf8ToWide(entry.path().string());
        std::string bytes;
        if (name.size() == 42 && ReadWholeFile(path, bytes) && bytes == "<" + mark + "/>\n") {
            const std::regex pattern("\\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\}\\.xml");
            EXPECT_TRUE(std::regex_match(name, pattern)) << name;
            EXPECT_TRUE(DeleteFileIfPresent(path));
            ++files;
        }
    }
    EXPECT_EQ(files, 2);
}
