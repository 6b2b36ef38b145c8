#include "encap/platform/Files.h"
#include "tests/xml/XmlTestSupport.h"

#include <thread>

namespace {

constexpr int kLevels = 300'000;

/// Everything that goes through whole subtrees, at a depth that no recursion would survive.
void WorkOnADeepTree()
{
    XMLParser parser;
    XMLNode deepest = parser.AddNode(L"e");
    for (int i = 1; i < kLevels; ++i) {
        deepest = deepest.AddNode(L"e");
    }
    deepest.SetNodeText(L"bottom");
    XMLNode root = parser.GetRootNode();
    EXPECT_EQ(TextOf(root), "bottom");
    const std::string xml = XmlOf(root);
    EXPECT_EQ(xml.size(), 7U * kLevels + 6);
    XMLNode clone = root.CloneNode(true);
    XMLParser other(L"<q/>");
    EXPECT_TRUE(other.GetRootNode().ImportNode(root, true).IsNode());
    EXPECT_TRUE(other.GetRootNode().AppendChild(clone).IsNode());
    EXPECT_EQ(TextOf(other.GetRootNode()), "bottombottom");
    XMLNodeArray nodes;
    EXPECT_TRUE(other.GetNodesByTag(L"e", nodes));
    EXPECT_EQ(nodes.size(), 2U * kLevels);
    nodes.clear();
    EXPECT_TRUE(root.SelectChildNodes(L"//e[not(*)]", nodes));
    EXPECT_EQ(TextOf(nodes[0]), "bottom");
    const CString path =
        encap::platform::WithTrailingSeparator(encap::platform::TemporaryDirectory()) +
        L"encap_xml_deep.xml";
    EXPECT_TRUE(parser.SaveXmlDocument(path.c_str(), true));
    EXPECT_FALSE(parser.LoadXmlDocument(path.c_str()));
    EXPECT_TRUE(encap::platform::DeleteFileIfPresent(path));
}

} // namespace

TEST(DeepTree, NothingRecursesIntoTheTree)
{
    std::thread worker(WorkOnADeepTree);
    worker.join();
}

TEST(DeepTree, DocumentsOnDifferentThreadsDoNotMeet)
{
    const auto work = [] {
        for (int i = 0; i < 50; ++i) {
            XMLParser parser(L"<r><a i='1'/><a i='2'/></r>");
            XMLNodeArray nodes;
            parser.GetRootNode().SelectChildNodes(L"a[ms:string-compare(@i, '2', '', 'i') = 0]",
                                                  nodes);
            ASSERT_EQ(nodes.size(), 1U);
            EXPECT_FALSE(parser.SetXml(L"<r><a></r>"));
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
}
