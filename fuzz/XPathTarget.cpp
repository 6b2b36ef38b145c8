#include "encap/platform/Encoding.h"
#include "encap/xml/NodeAccess.h"
#include "encap/xml/PathQuery.h"
#include "encap/xml/Queries.h"
#include "encap/xml/QueryLiteral.h"
#include "fuzz/Support.h"
#include "fuzz/Targets.h"

#include <vector>

namespace encap::fuzz {
namespace {

constexpr std::string_view kDocument =
    "<A xmlns:n='urn:n'><B x='1' y=\"it's\"><C x='&quot;'/>text<B><C x='2' n:x='1'/></B></B>"
    "<!--c--><n:B x='1'/><C y='1'><A x='1' y='2'><B/></A></C><B x=''/></A>";

void CompareWays(const XMLNode& context, const CString& query, const std::string& utf8)
{
    xmlNode* node = NodeOf(context);
    const std::vector<xmlNode*> all = SelectAll(node, query.c_str());
    Require(SelectFirst(node, query.c_str()) == (all.empty() ? nullptr : all.front()),
            "the first selected node is the first of all");
    PathQuery path;
    if (path.Parse(utf8)) {
        Require(all == SelectAllByXPath(node, query.c_str()),
                "the direct walk gives what XPath gives");
    }
}

} // namespace

void RunXPath(std::string_view input)
{
    const auto [text, xml] = SplitAt(input, '\n');
    const CString query = platform::Utf8ToWide(text).c_str();
    const std::string utf8 = platform::WideToUtf8(query);
    XMLParser document = ParseBytes(xml.empty() ? kDocument : xml);
    XMLNode root = document.GetRootNode();
    XMLNode first;
    root.GetFirstChildNode(first);
    for (const XMLNode& context : {root, first, root.GetParentNode(), root.CloneNode(true)}) {
        if (context.IsNode()) {
            CompareWays(context, query, utf8);
        }
    }
    // As a value it is found again, whatever it holds.
    if (root.SetProperty(L"value", query)) {
        CString stored;
        root.GetProperty(L"value", stored);
        XMLNode found;
        const CString byValue = L"self::*[@value=" + QueryLiteral(stored) + L"]";
        Require(root.GetChildNode(byValue.c_str(), found), "a value is found by its literal");
    }
    root.GetOrAddNode(query.c_str());
    root.RemoveChildNode(query.c_str());
    document.RemoveNodesByTag(query.c_str());
    const CString saved = XmlOf(document);
    Require(saved.empty() || !root.IsNode() || XmlOf(XMLParser(saved)) == saved,
            "a saved document parses again");
}

} // namespace encap::fuzz
