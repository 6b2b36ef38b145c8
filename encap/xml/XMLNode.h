#pragma once

#include "encap/foundation/Types.h"

#include <utility>

/// One node of the tree behind the layer; opaque, never owned through a pointer to it.
struct IXMLDOMNode;
class XMLNodeArray;

/// One node of an XML document (element, text, comment, processing instruction, attribute or the
/// document itself), or nothing: an empty node. Copies refer to the same node. A wrapper keeps its
/// document alive, and keeps a node that was removed or replaced alive as long as any wrapper
/// refers into its subtree. A document and all its wrappers are used by one thread at a time.
///
/// Every operation on an empty node gives false, 0 or an empty node and changes nothing. Null texts
/// count as empty unless stated. Names are qualified names with their prefix ("xml:lang"); a name
/// that XML does not allow, or whose prefix is bound nowhere above, is refused. Characters that XML
/// does not allow in documents become U+FFFD when they are written.
///
/// Paths are XPath 1.0 expressions relative to the node, with the prefix ms bound to
/// urn:schemas-microsoft-com:xslt for ms:string-compare(a, b, language, options): -1, 0 or 1,
/// without regard to case when options holds "i". A query that is not valid, or whose result is
/// not a set of nodes, selects nothing; namespace nodes are left out. Values are placed into
/// queries with encap::QueryLiteral (encap/xml/QueryLiteral.h).
class ENCAP_API XMLNode {
public:
    XMLNode() = default;
    /// Wraps a node of a document of this layer; null gives an empty node.
    explicit XMLNode(IXMLDOMNode* node);
    XMLNode(const XMLNode& other);
    XMLNode(XMLNode&& other) noexcept : m_node(std::exchange(other.m_node, nullptr)) {}
    XMLNode& operator=(const XMLNode& other);
    XMLNode& operator=(XMLNode&& other) noexcept
    {
        XMLNode moved(std::move(other));
        std::swap(m_node, moved.m_node);
        return *this;
    }
    virtual ~XMLNode();

    // The held node.
    [[nodiscard]] IXMLDOMNode* GetNode() const { return m_node; }
    void SetNode(IXMLDOMNode* node);
    [[nodiscard]] bool IsNode() const { return m_node != nullptr; }
    /// Identity, not equality of content; two empty nodes are not the same node.
    [[nodiscard]] bool IsSameNode(const XMLNode& other) const
    {
        return m_node != nullptr && m_node == other.m_node;
    }

    // Name, text and value. The output is emptied first; false on an empty node.

    /// The qualified name; "#text", "#comment" and "#document" for nodes without one.
    bool GetNodeName(CString& name) const;
    bool GetNodeName(CComBSTR& name) const;
    /// The texts of all descendants in order, comments left out; of other nodes than elements the
    /// value.
    bool GetNodeText(CString& text) const;
    bool GetNodeText(CComBSTR& text) const;
    /// Replaces all children of an element by one text node (none for an empty text); of other
    /// nodes the value.
    bool SetNodeText(const CString& text);
    bool SetNodeText(const wchar_t* text);
    /// The value of a text, attribute, comment or processing instruction; elements have none:
    /// false.
    bool GetNodeValue(CString& value) const;
    bool GetNodeValue(CComBSTR& value) const;
    /// False for a value that would end a comment or a processing instruction.
    bool SetNodeValue(const CString& value);
    bool SetNodeValue(const wchar_t* value);
    /// The node and its subtree as XML text, without a declaration.
    bool GetXml(CComBSTR& xml) const;

    // Navigation. The document element's parent is the document node; an attribute's is its
    // element, and it has no siblings. False, an empty node and an empty array stand for "none".

    [[nodiscard]] XMLNode GetParentNode() const;
    /// The number of child nodes of all kinds.
    [[nodiscard]] int GetChildCount() const;
    bool GetFirstChildNode(XMLNode& node) const;
    bool GetLastChildNode(XMLNode& node) const;
    bool GetNextSibling(XMLNode& node) const;
    /// The child node (any kind) at a 0-based index.
    bool GetChildNodeByIdx(int index, XMLNode& node) const;
    /// All child nodes in order; replaces the array's content. True when there is one.
    bool GetChildNodes(XMLNodeArray& nodes) const;
    /// A snapshot of the child nodes: it does not follow later edits.
    [[nodiscard]] XMLNodeArray GetChildNodes() const;
    /// The children with exactly this name; replaces the array's content. True when there is one.
    bool GetChildNodes(const wchar_t* name, XMLNodeArray& nodes) const;
    /// Appends the name of every child node.
    bool GetChildNames(CStringArray& names) const;

    // Selection.

