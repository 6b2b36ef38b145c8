#include "encap/xml/NodeAccess.h"

#include "tests/xml/XmlTestSupport.h"

using namespace encap;

namespace {

constexpr const wchar_t* kRow = L"<Row xml:lang='en'>text<Cell ColumnId='A' x=''>1</Cell>"
                                L"<!--c--><Other ColumnId='B'/><Cell ColumnId='B'>2<i/>3</Cell>"
                                L"<Cell/><p:Cell xmlns:p='urn:p'/><Cell ColumnId='A'>4</Cell>"
                                L"</Row>";

} // namespace

TEST(NodeAccess, IterationFindsElementsOfAName)
{
    XMLParser parser(kRow);
    const XMLNode row = parser.GetRootNode();
    const auto count = [&](std::string_view name) {
        int elements = 0;
        for (IXMLDOMNode* cell = FirstChildElement(Raw(row), name); cell != nullptr;
             cell = NextElement(cell, name)) {
            EXPECT_EQ(ParentElement(cell), Raw(row));
            ++elements;
        }
        return elements;
    };
    EXPECT_EQ(count("Cell"), 4);
    EXPECT_EQ(count("Other"), 1);
    EXPECT_EQ(count(""), 6);
    EXPECT_EQ(count("Cel"), 0);
    EXPECT_EQ(count("Cells"), 0);
    EXPECT_EQ(FirstChildElement(nullptr, "Cell"), nullptr);
    EXPECT_EQ(NextElement(nullptr, "Cell"), nullptr);
    EXPECT_EQ(ParentElement(Raw(row)), nullptr);
    EXPECT_TRUE(NameEquals(Raw(row), "Row") && !NameEquals(Raw(row), "Ro"));
    EXPECT_TRUE(Wrap(Raw(row)).IsSameNode(row) && !Wrap(nullptr).IsNode());
}

TEST(NodeAccess, AttributesAreViewsIntoTheTree)
{
    XMLParser parser(kRow);
    const XMLNode row = parser.GetRootNode();
    IXMLDOMNode* cell = FirstChildElement(Raw(row), "Cell");
    EXPECT_EQ(AttributeView(cell, "ColumnId"), "A");
    EXPECT_NE(AttributeView(cell, "x").data(), nullptr);
    EXPECT_EQ(AttributeView(cell, "x"), "");
    EXPECT_EQ(AttributeView(cell, "Column").data(), nullptr);
    EXPECT_EQ(AttributeView(Raw(row), "xml:lang"), "en");
    EXPECT_EQ(AttributeView(Raw(row), "lang").data(), nullptr);
    EXPECT_EQ(AttributeView(nullptr, "x").data(), nullptr);
    EXPECT_TRUE(AttributeEquals(cell, "ColumnId", "A") && AttributeEquals(cell, "x", ""));
    EXPECT_FALSE(AttributeEquals(cell, "ColumnId", "AB") || AttributeEquals(cell, "y", ""));
    EXPECT_FALSE(AttributeEquals(cell, "ColumnId", "") || AttributeEquals(XMLNode(), "x", ""));
}

TEST(NodeAccess, ChildrenAreFoundByAttributeWithAndWithoutAHint)
{
    XMLParser parser(kRow);
    const XMLNode row = parser.GetRootNode();
    const auto find = [&](std::string_view value, const wchar_t* hint) {
        IXMLDOMNode* from = hint != nullptr ? Raw(ChildOf(row, hint)) : nullptr;
        return TextOf(Wrap(FindChildByAttribute(Raw(row), "Cell", "ColumnId", value, from)));
    };
    EXPECT_EQ(find("A", nullptr), "1");
    EXPECT_EQ(find("B", nullptr), "23");
    EXPECT_EQ(find("A", L"Cell[2]"), "4");
    EXPECT_EQ(find("B", L"Cell[4]"), "23");
    EXPECT_EQ(find("B", L"Cell[2]/i"), "23");
    EXPECT_EQ(find("", nullptr), "");
    EXPECT_EQ(FindChildByAttribute(Raw(row), "Cell", "ColumnId", "C"), nullptr);
    EXPECT_EQ(FindChildByAttribute(nullptr, "Cell", "ColumnId", "A"), nullptr);
    EXPECT_EQ(FindChildByAttribute(FirstChildElement(Raw(row), "Cell"), "Cell", "x", "y"), nullptr);
}

TEST(NodeAccess, TextsAreViewsWhereTheyStandInOnePiece)
{
    XMLParser parser(kRow);
    const XMLNode row = parser.GetRootNode();
    std::string_view text;
    EXPECT_TRUE(TextView(Raw(ChildOf(row, L"Cell[1]")), text));
    EXPECT_EQ(text, "1");
    EXPECT_TRUE(TextView(Raw(ChildOf(row, L"Cell[3]")), text));
    EXPECT_EQ(text, "");
    EXPECT_FALSE(TextView(Raw(ChildOf(row, L"Cell[2]")), text) || TextView(nullptr, text));
    EXPECT_FALSE(TextView(Raw(ChildOf(row, L"text()")), text));
    CString out = L"=";
    AppendNodeText(Raw(ChildOf(row, L"Cell[2]")), out);
    AppendNodeText(nullptr, out);
    EXPECT_EQ(out, L"=23");
}
