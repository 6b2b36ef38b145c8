#include "encap/xml/XMLNode.h"

#include "encap/platform/Encoding.h"
#include "encap/xml/Nodes.h"
#include "encap/xml/Serializer.h"
#include "encap/xml/Texts.h"
#include "encap/xml/XMLNodeArray.h"

using encap::NodeOf;
using encap::WrapperOf;

namespace {

bool IsAttribute(const xmlNode* node)
{
    return node->type == XML_ATTRIBUTE_NODE;
}

/// The name that the document object model gives to every kind of node.
CString NameOf(const xmlNode* node)
{
    switch (node->type) {
    case XML_TEXT_NODE: return L"#text";
    case XML_COMMENT_NODE: return L"#comment";
    case XML_DOCUMENT_NODE: return L"#document";
    default: return encap::platform::Utf8ToWide(encap::QualifiedName(node));
    }
}

/// The nodes that have a value: their content is one text.
bool HasValue(const xmlNode* node)
{
    return node->type == XML_TEXT_NODE || node->type == XML_COMMENT_NODE ||
           node->type == XML_PI_NODE;
}

std::string_view ValueOf(xmlNode* node)
{
    return IsAttribute(node) ? encap::ValueOf(reinterpret_cast<xmlAttr*>(node))
                             : encap::ViewOf(node->content);
}

/// A comment or an instruction cannot hold what ends it.
bool MayHold(const xmlNode* node, std::string_view value)
{
    if (node->type == XML_COMMENT_NODE) {
        return value.find("--") == std::string_view::npos && (value.empty() || value.back() != '-');
    }
    return node->type != XML_PI_NODE || value.find("?>") == std::string_view::npos;
}

bool Move(XMLNode& out, xmlNode* node)
{
    out.SetNode(encap::ToOpaque(node));
    return node != nullptr;
}

template <class Text>
bool AsBstr(CComBSTR& out, Text text)
{
    CString wide;
    const bool isRead = text(wide);
    out = std::move(wide);
    return isRead;
}

} // namespace

XMLNode::XMLNode(IXMLDOMNode* node) : m_node(node)
{
    if (m_node != nullptr) {
        encap::Tree::Wrap(encap::FromOpaque(m_node));
    }
}

XMLNode::XMLNode(const XMLNode& other) : XMLNode(other.m_node) {}

XMLNode& XMLNode::operator=(const XMLNode& other)
{
    if (this != &other) {
        SetNode(other.m_node);
    }
    return *this;
}

XMLNode::~XMLNode()
{
    if (m_node != nullptr) {
        encap::Tree::Unwrap(encap::FromOpaque(m_node));
    }
}

void XMLNode::SetNode(IXMLDOMNode* node)
{
    if (node != m_node) {
        XMLNode wrapped(node);
        std::swap(m_node, wrapped.m_node);
    }
}

bool XMLNode::GetNodeName(CString& name) const
{
    name = IsNode() ? NameOf(NodeOf(*this)) : CString();
    return IsNode();
}

bool XMLNode::GetNodeName(CComBSTR& name) const
{
    return AsBstr(name, [this](CString& text) { return GetNodeName(text); });
}

bool XMLNode::GetNodeText(CString& text) const
{
    text.clear();
    if (!IsNode()) {
        return false;
    }
    xmlNode* node = NodeOf(*this);
    const xmlNode* only = node->children;
    if (only != nullptr && only->next == nullptr && only->type == XML_TEXT_NODE) {
        encap::platform::AssignWide(text, encap::ViewOf(only->content));
        return true;
    }
    std::string utf8;
    encap::AppendText(node, utf8);
    encap::platform::AssignWide(text, utf8);
    return true;
}

bool XMLNode::GetNodeText(CComBSTR& text) const
{
    return AsBstr(text, [this](CString& wide) { return GetNodeText(wide); });
}

bool XMLNode::SetNodeText(const CString& text)
{
    if (!IsNode()) {
        return false;
    }
    if (NodeOf(*this)->type == XML_ELEMENT_NODE) {
        encap::SetElementText(NodeOf(*this), encap::DocumentText(text));
        return true;
    }
    return SetNodeValue(text);
}

