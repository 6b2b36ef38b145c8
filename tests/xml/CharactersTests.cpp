#include "tests/xml/XmlTestSupport.h"

namespace {

struct TextCase {
    CString written;
    CString read;
};

/// What is written, and what is read at once and after a trip through the document's text.
std::vector<TextCase> TextCases()
{
    const CString lone(1, static_cast<wchar_t>(0xD800));
    const auto inBrackets = [](const CString& text) { return L"[" + text + L"]"; };
    std::vector<TextCase> cases = {
        {L"R&D < x > \"y\" 'z' ]]> &amp; &#65;", L"R&D < x > \"y\" 'z' ]]> &amp; &#65;"},
        {L"a\tb\nc\rd\r\ne", L"a\tb\nc\rd\r\ne"},
        {L" ", L" "},
        {L"\r \n\t\r\n", L"\r \n\t\r\n"},
        {L"\x00E4\x20AC\xFFFD", L"\x00E4\x20AC\xFFFD"},
        {encap::platform::Utf8ToWide("\xF0\x9F\x94\xA9"),
         encap::platform::Utf8ToWide("\xF0\x9F\x94\xA9")},
        {inBrackets(lone), L"[\xFFFD]"},
        {inBrackets(CString(1, L'\0')), L"[\xFFFD]"},
        {L"\xFFFE\xFFFF\xFEFF", L"\xFFFD\xFFFD\xFEFF"},
    };
    for (wchar_t control = 1; control < 0x20; ++control) {
        const bool isKept = control == L'\t' || control == L'\n' || control == L'\r';
        cases.push_back({inBrackets(CString(1, control)),
                         inBrackets(CString(1, isKept ? control : L'\xFFFD'))});
    }
    return cases;
}

} // namespace

TEST(Characters, TextsAndAttributesSurviveTheDocumentsText)
{
    for (const TextCase& item : TextCases()) {
        XMLParser parser(L"<a/>");
        XMLNode root = parser.GetRootNode();
        ASSERT_TRUE(root.SetProperty(L"v", item.written));
        XMLNode child = root.AddNode(L"t", L"x", L"w", L"y");
        ASSERT_TRUE(child.SetNodeText(item.written));
        ASSERT_TRUE(child.SetProperty(L"w", VARIANT(item.written)));
        CString xml;
        ASSERT_TRUE(parser.GetXml(xml));
        const XMLParser again(xml);
        for (const XMLNode& read : {root, again.GetRootNode()}) {
            CString text;
            ChildOf(read, L"t").GetNodeText(text);
            EXPECT_EQ(text, item.read);
            EXPECT_EQ(PropertyOf(read, L"v"), item.read);
            EXPECT_EQ(PropertyOf(ChildOf(read, L"t"), L"w"), item.read);
        }
    }
}

TEST(Characters, CommentsAndInstructionsRefuseWhatWouldEndThem)
{
    XMLParser parser(L"<a><!--c--><?p d?></a>");
    XMLNode comment;
    XMLNode instruction;
    ASSERT_TRUE(parser.GetRootNode().GetFirstChildNode(comment));
    ASSERT_TRUE(comment.GetNextSibling(instruction));
    EXPECT_FALSE(comment.SetNodeValue(L"a--b"));
    EXPECT_FALSE(comment.SetNodeText(L"ends in -"));
    EXPECT_FALSE(instruction.SetNodeValue(L"x ?> y"));
    EXPECT_TRUE(comment.SetNodeValue(L"- < \x0001"));
    EXPECT_TRUE(instruction.SetNodeText(L"& > \""));
    EXPECT_EQ(RootXmlOf(parser), "<a><!--- < \xEF\xBF\xBD--><?p & > \"?></a>");
}

TEST(Characters, NamesThatXmlDoesNotAllowAreRefused)
{
    XMLParser parser(L"<a/>");
    XMLNode root = parser.GetRootNode();
    const CString names[] = {
        L"",      L"1a",        L"a b",     L"a[@x='1']", L"<x>",
        L"a:b:c", L":a",        L"a:",      L"a/b",       L"-a",
        L"&",     L"p:unbound", L"a\x0001", L"\xFFFD",    CString(1, static_cast<wchar_t>(0xDC00))};
    for (const CString& name : names) {
        EXPECT_FALSE(root.AddNode(name.c_str()).IsNode());
        EXPECT_FALSE(root.GetOrAddNode(name.c_str()).IsNode());
        EXPECT_FALSE(root.SetProperty(name.c_str(), L"v"));
    }
    EXPECT_FALSE(root.AddNode(nullptr).IsNode());
    EXPECT_EQ(RootXmlOf(parser), "<a/>");
    EXPECT_TRUE(root.AddNode(L"\x00C4pfel.1-_").IsNode());
    EXPECT_TRUE(root.SetProperty(L"_\x4E2D", L"v"));
    EXPECT_EQ(RootXmlOf(parser), "<a _\xE4\xB8\xAD=\"v\"><\xC3\x84pfel.1-_/></a>");
}
