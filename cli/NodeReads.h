#pragma once

#include "encap/xml/XMLNode.h"
#include "encap/xml/XMLNodeArray.h"

// What a node holds, as values; an empty node holds nothing.
namespace encap::cli {

/// The texts below the node; empty when there is none.
[[nodiscard]] inline CString TextOf(const XMLNode& node)
{
    CString text;
    node.GetNodeText(text);
    return text;
}

/// The attribute's value; empty when the node does not have it.
[[nodiscard]] inline CString PropertyOf(const XMLNode& node, const wchar_t* name)
{
    CString value;
    node.GetProperty(name, value);
    return value;
}

/// The nodes that a path of names leads to, in document order.
[[nodiscard]] inline XMLNodeArray Selected(const XMLNode& node, const wchar_t* path)
{
    XMLNodeArray nodes;
    node.SelectChildNodes(path, nodes);
    return nodes;
}

} // namespace encap::cli
