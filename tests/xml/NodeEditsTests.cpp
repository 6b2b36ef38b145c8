#include "encap/xml/NodeAccess.h"
#include "tests/xml/XmlTestSupport.h"

TEST(NodeEdits, NewElementsStandLastOrBeforeTheirSibling)
{
    XMLParser parser(L"<r>t</r>");
    XMLNode root = parser.GetRootNode();
    XMLNode b = root.AddNode(L"b", L"", L"x", L"1", nullptr, L"skipped", L"y", L"2");
    XMLNode a = b.AddNodeBefore(L"a", L"text", L"z", L"3", L"w", nullptr);
    EXPECT_EQ(XmlOf(root), "<r>t<a z=\"3\">text</a><b x=\"1\" y=\"2\"/></r>");
    EXPECT_FALSE(root.CloneNode(false).AddNodeBefore(L"c").IsNode());
    EXPECT_FALSE(root.AddNodeBefore(L"second").IsNode());
    EXPECT_FALSE(ChildOf(b, L"@x").AddNodeBefore(L"c").IsNode());
    EXPECT_FALSE(ChildOf(root, L"text()").AddNode(L"c").IsNode());
    EXPECT_FALSE(root.GetParentNode().AddNode(L"second").IsNode());
    // What was made before a refused attribute stays.
    EXPECT_FALSE(a.AddNode(L"c", nullptr, L"ok", L"1", L"not ok", L"2").IsNode());
    EXPECT_EQ(XmlOf(a), "<a z=\"3\">text<c ok=\"1\"/></a>");
}

TEST(NodeEdits, GetOrAddFindsByQueryAndAddsByName)
{
    XMLParser parser(L"<r><a><b i='1'/></a></r>");
    XMLNode root = parser.GetRootNode();
    EXPECT_EQ(PropertyOf(root.GetOrAddNode(L"a/b[@i='1']"), L"i"), L"1");
    EXPECT_FALSE(root.GetOrAddNode(L"a/b[@i='2']").IsNode());
    XMLNode made = root.GetOrAddNode(L"c");
    EXPECT_TRUE(root.GetOrAddNode(L"c").IsSameNode(made));
    EXPECT_EQ(XmlOf(root), "<r><a><b i=\"1\"/></a><c/></r>");
}

TEST(NodeEdits, ChildrenMoveToTheIndexTheyAreGiven)
{
    const struct {
        int from;
        int index;
        const char* expected;
    } cases[] = {
        {2, 0, "<r><c/><a/><b/></r>"},  {0, 2, "<r><b/><a/><c/></r>"},
        {0, 3, "<r><b/><c/><a/></r>"},  {1, 99, "<r><a/><c/><b/></r>"},
        {1, -1, "<r><a/><c/><b/></r>"}, {1, 1, "<r><a/><b/><c/></r>"},
        {1, 2, "<r><a/><b/><c/></r>"},  {2, 99, "<r><a/><b/><c/></r>"},
    };
    for (const auto& item : cases) {
        XMLParser parser(L"<r><a/><b/><c/></r>");
        XMLNode root = parser.GetRootNode();
        XMLNode child;
        ASSERT_TRUE(root.GetChildNodeByIdx(item.from, child));
        EXPECT_TRUE(root.InsertChild(child, item.index).IsSameNode(child));
        EXPECT_EQ(XmlOf(root), item.expected) << item.from << " to " << item.index;
    }
}

TEST(NodeEdits, NeighbouringTextsStayApart)
{
    XMLParser parser(L"<r>a<x/>b<y/>c</r>");
    XMLNode root = parser.GetRootNode();
    EXPECT_TRUE(root.RemoveChildNode(L"x"));
    EXPECT_EQ(root.GetChildCount(), 4);
    XMLNode last;
    ASSERT_TRUE(root.GetLastChildNode(last));
    EXPECT_TRUE(root.InsertChild(last, 0).IsSameNode(last));
    EXPECT_TRUE(root.AppendChild(ChildOf(root, L"text()[2]")).IsNode());
    EXPECT_EQ(root.GetChildCount(), 4);
    EXPECT_EQ(XmlOf(root), "<r>cb<y/>a</r>");
}

TEST(NodeEdits, CyclesAndImpossibleChildrenAreRefused)
{
    XMLParser parser(L"<r x='1'><a><b/></a></r>");
    XMLNode root = parser.GetRootNode();
    XMLNode a = ChildOf(root, L"a");
    XMLNode b = ChildOf(root, L"a/b");
    EXPECT_FALSE(b.AppendChild(a).IsNode() || b.AppendChild(b).IsNode());
    EXPECT_FALSE(b.AppendChild(root).IsNode() || b.InsertChild(root, 0).IsNode());
    EXPECT_FALSE(a.AppendChild(ChildOf(root, L"@x")).IsNode());
    EXPECT_FALSE(a.AppendChild(root.GetParentNode()).IsNode());
    EXPECT_FALSE(ChildOf(root, L"@x").AppendChild(b).IsNode());
    EXPECT_FALSE(root.GetParentNode().AppendChild(b).IsNode());
    XMLNode attribute = ChildOf(root, L"@x");
    EXPECT_FALSE(encap::InsertBefore(attribute, b));
    EXPECT_TRUE(encap::InsertBefore(a, b));
    EXPECT_EQ(XmlOf(root), "<r x=\"1\"><b/><a/></r>");
    XMLNode detached = root.CloneNode(true);
    EXPECT_FALSE(ChildOf(detached, L"a").AppendChild(detached).IsNode());
}

