#include "encap/xml/Tree.h"
#include "tests/xml/XmlTestSupport.h"

#include <functional>
#include <optional>

namespace {

constexpr const wchar_t* kDocument =
    L"<r><row i='1'>text<cell k='v'>long enough to stand on its own</cell></row><row i='2'/></r>";

std::size_t OrphansOf(const XMLNode& node)
{
    return encap::Tree::Of(encap::NodeOf(node)).OrphanCount();
}

} // namespace

TEST(Lifetime, NodesOutliveParserAndContent)
{
    XMLNode cell;
    XMLNode attribute;
    {
        XMLParser parser(kDocument);
        cell = ChildOf(parser, L"row/cell");
        parser.SetXml(L"<other/>");
        attribute = ChildOf(cell, L"@k");
    }
    EXPECT_EQ(XmlOf(cell), "<cell k=\"v\">long enough to stand on its own</cell>");
    EXPECT_EQ(PropertyOf(cell.GetParentNode(), L"i"), L"1");
    cell = XMLNode();
    EXPECT_EQ(TextOf(attribute), "v");
}

TEST(Lifetime, EveryRemovalKeepsWhatIsReferredToAndNothingElse)
{
    const std::function<void(XMLNode&)> removals[] = {
        [](XMLNode& root) { root.RemoveChildNode(L"row"); },
        [](XMLNode& root) { root.SetNodeText(L"new"); },
        [](XMLNode& root) { root.SetNodeText(L""); },
        [](XMLNode& root) { ChildOf(root, L"row").RemoveThisNode(true); },
        [](XMLNode& root) { root.RemoveThisNode(false); },
        [](XMLNode& root) { XMLParser(L"<q/>").GetRootNode().AppendChild(ChildOf(root, L"row")); },
    };
    const wchar_t* const kept[] = {L"row",         L"row/cell", L"row/text()", L"row/cell/text()",
                                   L"row/cell/@k", L"row/@i"};
    for (const auto& remove : removals) {
        for (const wchar_t* path : kept) {
            XMLParser parser(kDocument);
            XMLNode root = parser.GetRootNode();
            std::optional<XMLNode> node = ChildOf(root, path);
            XMLNode copy(*node);
            const std::string before = XmlOf(*node);
            remove(root);
            EXPECT_EQ(OrphansOf(root), 1U) << path;
            EXPECT_EQ(XmlOf(*node), before);
            node.reset();
            EXPECT_EQ(OrphansOf(root), 1U) << path;
            copy = root;
            EXPECT_EQ(OrphansOf(copy), root.GetParentNode().IsNode() ? 0U : 1U) << path;
        }
        XMLParser parser(kDocument);
        XMLNode root = parser.GetRootNode();
        remove(root);
        EXPECT_EQ(OrphansOf(root), root.GetParentNode().IsNode() ? 0U : 1U);
    }
}

TEST(Lifetime, AttributesOutliveTheirRemovalAndTheirElement)
{
    XMLParser parser(kDocument);
    XMLNode cell = ChildOf(parser, L"row/cell");
    XMLNode attribute = ChildOf(cell, L"@k");
    XMLNode text;
    ASSERT_TRUE(attribute.GetFirstChildNode(text));
    EXPECT_TRUE(cell.SetProperty(L"k", L"changed in place"));
    EXPECT_EQ(TextOf(attribute), "changed in place");
    EXPECT_TRUE(cell.RemoveProperty(L"k"));
    EXPECT_FALSE(attribute.GetParentNode().IsNode());
    EXPECT_TRUE(cell.SetProperty(L"k", L"another"));
    attribute = XMLNode();
    EXPECT_EQ(OrphansOf(cell), 1U);
    EXPECT_EQ(TextOf(text), "changed in place");
    text = XMLNode();
    EXPECT_EQ(OrphansOf(cell), 0U);
}

TEST(Lifetime, ReferencesMoveWithNodesBetweenOrphansAndTheDocument)
{
    XMLParser parser(kDocument);
    XMLNode root = parser.GetRootNode();
    XMLNode row = ChildOf(root, L"row");
    XMLNode cell = ChildOf(row, L"cell");
    XMLNode clone = row.CloneNode(true);
    EXPECT_EQ(OrphansOf(root), 1U);
    EXPECT_TRUE(clone.AppendChild(cell).IsSameNode(cell)); // document to orphan
    clone = XMLNode();
    EXPECT_EQ(OrphansOf(root), 1U);
    EXPECT_EQ(cell.GetParentNode().GetChildCount(), 3);
    EXPECT_TRUE(cell.RemoveThisNode(false)); // out of an orphan: that one goes
    EXPECT_EQ(OrphansOf(root), 1U);
    XMLNode second = row.CloneNode(false);
    EXPECT_TRUE(second.AppendChild(cell).IsNode()); // one orphan into another
    EXPECT_EQ(OrphansOf(root), 1U);
    second = XMLNode();
    EXPECT_EQ(PropertyOf(cell.GetParentNode(), L"i"), L"1");
    EXPECT_TRUE(row.AppendChild(cell.GetParentNode()).IsNode()); // an orphan into the document
    EXPECT_EQ(OrphansOf(root), 0U);
    EXPECT_TRUE(row.AppendChild(cell).IsNode());
    EXPECT_EQ(RootXmlOf(parser), "<r><row i=\"1\">text<row i=\"1\"/><cell k=\"v\">long enough to "
                                 "stand on its own</cell></row><row i=\"2\"/></r>");
}

TEST(Lifetime, AssignmentFromAnOwnDescendantIsSafe)
{
    XMLNode node = XMLParser(kDocument).GetRootNode();
    while (node.GetFirstChildNode(node)) {}
    node = XMLParser(kDocument).GetRootNode();
    XMLNode moved(std::move(node));
    node = moved;
    moved = std::move(node);
    EXPECT_FALSE(node.IsNode()); // NOLINT(bugprone-use-after-move)
    XMLNodeArray nodes = moved.GetChildNodes();
    XMLNodeArray copy(nodes);
    nodes = XMLNodeArray();
    moved = XMLNode();
    EXPECT_EQ(PropertyOf(copy[1], L"i"), L"2");
}
