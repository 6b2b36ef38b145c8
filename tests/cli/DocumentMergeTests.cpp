#include "cli/DocumentMerge.h"

#include "cli/DocumentChanges.h"
#include "encap/xml/XMLNodeArray.h"
#include "tests/cli/CliRun.h"

#include <functional>

namespace encap::test {
namespace {

XMLNode Find(const XMLParser& document, const wchar_t* path)
{
    XMLNode node;
    EXPECT_TRUE(document.GetRootNode().GetChildNode(path, node)) << Utf8(path);
    return node;
}

struct Edit {
    const char* what;
    std::function<void(const XMLParser&)> change;
    const wchar_t* from; ///< the part of the text that is replaced
    const wchar_t* to;
    const wchar_t* line; ///< of the list of changes
};

constexpr const wchar_t* kText = L"<?xml version='1.0'?>\r\n<!-- head -->\r\n"
                                 L"<F a = 'x>&#x41;'  b=\"2\">\r\n"
                                 L"  <Rows >\r\n"
                                 L"    <!-- first --><Row RowId='1'/>\r\n"
                                 L"\r\n"
                                 L"    <Row\r\n      RowId='2'><C Name='n'>t &gt; s</C></Row>\r\n"
                                 L"    <Row RowId='3' />\r\n"
                                 L"  </Rows>\r\n"
                                 L"  <Empty></Empty><Closed/>\r\n"
                                 L"</F><!-- tail -->\r\n";

std::vector<Edit> Edits()
{
    const auto rowTo = [](int index) {
        return [index](const XMLParser& document) {
            XMLNode row = Find(document, L"Rows/Row[@RowId='3']");
            Find(document, L"Rows").InsertChild(row, index);
        };
    };
    return {
        {"an attribute", [](const XMLParser& d) { d.GetRootNode().SetProperty(L"a", L"<'\"\n"); },
         L"x>&#x41;", L"&lt;&apos;&quot;&#10;", L"@a: \"x>A\" -> \"<'\"\n\""},
        {"a new attribute", [](const XMLParser& d) { d.GetRootNode().SetProperty(L"c", L"3"); },
         L"b=\"2\"", L"b=\"2\" c=\"3\"", L"@c: \"\" -> \"3\""},
        {"an attribute less", [](const XMLParser& d) { d.GetRootNode().RemoveProperty(L"a"); },
         L" a = 'x>&#x41;'", L"", L"@a: \"x>A\" -> \"\""},
        {"an attribute of an element that is moved on",
         [](const XMLParser& d) { Find(d, L"Rows/Row[1]").SetProperty(L"x", L""); },
         L"<Row RowId='1'/>", L"<Row RowId='1' x=\"\"/>", nullptr},
        {"a text", [](const XMLParser& d) { Find(d, L"Rows/Row/C").SetNodeText(L"a<b\"]]>"); },
         L"t &gt; s", L"a&lt;b\"]]&gt;", L"Rows/Row[2]/C[n]: \"t > s\" -> \"a<b\"]]>\""},
        {"a text where there was none",
         [](const XMLParser& d) { Find(d, L"Closed").SetNodeText(L"x"); }, L"<Closed/>",
         L"<Closed>x</Closed>", L"Closed: \"\" -> \"x\""},
        {"a child where there was none",
         [](const XMLParser& d) { Find(d, L"Closed").AddNode(L"New"); }, L"<Closed/>",
         L"<Closed><New /></Closed>", L"Closed/New: added at position 1"},
        {"a child of one in lines",
         [](const XMLParser& d) { d.GetRootNode().AddNode(L"New").AddNode(L"Sub", L"t"); },
         L"<Closed/>", L"<Closed/>\r\n  <New>\r\n    <Sub>t</Sub>\r\n  </New>",
         L"New: added at position 4 with Sub \"t\""},
        {"the last child", [](const XMLParser& d) { Find(d, L"Rows/Row[3]").RemoveThisNode(true); },
         L"\r\n    <Row RowId='3' />", L"", L"Rows/Row[3]: removed"},
        {"a child behind a comment",
         [](const XMLParser& d) { Find(d, L"Rows/Row[1]").RemoveThisNode(true); },
         L"<Row RowId='1'/>", L"", L"Rows/Row[1]: removed"},
        {"a move behind a comment", rowTo(1), nullptr, nullptr,
         L"Rows/Row[3]: moved from position 3 to 1"},
        {"a move between", rowTo(2), nullptr, nullptr, L"Rows/Row[3]: moved from position 3 to 2"},
        {"another identity",
         [](const XMLParser& d) { Find(d, L"Rows/Row/C").SetProperty(L"Name", L"m"); }, L"Name='n'",
         L"Name='m'", L"Rows/Row[2]/C[n]/@Name: \"n\" -> \"m\""},
    };
}

TEST(DocumentMerge, ChangesOnlyWhatChanged)
{
    for (const Edit& edit : Edits()) {
        SCOPED_TRACE(edit.what);
        const XMLParser before(kText);
        const XMLParser document(kText);
        edit.change(document);
        const auto merged = cli::MergeIntoText(kText, document);
        ASSERT_TRUE(merged);
        if (edit.from != nullptr) {
            CString expected = kText;
            expected.replace(expected.find(edit.from), CString(edit.from).size(), edit.to);
            EXPECT_EQ(expected, *merged) << Utf8(*merged);
        }
        if (edit.line != nullptr) {
            EXPECT_EQ(std::vector<CString>{edit.line}, cli::ChangesBetween(before, document));
        }
    }
    EXPECT_EQ(kText, cli::MergeIntoText(kText, XMLParser(kText)));
}

// What cannot be put into the text as it stands is told, not written wrongly.
TEST(DocumentMerge, PreservedWhiteSpaceIsNoPlaceForNewLines)
{
    const CString text = L"<F xml:space='preserve'>\n <a/>\n</F>";
    const XMLParser document(text);
    document.GetRootNode().AddNode(L"b");
    EXPECT_FALSE(cli::MergeIntoText(text, document));
}

} // namespace
} // namespace encap::test
