#include "tests/xml/XmlTestSupport.h"

namespace {

class Formatter : public XMLParser {
public:
    using XMLParser::XMLParser;
    void Format() { FormatXml(GetDocument(), nullptr, 0); }
    void Format(const XMLNodeArray& list, int level) { FormatXml(GetDocument(), &list, level); }
};

} // namespace

TEST(Format, IndentsEveryNodeButTexts)
{
    const struct {
        const wchar_t* text;
        const char* once;
    } cases[] = {
        {L"<r/>", "<r/>"},
        {L"<r>text</r>", "<r>text</r>"},
        {L"<r><a/><b>t</b><!--c--><c><d/></c></r>",
         "<r>\n  <a/>\n  <b>t</b>\n  <!--c-->\n  <c>\n    <d/>\n  </c>\n</r>"},
        {L"<r>t<a/>u</r>", "<r>t\n  <a/>u</r>"},
        {L"<r>t<a/></r>", "<r>t\n  <a/>\n</r>"},
    };
    for (const auto& item : cases) {
        Formatter parser(item.text);
        parser.Format();
        EXPECT_EQ(RootXmlOf(parser), item.once);
    }
    Formatter empty;
    empty.Format();
    EXPECT_EQ(XmlOf(empty), "");
    Formatter twice(L"<r><a/></r>");
    twice.Format();
    twice.Format();
    EXPECT_EQ(RootXmlOf(twice), "<r>\n  \n  <a/>\n</r>");
}

TEST(Format, IndentationStopsGrowingAt78Blanks)
{
    CString text;
    for (int i = 0; i <= 45; ++i) {
        text = L"<e>" + text + L"</e>";
    }
    Formatter parser(text);
    parser.Format();
    const std::string xml = RootXmlOf(parser);
    std::size_t start = 0;
    for (int level = 1; level <= 45; ++level) {
        const std::size_t blanks = static_cast<std::size_t>(std::min(2 * level, 78));
        start = xml.find('\n', start) + 1;
        EXPECT_EQ(xml.find('<', start) - start, blanks) << level;
    }
    EXPECT_EQ(xml.substr(xml.size() - 12), "\n  </e>\n</e>");
}

TEST(Format, AListIsFormattedAtItsLevel)
{
    Formatter parser(L"<r><a><b/></a><c/></r>");
    XMLNodeArray list;
    parser.Format(list, 3);
    EXPECT_EQ(RootXmlOf(parser), "<r><a><b/></a><c/></r>");
    list.push_back(ChildOf(parser, L"a"));
    list.push_back(XMLNode());
    parser.Format(list, 1);
    EXPECT_EQ(RootXmlOf(parser), "<r>\n    <a>\n      <b/>\n    </a><c/></r>");
}
