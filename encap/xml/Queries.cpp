#include "encap/xml/Queries.h"

#include "encap/xml/Nodes.h"
#include "encap/xml/PathQuery.h"
#include "encap/xml/Texts.h"
#include "encap/xml/XMLNodeArray.h"
#include "encap/xml/XPathQueries.h"

namespace encap {

xmlNode* SelectFirst(xmlNode* context, const wchar_t* query)
{
    const Utf8Text text(query);
    PathQuery path;
    if (path.Parse(text.View())) {
        return path.First(context);
    }
    std::vector<xmlNode*> nodes;
    Tree::Of(context).Queries().Select(context, text.View(), nodes);
    return nodes.empty() ? nullptr : nodes.front();
}

std::vector<xmlNode*> SelectAll(xmlNode* context, const wchar_t* query)
{
    const Utf8Text text(query);
    PathQuery path;
    if (!path.Parse(text.View())) {
        return SelectAllByXPath(context, query);
    }
    std::vector<xmlNode*> nodes;
    path.Select(context, nodes);
    return nodes;
}

std::vector<xmlNode*> SelectAllByXPath(xmlNode* context, const wchar_t* query)
{
    const Utf8Text text(query);
    std::vector<xmlNode*> nodes;
    Tree::Of(context).Queries().Select(context, text.View(), nodes);
    return nodes;
}

} // namespace encap

bool XMLNode::GetChildNode(const wchar_t* path, XMLNode& node) const
{
    xmlNode* found = IsNode() ? encap::SelectFirst(encap::NodeOf(*this), path) : nullptr;
    node.SetNode(encap::ToOpaque(found));
    return found != nullptr;
}

bool XMLNode::SelectChildNodes(const wchar_t* xpath, XMLNodeArray& nodes) const
{
    XMLNodeArray selected;
    if (IsNode()) {
        const std::vector<xmlNode*> found = encap::SelectAll(encap::NodeOf(*this), xpath);
        selected.reserve(found.size());
        for (xmlNode* node : found) {
            selected.push_back(encap::WrapperOf(node));
        }
    }
    nodes = std::move(selected);
    return !nodes.empty();
}