    /// The first selected node in document order; node becomes empty when there is none.
    bool GetChildNode(const wchar_t* path, XMLNode& node) const;
    /// All selected nodes in document order; replaces the array's content. True when there is one.
    bool SelectChildNodes(const wchar_t* xpath, XMLNodeArray& nodes) const;

    // Edits. A failed edit gives an empty node or false.

    /// Appends a new element, with one text node when text is neither null nor empty and with up to
    /// three attributes; a pair with a null name or value is left out.
    XMLNode AddNode(const wchar_t* name, const wchar_t* text = nullptr,
                    const wchar_t* attr1 = nullptr, const wchar_t* value1 = nullptr,
                    const wchar_t* attr2 = nullptr, const wchar_t* value2 = nullptr,
                    const wchar_t* attr3 = nullptr, const wchar_t* value3 = nullptr);
    /// The same, placed before this node in its parent; an empty node without a parent.
    XMLNode AddNodeBefore(const wchar_t* name, const wchar_t* text = nullptr,
                          const wchar_t* attr1 = nullptr, const wchar_t* value1 = nullptr,
                          const wchar_t* attr2 = nullptr, const wchar_t* value2 = nullptr);
    /// The first node selected by name, else a new last child element of that name.
    XMLNode GetOrAddNode(const wchar_t* name);
    /// Moves child to the end of the children and returns it. The node itself, an ancestor, an
    /// attribute or a document gives an empty node and no change. A child of another document is
    /// taken out of it and copied: the returned node is the copy, in this document.
    XMLNode AppendChild(const XMLNode& child);
    /// As AppendChild, before the child now at the 0-based index, or at the end when there is none;
    /// child refers to the inserted node afterwards.
    XMLNode InsertChild(XMLNode& child, int index);
    /// A copy in the same document, attached to no parent; without its children unless deep.
    [[nodiscard]] XMLNode CloneNode(bool deep) const;
    /// Appends a copy of an element of this or another document: the attributes, and when deep the
    /// child elements with all theirs and the texts; other nodes are not copied.
    XMLNode ImportNode(const XMLNode& source, bool deep);
    /// Takes this node out of its parent. When release is set the wrapper is empty afterwards.
    /// False without a parent.
    bool RemoveThisNode(bool release);
    /// Removes the first selected node; false when there is none.
    bool RemoveChildNode(const wchar_t* path);

    // Attributes. Only an element has them: on any other node everything gives false. A getter
    // resets its output first (empty, 0, false) and is false when the attribute is missing.

    /// Appends the name of every attribute in order, namespace declarations first.
    bool GetProperties(CStringArray& names) const;
    /// True on an element, whether or not the attribute was there; false for a null name.
    bool RemoveProperty(const wchar_t* name);
    /// The text as CString; false for a null value.
    bool GetProperty(const wchar_t* name, VARIANT* value) const;
    bool GetProperty(const wchar_t* name, CString& value) const;
    bool GetProperty(const wchar_t* name, CComBSTR& value) const;
    /// Whole decimal numbers with optional sign and surrounding blanks; anything else, or a number
    /// outside 32 bits (16 for short), gives false and 0.
    bool GetProperty(const wchar_t* name, int& value) const;
    bool GetProperty(const wchar_t* name, short& value) const;
    bool GetProperty(const wchar_t* name, long& value) const;
    /// The leading number; 0 and still true when the text starts with none.
    bool GetProperty(const wchar_t* name, double& value) const;
    /// A number other than 0, or the word true in any case; any other text is false. The result is
    /// true whenever the attribute is there.
    bool GetProperty(const wchar_t* name, bool& value) const;
    /// Only the word true, in any case, is true.
    bool GetStrBoolProperty(const wchar_t* name, bool& value) const;

    /// Sets or adds the attribute; a null name or value gives false and no change. Namespace
    /// declarations can be added ("xmlns:p") but not changed.
    bool SetProperty(const wchar_t* name, const wchar_t* value);
    bool SetProperty(const wchar_t* name, wchar_t* value);
    bool SetProperty(const wchar_t* name, const CString& value);
    bool SetProperty(const wchar_t* name, int value);
    bool SetProperty(const wchar_t* name, long value);
    /// As "%.12f".
    bool SetProperty(const wchar_t* name, double value);
    /// -1 for true, 0 for false.
    bool SetProperty(const wchar_t* name, bool value);
    /// The value's text: bool as above, double with up to 15 significant digits; no value is false.
    bool SetProperty(const wchar_t* name, const VARIANT& value);
    /// Any other pointer would silently become a bool.
    template <class T>
    bool SetProperty(const wchar_t* name, T* value) = delete;
    /// "true" or "false".
    bool SetStrBoolProperty(const wchar_t* name, bool value);

private:
    IXMLDOMNode* m_node = nullptr;
};
