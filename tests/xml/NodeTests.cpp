#include "tests/xml/XmlTestSupport.h"

namespace {

constexpr const wchar_t* kDocument = L"<r a='1'>t1<b/><!--c--><b x='2'>u<i>v</i><!--no-->w</b>"
                                     L"<?p d?>t2</r>";

} // namespace

TEST(Node, EveryKindHasItsNameTextAndValue)
{
    XMLParser parser(kDocument);
    const struct {
        const wchar_t* path;
        const wchar_t* name;
        const char* text;
        bool hasValue;
    } cases[] = {
        {L"text()[1]", L"#text", "t1", true},
        {L"comment()", L"#comment", "c", true},
        {L"processing-instruction()", L"p", "d", true},
        {L"@a", L"a", "1", true},
        {L"b[2]", L"b", "uvw", false},
        {L"b[1]", L"b", "", false},
        {L"/", L"#document", "t1uvwt2", false},
    };
    for (const auto& item : cases) {
        const XMLNode node = ChildOf(parser, item.path);
        CString name;
        CComBSTR value(L"old");
        EXPECT_TRUE(node.GetNodeName(name)) << item.path;
        EXPECT_EQ(name, item.name);
        EXPECT_EQ(TextOf(node), item.text);
        EXPECT_EQ(node.GetNodeValue(value), item.hasValue) << item.path;
        EXPECT_EQ(encap::platform::WideToUtf8(static_cast<const wchar_t*>(value)),
                  item.hasValue ? item.text : "");
    }
    EXPECT_EQ(XmlOf(ChildOf(parser, L"b[2]/@x")), "x=\"2\"");
}

TEST(Node, NavigationGoesThroughAllKindsOfChildren)
{
    XMLParser parser(kDocument);
    const XMLNode root = parser.GetRootNode();
    XMLNode node;
    CStringArray names;
    EXPECT_EQ(root.GetChildCount(), 6);
    EXPECT_TRUE(root.GetChildNames(names));
    EXPECT_EQ(names, (CStringArray{L"#text", L"b", L"#comment", L"b", L"p", L"#text"}));
    EXPECT_TRUE(root.GetFirstChildNode(node) && node.GetNextSibling(node));
    EXPECT_TRUE(node.IsSameNode(ChildOf(root, L"b")));
    EXPECT_TRUE(node.GetParentNode().IsSameNode(root));
    EXPECT_TRUE(root.GetLastChildNode(node));
    EXPECT_EQ(TextOf(node), "t2");
    EXPECT_FALSE(node.GetNextSibling(node));
    EXPECT_FALSE(node.IsNode());
    EXPECT_TRUE(root.GetChildNodeByIdx(3, node));
    EXPECT_EQ(TextOf(node), "uvw");
    for (const int index : {-1, 6, 1000}) {
        EXPECT_FALSE(root.GetChildNodeByIdx(index, node));
    }
    XMLNodeArray nodes;
    EXPECT_TRUE(root.GetChildNodes(L"b", nodes));
    EXPECT_EQ(nodes.size(), 2U);
    EXPECT_TRUE(root.GetChildNodes(L"#text", nodes));
    EXPECT_EQ(nodes.size(), 2U);
    EXPECT_FALSE(root.GetChildNodes(L"B", nodes) || root.GetChildNodes(nullptr, nodes));
    EXPECT_TRUE(root.GetChildNodes(nodes));
    names.clear();
    nodes.push_back(XMLNode());
    nodes.GetNodeNames(names);
    EXPECT_EQ(names, (CStringArray{L"#text", L"b", L"#comment", L"b", L"p", L"#text", L""}));
    EXPECT_EQ(root.GetChildNodes().size(), 6U);
    EXPECT_FALSE(ChildOf(root, L"@a").GetNextSibling(node));
    EXPECT_TRUE(ChildOf(root, L"@a").GetParentNode().IsSameNode(root));
    EXPECT_FALSE(root.GetParentNode().GetParentNode().IsNode());
}

TEST(Node, AnEmptyNodeFailsEverywhere)
{
    XMLNode empty;
    XMLNode node = XMLParser(L"<a/>").GetRootNode();
    XMLNodeArray nodes;
    CStringArray names;
    CString text = L"old";
    EXPECT_FALSE(empty.IsNode() || empty.IsSameNode(empty) || empty.IsSameNode(XMLNode()));
    EXPECT_FALSE(empty.GetNodeName(text) || empty.GetNodeText(text) || empty.GetNodeValue(text));
    EXPECT_TRUE(text.empty());
    EXPECT_FALSE(empty.SetNodeText(L"x") || empty.SetNodeValue(L"x"));
    EXPECT_FALSE(empty.GetParentNode().IsNode());
    EXPECT_EQ(empty.GetChildCount(), 0);
    EXPECT_FALSE(empty.GetChildNodes(nodes) || empty.GetChildNodes(L"a", nodes));
    EXPECT_FALSE(empty.SelectChildNodes(L"a", nodes) || empty.GetChildNames(names));
    EXPECT_FALSE(empty.AddNode(L"a").IsNode() || empty.AddNodeBefore(L"a").IsNode());
    EXPECT_FALSE(empty.GetOrAddNode(L"a").IsNode() || empty.CloneNode(true).IsNode());
    EXPECT_FALSE(empty.AppendChild(node).IsNode() || node.AppendChild(empty).IsNode());
    EXPECT_FALSE(empty.InsertChild(node, 0).IsNode() || node.InsertChild(empty, 0).IsNode());
    EXPECT_FALSE(empty.ImportNode(node, true).IsNode() || node.ImportNode(empty, true).IsNode());
    EXPECT_FALSE(empty.RemoveThisNode(true) || empty.RemoveChildNode(L"a"));
    EXPECT_FALSE(empty.GetChildNode(L"a", node));
    EXPECT_FALSE(node.IsNode());
    XMLNode wrapped(static_cast<IXMLDOMNode*>(nullptr));
    EXPECT_FALSE(wrapped.IsNode());
}

TEST(Node, SettingTextReplacesAllChildren)
{
    XMLParser parser(kDocument);
    XMLNode root = parser.GetRootNode();
    EXPECT_TRUE(root.SetNodeText(L"<x>"));
    EXPECT_EQ(XmlOf(root), "<r a=\"1\">&lt;x&gt;</r>");
    EXPECT_TRUE(root.SetNodeText(CString(100, L'y')));
    EXPECT_TRUE(root.SetNodeText(L"short"));
    EXPECT_EQ(XmlOf(root), "<r a=\"1\">short</r>");
    EXPECT_EQ(root.GetChildCount(), 1);
    EXPECT_TRUE(root.SetNodeText(static_cast<const wchar_t*>(nullptr)));
    EXPECT_EQ(XmlOf(root), "<r a=\"1\"/>");
    EXPECT_EQ(root.GetChildCount(), 0);
    EXPECT_TRUE(ChildOf(root, L"@a").SetNodeText(L"\"2\""));
    EXPECT_EQ(XmlOf(root), "<r a=\"&quot;2&quot;\"/>");
    EXPECT_FALSE(root.SetNodeValue(L"x"));
    EXPECT_FALSE(root.GetParentNode().SetNodeText(L"x"));
}
