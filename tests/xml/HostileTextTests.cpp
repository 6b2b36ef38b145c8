#include "encap/platform/Files.h"
#include "tests/xml/XmlTestSupport.h"

namespace {

CString Nested(int levels)
{
    CString text;
    for (int i = 0; i < levels; ++i) {
        text += L"<e>";
    }
    for (int i = 0; i < levels; ++i) {
        text += L"</e>";
    }
    return text;
}

} // namespace

TEST(HostileText, WhatDoesNotParseLeavesAnEmptyDocumentWithoutAWord)
{
    const CString secret =
        encap::platform::WithTrailingSeparator(encap::platform::TemporaryDirectory()) +
        L"encap_xml_secret.txt";
    ASSERT_TRUE(encap::platform::ReplaceFileContent(secret, "SECRET"));
    const CString cases[] = {
        L"",
        L"   ",
        L"no markup",
        L"<a><b></a>",
        L"<a>",
        L"<a/><b/>",
        L"<a x='1' x='2'/>",
        L"<a>&undefined;</a>",
        L"<a>&#1;</a>",
        L"<a>\x0001</a>",
        L"<a>]]></a>",
        L"<!DOCTYPE a><a/>",
        L"<!DOCTYPE a [<!ENTITY b \"x\">]><a>&b;</a>",
        L"<!DOCTYPE a [<!ENTITY b SYSTEM \"file://" + secret + L"\">]><a>&b;</a>",
        L"<!DOCTYPE a SYSTEM \"" + secret + L"\"><a/>",
        L"<!DOCTYPE l [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\">"
        L"<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;\"><!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;\">]>"
        L"<l>&d;&d;&d;&d;&d;&d;&d;&d;</l>",
        Nested(257),
        Nested(100'000),
    };
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    for (const CString& text : cases) {
        XMLParser parser(L"<old/>");
        EXPECT_FALSE(parser.SetXml(text));
        EXPECT_FALSE(parser.GetRootNode().IsNode());
        EXPECT_FALSE(XMLParser(text).GetRootNode().IsNode());
    }
    EXPECT_FALSE(XMLParser(static_cast<const wchar_t*>(nullptr)).GetRootNode().IsNode());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(encap::platform::DeleteFileIfPresent(secret));
}

TEST(HostileText, NestingParsesUpToItsLimit)
{
    EXPECT_TRUE(XMLParser(Nested(255)).GetRootNode().IsNode());
    EXPECT_TRUE(XMLParser(Nested(256)).GetRootNode().IsNode());
    const CString siblings = L"<a>" + Nested(255) + Nested(255) + L"</a>";
    EXPECT_EQ(XMLParser(siblings).GetNodesCount(), 2);
}

TEST(HostileText, LongTextsNamesAndValuesParse)
{
    const CString text(10'100'000, L'x');
    const CString name(60'000, L'n');
    const CString value(10'100'000, L'v');
    XMLParser parser(L"<" + name + L">" + text + L"</" + name + L">");
    XMLNode root = parser.GetRootNode();
    EXPECT_EQ(TextOf(root).size(), text.size());
    EXPECT_TRUE(root.SetProperty(L"v", value));
    CString xml;
    ASSERT_TRUE(parser.GetXml(xml));
    EXPECT_EQ(PropertyOf(XMLParser(xml).GetRootNode(), L"v"), value);
}

TEST(HostileText, CharactersOnPieceBordersStayWhole)
{
    // The text is converted in pieces: characters of every width stand on each border.
    for (std::size_t shift = 0; shift < 8; ++shift) {
        CString content(shift, L'.');
        while (content.size() < 20'000) {
            content += encap::platform::Utf8ToWide("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\xA9");
        }
        CString read;
        XMLParser(L"<a>" + content + L"</a>").GetRootNode().GetNodeText(read);
        EXPECT_TRUE(read == content) << shift;
    }
}