TEST(NodeEdits, ChildrenOfOtherDocumentsAreTakenOutAndCopied)
{
    XMLParser from(L"<r><a i='1'>t<!--c--><b/></a><k/></r>");
    XMLParser to(L"<q><z/></q>");
    XMLNode source = ChildOf(from, L"a");
    XMLNode kept(source);
    XMLNode root = to.GetRootNode();
    const XMLNode inserted = root.InsertChild(source, 0);
    EXPECT_EQ(XmlOf(root), "<q><a i=\"1\">t<!--c--><b/></a><z/></q>");
    EXPECT_TRUE(inserted.IsSameNode(source) && source.IsSameNode(ChildOf(root, L"a")));
    EXPECT_EQ(RootXmlOf(from), "<r><k/></r>");
    EXPECT_FALSE(kept.GetParentNode().IsNode());
    EXPECT_EQ(XmlOf(kept), "<a i=\"1\">t<!--c--><b/></a>");
    EXPECT_TRUE(root.AppendChild(ChildOf(from, L"k")).IsNode());
    from.SetXml(L"<gone/>");
    EXPECT_EQ(XmlOf(root), "<q><a i=\"1\">t<!--c--><b/></a><z/><k/></q>");
}

TEST(NodeEdits, CopiesAreDetachedAndWhole)
{
    XMLParser parser(L"<r a='1' xml:lang='en'>t<!--c--><?p d?><b><c/></b></r>");
    const XMLNode root = parser.GetRootNode();
    const XMLNode deep = root.CloneNode(true);
    EXPECT_EQ(XmlOf(deep), XmlOf(root));
    EXPECT_FALSE(deep.GetParentNode().IsNode() || deep.IsSameNode(root));
    EXPECT_EQ(XmlOf(root.CloneNode(false)), "<r a=\"1\" xml:lang=\"en\"/>");
    EXPECT_EQ(TextOf(ChildOf(root, L"text()").CloneNode(false)), "t");
    EXPECT_EQ(TextOf(ChildOf(root, L"@a").CloneNode(true)), "1");
    EXPECT_FALSE(root.GetParentNode().CloneNode(true).IsNode());
}

TEST(NodeEdits, ImportTakesElementsAttributesAndTexts)
{
    XMLParser from(L"<s x='1' y='2'>one<b z='3'>two<!--c--></b>three<?p?><e/></s>");
    XMLParser to(L"<q><old/></q>");
    XMLNode root = to.GetRootNode();
    XMLNode source = from.GetRootNode();
    XMLNode imported = root.ImportNode(source, true);
    EXPECT_EQ(XmlOf(root), "<q><old/><s x=\"1\" y=\"2\">one<b z=\"3\">two</b>three<e/></s></q>");
    EXPECT_TRUE(imported.IsSameNode(ChildOf(root, L"s")));
    EXPECT_EQ(XmlOf(imported.ImportNode(source, false)), "<s x=\"1\" y=\"2\"/>");
    XMLNode self = root.ImportNode(root, true);
    EXPECT_EQ(TextOf(self), "onetwothree");
    EXPECT_EQ(root.GetChildCount(), 3);
    for (const wchar_t* path : {L"text()", L"b/comment()", L"processing-instruction()", L"@x"}) {
        EXPECT_FALSE(root.ImportNode(ChildOf(source, path), true).IsNode());
    }
    EXPECT_FALSE(root.GetParentNode().ImportNode(source, true).IsNode());
}

TEST(NodeEdits, RemovedNodesAreEmptiedOnRequest)
{
    XMLParser parser(L"<r a='1'>t<b/><c/></r>");
    XMLNode root = parser.GetRootNode();
    XMLNode b = ChildOf(root, L"b");
    EXPECT_TRUE(b.RemoveThisNode(false));
    EXPECT_TRUE(b.IsNode());
    EXPECT_FALSE(b.RemoveThisNode(true));
    EXPECT_TRUE(b.IsNode());
    XMLNode c = ChildOf(root, L"c");
    EXPECT_TRUE(c.RemoveThisNode(true));
    EXPECT_FALSE(c.IsNode());
    EXPECT_TRUE(ChildOf(root, L"@a").RemoveThisNode(true));
    EXPECT_TRUE(root.RemoveChildNode(L"text()"));
    EXPECT_FALSE(root.RemoveChildNode(L"missing") || root.RemoveChildNode(L"/"));
    EXPECT_EQ(XmlOf(root), "<r/>");
    EXPECT_TRUE(root.RemoveThisNode(false));
    EXPECT_EQ(XmlOf(parser), "");
    EXPECT_TRUE(parser.AddNode(L"next").IsNode());
    EXPECT_FALSE(root.GetParentNode().IsNode());
}