bool XMLNode::SetNodeText(const wchar_t* text)
{
    return SetNodeText(CString(encap::ViewOf(text)));
}

bool XMLNode::GetNodeValue(CString& value) const
{
    value.clear();
    if (!IsNode() || !(HasValue(NodeOf(*this)) || IsAttribute(NodeOf(*this)))) {
        return false;
    }
    encap::platform::AssignWide(value, ValueOf(NodeOf(*this)));
    return true;
}

bool XMLNode::GetNodeValue(CComBSTR& value) const
{
    return AsBstr(value, [this](CString& text) { return GetNodeValue(text); });
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes the node
bool XMLNode::SetNodeValue(const CString& value)
{
    if (!IsNode()) {
        return false;
    }
    xmlNode* node = NodeOf(*this);
    const std::string text = encap::DocumentText(value);
    if (IsAttribute(node)) {
        encap::AssignValue(reinterpret_cast<xmlAttr*>(node), text);
    } else if (HasValue(node) && MayHold(node, text)) {
        encap::AssignContent(node, text);
    } else {
        return false;
    }
    encap::Tree::Of(node).NoteChange(node);
    return true;
}

bool XMLNode::SetNodeValue(const wchar_t* value)
{
    return SetNodeValue(CString(encap::ViewOf(value)));
}

bool XMLNode::GetXml(CComBSTR& xml) const
{
    std::string utf8;
    if (IsNode()) {
        encap::Serializer(utf8).WriteNode(NodeOf(*this));
    }
    xml = encap::platform::Utf8ToWide(utf8);
    return IsNode();
}

XMLNode XMLNode::GetParentNode() const
{
    return IsNode() ? WrapperOf(NodeOf(*this)->parent) : XMLNode();
}

int XMLNode::GetChildCount() const
{
    int count = 0;
    const xmlNode* child = IsNode() ? NodeOf(*this)->children : nullptr;
    for (; child != nullptr; child = child->next) {
        ++count;
    }
    return count;
}

bool XMLNode::GetFirstChildNode(XMLNode& node) const
{
    return Move(node, IsNode() ? NodeOf(*this)->children : nullptr);
}

bool XMLNode::GetLastChildNode(XMLNode& node) const
{
    return Move(node, IsNode() ? NodeOf(*this)->last : nullptr);
}

bool XMLNode::GetNextSibling(XMLNode& node) const
{
    const bool hasSiblings = IsNode() && !IsAttribute(NodeOf(*this));
    return Move(node, hasSiblings ? NodeOf(*this)->next : nullptr);
}

bool XMLNode::GetChildNodeByIdx(int index, XMLNode& node) const
{
    xmlNode* child = IsNode() && index >= 0 ? NodeOf(*this)->children : nullptr;
    for (int i = 0; child != nullptr && i < index; ++i) {
        child = child->next;
    }
    return Move(node, child);
}

bool XMLNode::GetChildNodes(XMLNodeArray& nodes) const
{
    XMLNodeArray children;
    xmlNode* child = IsNode() ? NodeOf(*this)->children : nullptr;
    for (; child != nullptr; child = child->next) {
        children.push_back(WrapperOf(child));
    }
    nodes = std::move(children);
    return !nodes.empty();
}

XMLNodeArray XMLNode::GetChildNodes() const
{
    XMLNodeArray nodes;
    GetChildNodes(nodes);
    return nodes;
}

bool XMLNode::GetChildNodes(const wchar_t* name, XMLNodeArray& nodes) const
{
    const encap::Utf8Text wanted(name);
    XMLNodeArray children;
    xmlNode* child = IsNode() ? NodeOf(*this)->children : nullptr;
    for (; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE ? encap::HasName(child, wanted.View())
                                            : NameOf(child) == encap::ViewOf(name)) {
            children.push_back(WrapperOf(child));
        }
    }
    nodes = std::move(children);
    return !nodes.empty();
}

bool XMLNode::GetChildNames(CStringArray& names) const
{
    const xmlNode* child = IsNode() ? NodeOf(*this)->children : nullptr;
    for (; child != nullptr; child = child->next) {
        names.push_back(NameOf(child));
    }
    return IsNode();
}
