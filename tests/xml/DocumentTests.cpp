#include "encap/xml/NodeAccess.h"
#include "tests/xml/XmlTestSupport.h"

TEST(Document, CopiesShareTheDocumentAndSeeItsNewContent)
{
    XMLParser parser(L"<a/>");
    XMLParser copy(parser);
    XMLParser other;
    other.SetDocument(parser.GetDocument());
    EXPECT_TRUE(parser.SetXml(L"<b/>"));
    EXPECT_EQ(RootXmlOf(copy), "<b/>");
    EXPECT_EQ(RootXmlOf(other), "<b/>");
    EXPECT_EQ(other.GetDocument(), parser.GetDocument());
    other.SetDocument(XMLDocumentHandle());
    EXPECT_EQ(RootXmlOf(parser), "<b/>");
}

TEST(Document, WithoutADocumentEverythingFails)
{
    XMLParser parser;
    parser.SetDocument(XMLDocumentHandle());
    XMLNode node = XMLParser(L"<x/>").GetRootNode();
    XMLNodeArray nodes;
    CComBSTR text(L"left over");
    EXPECT_FALSE(parser.GetDocument());
    EXPECT_FALSE(parser.SetXml(L"<a/>"));
    EXPECT_FALSE(parser.CreateXmlDocument(L"UTF-16"));
    EXPECT_FALSE(parser.GetXml(text));
    EXPECT_EQ(text.Length(), 0U);
    EXPECT_FALSE(parser.GetNode(node));
    EXPECT_FALSE(node.IsNode());
    EXPECT_FALSE(parser.GetNodesByTag(L"a", nodes));
    EXPECT_FALSE(parser.RemoveNodesByTag(L"a"));
    EXPECT_FALSE(parser.AddNode(L"a").IsNode());
    EXPECT_EQ(parser.GetNodesCount(), 0);
    EXPECT_EQ(encap::ChangeCount(parser), 0U);
}

TEST(Document, ADeclarationIsKeptUntilAnotherReplacesIt)
{
    XMLParser parser;
    EXPECT_TRUE(parser.CreateXmlDocument(L"UTF-16"));
    EXPECT_EQ(XmlOf(parser), "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n");
    EXPECT_TRUE(parser.AddNode(L"Family").IsNode());
    EXPECT_EQ(XmlOf(parser), "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<Family/>\n");
    // Decoded text: the name is kept and not applied. A text without one leaves what is there.
    EXPECT_TRUE(parser.SetXml(L"<?xml version='1.0' encoding='windows-1252' standalone='yes'?><a>"
                              L"\x20AC</a>"));
    const std::string parsed =
        "<?xml version=\"1.0\" encoding=\"windows-1252\" standalone=\"yes\"?>"
        "\n";
    EXPECT_EQ(XmlOf(parser), parsed + "<a>\xE2\x82\xAC</a>\n");
    EXPECT_TRUE(parser.SetXml(L"<b/>"));
    EXPECT_EQ(XmlOf(parser), parsed + "<b/>\n");
    EXPECT_TRUE(parser.SetXml(std::string_view("\xEF\xBB\xBF<?xml version='1.0' "
                                               "encoding='ISO-8859-1'?><a>\xE2\x82\xAC</a>")));
    EXPECT_EQ(XmlOf(parser),
              "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>\xE2\x82\xAC</a>\n");
    EXPECT_FALSE(parser.SetXml(std::string_view("<a>\xFF</a>")));
    EXPECT_FALSE(parser.GetRootNode().IsNode());
    EXPECT_FALSE(parser.SetXml(std::string_view()));
    EXPECT_TRUE(parser.SetXml(L"<b/>"));
    EXPECT_TRUE(parser.CreateXmlDocument(nullptr));
    EXPECT_EQ(XmlOf(parser), "<?xml version=\"1.0\"?>\n<b/>\n");
    EXPECT_FALSE(parser.CreateXmlDocument(L"UTF-8'?><!--"));
    EXPECT_EQ(XmlOf(parser), "<?xml version=\"1.0\"?>\n<b/>\n");
}

TEST(Document, TextsComeOutAsTheyWentIn)
{
    const std::string text = "<?xml version=\"1.0\"?>\n<!--top-->\n<?pi some data?>\n<a x=\"1\">"
                             "t<!--c--><b/>u</a>\n<!--end-->\n";
    XMLParser parser(L"\xFEFF" + encap::platform::Utf8ToWide(text));
    EXPECT_EQ(XmlOf(parser), text);
    wchar_t* raw = nullptr;
    EXPECT_FALSE(parser.GetXml(static_cast<wchar_t**>(nullptr)));
    ASSERT_TRUE(parser.GetXml(&raw));
    EXPECT_EQ(encap::platform::WideToUtf8(raw), text);
    XMLParser::FreeXml(raw);
}

