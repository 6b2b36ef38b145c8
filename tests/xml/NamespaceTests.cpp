#include "tests/xml/XmlTestSupport.h"

TEST(Namespaces, NamesKeepTheirPrefixes)
{
    XMLParser parser(L"<p:r xmlns:p='urn:p' xmlns='urn:d' p:a='1'><b/><p:c/></p:r>");
    XMLNode root = parser.GetRootNode();
    CString name;
    CStringArray names;
    EXPECT_TRUE(root.GetNodeName(name));
    EXPECT_EQ(name, L"p:r");
    EXPECT_TRUE(root.GetProperties(names));
    EXPECT_EQ(names, (CStringArray{L"xmlns:p", L"xmlns", L"p:a"}));
    EXPECT_EQ(PropertyOf(root, L"xmlns:p"), L"urn:p");
    EXPECT_EQ(PropertyOf(root, L"xmlns"), L"urn:d");
    XMLNodeArray nodes;
    EXPECT_TRUE(root.GetChildNodes(L"p:c", nodes) && root.GetChildNodes(L"b", nodes));
    EXPECT_TRUE(root.AddNode(L"p:new", nullptr, L"p:x", L"1").IsNode());
    EXPECT_FALSE(root.AddNode(L"q:new").IsNode());
    // A name without a prefix is in no namespace, whatever the default is around it.
    EXPECT_TRUE(root.AddNode(L"plain").IsNode());
    EXPECT_EQ(XmlOf(root),
              "<p:r xmlns:p=\"urn:p\" xmlns=\"urn:d\" p:a=\"1\"><b/><p:c/><p:new p:x=\"1\"/>"
              "<plain xmlns=\"\"/></p:r>");
}

TEST(Namespaces, DeclarationsAreAddedAndRemovedButNotChanged)
{
    XMLParser parser(L"<r><a/></r>");
    XMLNode root = parser.GetRootNode();
    EXPECT_TRUE(root.SetProperty(L"xmlns:p", L"urn:p"));
    EXPECT_TRUE(root.SetProperty(L"xmlns:p", L"urn:p"));
    EXPECT_FALSE(root.SetProperty(L"xmlns:p", L"urn:other"));
    EXPECT_FALSE(root.SetProperty(L"xmlns:q", L"") || root.SetProperty(L"xmlns", L"urn:d"));
    EXPECT_FALSE(root.SetProperty(L"xmlns:xml", L"urn:x") || root.SetProperty(L"xmlns:", L"urn"));
    XMLNode a = ChildOf(root, L"a");
    EXPECT_TRUE(a.SetProperty(L"p:x", L"1"));
    EXPECT_FALSE(a.SetProperty(L"xmlns:p", L"urn:other"));
    EXPECT_TRUE(root.RemoveProperty(L"xmlns:p"));
    EXPECT_EQ(XmlOf(root), "<r><a xmlns:p=\"urn:p\" p:x=\"1\"/></r>");
}

TEST(Namespaces, MovedAndKeptNodesStayInTheirNamespace)
{
    XMLParser parser(L"<r><h xmlns:p='urn:p'><p:a p:x='1'><p:b/></p:a></h>"
                     L"<g xmlns:p='urn:other'/></r>");
    XMLNode root = parser.GetRootNode();
    XMLNode a;
    ASSERT_TRUE(ChildOf(root, L"h").GetFirstChildNode(a));
    XMLNode attribute = ChildOf(a, L"@*");
    EXPECT_TRUE(a.RemoveThisNode(false));
    EXPECT_TRUE(root.RemoveChildNode(L"h"));
    const std::string whole = "<p:a xmlns:p=\"urn:p\" p:x=\"1\"><p:b/></p:a>";
    EXPECT_EQ(XmlOf(a), whole);
    EXPECT_EQ(XmlOf(a.CloneNode(true)), whole);
    XMLNode imported = XMLParser(L"<q/>").GetRootNode().ImportNode(a, true);
    EXPECT_EQ(XmlOf(imported), whole);
    EXPECT_TRUE(ChildOf(root, L"g").AppendChild(a).IsNode());
    EXPECT_EQ(XmlOf(root), "<r><g xmlns:p=\"urn:other\">" + whole + "</g></r>");
    EXPECT_TRUE(a.RemoveProperty(L"p:x") && root.RemoveChildNode(L"g"));
    a = XMLNode();
    EXPECT_EQ(XmlOf(attribute), "p:x=\"1\"");
}

TEST(Namespaces, UnboundPrefixesOfATextStayPartOfTheName)
{
    XMLParser parser(L"<p:r p:a='1'><p:b/></p:r>");
    EXPECT_EQ(RootXmlOf(parser), "<p:r p:a=\"1\"><p:b/></p:r>");
    EXPECT_EQ(PropertyOf(parser.GetRootNode(), L"p:a"), L"1");
    EXPECT_TRUE(parser.GetRootNode().SetProperty(L"p:a", L"2"));
    EXPECT_EQ(XmlOf(parser.GetRootNode().CloneNode(true)), "<p:r p:a=\"2\"><p:b/></p:r>");
}
