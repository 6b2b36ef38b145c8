#pragma once

#include "encap/xml/XMLNode.h"
#include "encap/xml/XMLParser.h"

#include <cstdint>
#include <string_view>

// Access for the library's own hot paths: raw nodes without wrappers, UTF-8 views without copies.
// A raw pointer is valid while a wrapper refers into the same tree and the node is not removed; a
// view until the next edit of its document. Null nodes are safe and give "none". Element names mean
// elements in no namespace, as in a query; an empty name is any element.
namespace encap {

[[nodiscard]] inline IXMLDOMNode* Raw(const XMLNode& node)
{
    return node.GetNode();
}
[[nodiscard]] inline XMLNode Wrap(IXMLDOMNode* node)
{
    return XMLNode(node);
}

[[nodiscard]] IXMLDOMNode* FirstChildElement(IXMLDOMNode* parent, std::string_view name);
/// The next element of that name behind this sibling.
[[nodiscard]] IXMLDOMNode* NextElement(IXMLDOMNode* sibling, std::string_view name);
[[nodiscard]] IXMLDOMNode* ParentElement(IXMLDOMNode* node);
/// An element's name equals this one (with prefix, when it has one).
[[nodiscard]] bool NameEquals(IXMLDOMNode* element, std::string_view name);

/// The attribute's value; data() is null when the attribute is absent or this is no element.
[[nodiscard]] std::string_view AttributeView(IXMLDOMNode* element, std::string_view name);
[[nodiscard]] bool AttributeEquals(IXMLDOMNode* element, std::string_view name,
                                   std::string_view utf8Value);
[[nodiscard]] bool AttributeEquals(const XMLNode& element, std::string_view name,
                                   std::string_view utf8Value);

/// The first child element of that name whose attribute has exactly that value. With a hint (a
/// child of parent) the search starts there and goes round: of several matches it gives the first
/// one at or behind the hint, so hints are for values that are unique among the children or where
/// any match will do. A hint that is no child of parent is ignored.
[[nodiscard]] IXMLDOMNode* FindChildByAttribute(IXMLDOMNode* parent, std::string_view element,
                                                std::string_view attribute,
                                                std::string_view utf8Value,
                                                IXMLDOMNode* hint = nullptr);

/// True when the element's text stands in at most one text node and nothing else stands in the
/// element: text is then its view. Else text is empty, and AppendNodeText has the text.
[[nodiscard]] bool TextView(IXMLDOMNode* element, std::string_view& text);
/// Appends what XMLNode::GetNodeText gives.
void AppendNodeText(IXMLDOMNode* node, CString& out);

/// Moves node into the sibling's parent, before the sibling; refused as XMLNode::InsertChild
/// refuses, and for an attribute as the sibling. node refers to the inserted node afterwards.
bool InsertBefore(const XMLNode& sibling, XMLNode& node);

/// Grows with every edit of the node's document through this layer, indentation included; 0 for an
/// empty node. A parser's count grows too when its content is replaced: an index kept beside a
/// document is stale when the count differs.
[[nodiscard]] uint64_t ChangeCount(const XMLNode& node);
[[nodiscard]] uint64_t ChangeCount(const XMLParser& parser);
/// As ChangeCount, but without most edits inside this child of the document element: for an index
/// over other parts of the document.
[[nodiscard]] uint64_t ChangeCountOutside(const XMLNode& section);

} // namespace encap