TEST(Document, BlankTextsAreDroppedUnlessPreserved)
{
    const struct {
        const wchar_t* text;
        const char* kept;
    } cases[] = {
        {L"<a>\n  <b> </b>\t<c/>\r\n</a>", "<a><b/><c/></a>"},
        {L"<a> x <b/> y</a>", "<a> x <b/> y</a>"},
        {L"<a> &#32;&#9; <b/></a>", "<a><b/></a>"},
        {L"<a xml:space='preserve'> <b> </b><c xml:space='default'> </c> </a>",
         "<a xml:space=\"preserve\"> <b> </b><c xml:space=\"default\"/> </a>"},
        {L"<a>x<![CDATA[ <&> ]]>y</a>", "<a>x &lt;&amp;&gt; y</a>"},
        {L"<a>x<![CDATA[  ]]></a>", "<a>x  </a>"},
    };
    for (const auto& item : cases) {
        EXPECT_EQ(RootXmlOf(XMLParser(item.text)), item.kept);
    }
    EXPECT_EQ(XMLParser(L"<a>x<![CDATA[y]]>&amp;z</a>").GetNodesCount(), 1);
}

TEST(Document, NodesAtTheTopAreFoundByNameAmongFollowingSiblings)
{
    XMLParser parser(L"<!--before--><Root><Child/></Root><!--x--><?pi?>");
    XMLNode node;
    EXPECT_TRUE(parser.GetNode(L"Root", node));
    EXPECT_TRUE(node.IsSameNode(parser.GetRootNode()));
    EXPECT_TRUE(parser.GetNode(L"pi", node));
    EXPECT_TRUE(parser.GetNode(L"#comment", node));
    EXPECT_EQ(TextOf(node), "x");
    EXPECT_FALSE(parser.GetNode(L"Child", node));
    EXPECT_FALSE(parser.GetNode(L"root", node));
    EXPECT_FALSE(node.IsNode());
    EXPECT_TRUE(parser.GetNode(nullptr, node));
    EXPECT_TRUE(node.IsSameNode(parser.GetRootNode()));
}

TEST(Document, ElementsByTagAreFoundAtAnyDepthAndRemovedNestedOnesIncluded)
{
    XMLParser parser(L"<r><S i='1'><S i='2'/><t><S i='3'/></t></S><t/><S i='4'/></r>");
    XMLNodeArray nodes;
    ASSERT_TRUE(parser.GetNodesByTag(L"S", nodes));
    CString order;
    for (const XMLNode& node : nodes) {
        order += PropertyOf(node, L"i");
    }
    EXPECT_EQ(order, L"1234");
    EXPECT_TRUE(parser.GetNodesByTag(L"*", nodes));
    EXPECT_EQ(nodes.size(), 7U);
    const XMLNode inner = ChildOf(parser, L"S/t");
    EXPECT_TRUE(parser.RemoveNodesByTag(L"S"));
    EXPECT_EQ(RootXmlOf(parser), "<r><t/></r>");
    EXPECT_EQ(XmlOf(inner), "<t/>");
    EXPECT_FALSE(parser.RemoveNodesByTag(L"S"));
    EXPECT_FALSE(parser.GetNodesByTag(nullptr, nodes));
    EXPECT_TRUE(nodes.empty());
}

TEST(Document, AddNodeMakesTheDocumentElementOrAppendsToIt)
{
    XMLParser parser;
    const XMLNode root = parser.AddNode(L"Root", nullptr, L"a", L"1", L"b", nullptr);
    EXPECT_TRUE(root.IsSameNode(parser.GetRootNode()));
    EXPECT_TRUE(parser.AddNode(L"Child", L"x < y", L"n", L"\"").IsNode());
    EXPECT_FALSE(parser.AddNode(L"1bad").IsNode());
    EXPECT_EQ(parser.GetNodesCount(), 1);
    EXPECT_EQ(RootXmlOf(parser), "<Root a=\"1\"><Child n=\"&quot;\">x &lt; y</Child></Root>");
}

TEST(Document, EveryEditRaisesTheChangeCountAndReadingDoesNot)
{
    XMLParser parser(L"<a><b/></a>");
    XMLNode root = parser.GetRootNode();
    uint64_t last = encap::ChangeCount(parser);
    const auto grows = [&] {
        const uint64_t before = last;
        last = encap::ChangeCount(parser);
        return last > before;
    };
    EXPECT_TRUE(root.AddNode(L"c").IsNode() && grows());
    EXPECT_TRUE(root.SetProperty(L"x", 1) && grows());
    EXPECT_TRUE(root.SetProperty(L"x", 2) && grows());
    EXPECT_TRUE(root.RemoveProperty(L"x") && grows());
    EXPECT_TRUE(ChildOf(root, L"c").SetNodeText(L"t") && grows());
    EXPECT_TRUE(ChildOf(root, L"c").SetNodeText(L"u") && grows());
    EXPECT_TRUE(root.AppendChild(ChildOf(root, L"b")).IsNode() && grows());
    EXPECT_TRUE(root.RemoveChildNode(L"b") && grows());
    EXPECT_TRUE(parser.SetXml(L"<a/>") && grows());
    EXPECT_FALSE(parser.SetXml(L"<a") || !grows());
    EXPECT_TRUE(XmlOf(parser).empty() && !ChildOf(parser, L"b").IsNode());
    EXPECT_FALSE(grows());
}
