#pragma once

#include "encap/xml/XMLNode.h"
#include "encap/xml/XMLNodeArray.h"

#include <string_view>
#include <utility>

/// One document behind the layer; opaque, counted by XMLDocumentHandle.
struct IXMLDOMDocument;

/// A counted reference to a document, or none. Copies refer to the same document, which dies with
/// its last reference; its nodes live on with their wrappers. Threads: as XMLNode.
class ENCAP_API XMLDocumentHandle {
public:
    XMLDocumentHandle() = default;
    /// Shares a document; null gives none.
    explicit XMLDocumentHandle(IXMLDOMDocument* document);
    XMLDocumentHandle(const XMLDocumentHandle& other);
    XMLDocumentHandle(XMLDocumentHandle&& other) noexcept
        : m_document(std::exchange(other.m_document, nullptr))
    {
    }
    XMLDocumentHandle& operator=(XMLDocumentHandle other) noexcept
    {
        std::swap(m_document, other.m_document);
        return *this;
    }
    ~XMLDocumentHandle();

    [[nodiscard]] IXMLDOMDocument* Get() const { return m_document; }
    explicit operator bool() const { return m_document != nullptr; }
    friend bool operator==(const XMLDocumentHandle&, const XMLDocumentHandle&) = default;

private:
    IXMLDOMDocument* m_document = nullptr;
};

/// One XML document, or none. Copies share the document: what one parser loads, the other sees. A
/// new content is a new tree; nodes of the old one live on with their wrappers. The document's
/// declaration (version, encoding name) is a property of the document, not a node. Threads: as
/// XMLNode.
///
/// Parsing drops texts of white space only, unless xml:space="preserve" is in effect or the text is
/// all that its element holds and has a CDATA section in it, which is how such values are written.
/// It merges CDATA sections into the texts around them, and refuses a document that has a document
/// type declaration or nests deeper than 256 levels. Nothing is fetched from files or the network.
/// A content that does not parse leaves an empty document.
class ENCAP_API XMLParser {
public:
    /// An empty document.
    XMLParser();
    /// A document with the content of the text; empty when it is null or does not parse.
    explicit XMLParser(const wchar_t* xml);
    explicit XMLParser(const CString& xml);
    XMLParser(const XMLParser&) = default;
    XMLParser(XMLParser&&) noexcept = default;
    XMLParser& operator=(const XMLParser&) = default;
    XMLParser& operator=(XMLParser&&) noexcept = default;
    virtual ~XMLParser();

    // Content. False without a document.

    /// Gives the document a declaration of version 1.0 with this encoding name, in place of the one
    /// it has; null or empty: without an encoding. False for a text that is no encoding name.
    bool CreateXmlDocument(const wchar_t* encoding);
    /// Whether the content was parsed with a declaration or has been given one.
    [[nodiscard]] bool HasDeclaration() const;
    /// Reads a file, in the encoding that its byte order mark or declaration names. False without
    /// change when the file cannot be read; false and an empty document when it does not parse.
    bool LoadXmlDocument(const wchar_t* path);
    /// Writes the file as one step, in the encoding that the declaration names: UTF-16
    /// little-endian with a byte order mark, UTF-8 where none is named. When format is set the live
    /// document is indented first. A null path makes a new file "{GUID}.xml" in the temporary
    /// directory. False when the encoding is unknown or the file cannot be written; an existing
    /// file is then whole.
    bool SaveXmlDocument(const wchar_t* path, bool format);
    /// The document as text, the declaration with its encoding name included.
    bool GetXml(CComBSTR& xml) const;
    bool GetXml(CString& xml) const;
    /// A zero-terminated copy that the caller gives back to FreeXml. False for a null argument.
    bool GetXml(wchar_t** xml) const;
    static void FreeXml(wchar_t* xml);
    /// Replaces the content by parsing the text, which is already decoded: an encoding that its
    /// declaration names is kept as a name only.
    bool SetXml(const wchar_t* xml);
    bool SetXml(const CString& xml);
    /// The same for a text in UTF-8, with or without a byte order mark: no wide copy is made. An
    /// empty text and one with bytes that are no characters do not parse.
    bool SetXml(std::string_view utf8);

    [[nodiscard]] XMLDocumentHandle GetDocument() const { return m_document; }
    void SetDocument(XMLDocumentHandle document) { m_document = std::move(document); }

    // Nodes.

    /// The document element, or an empty node.
    [[nodiscard]] XMLNode GetRootNode() const;
    bool GetNode(XMLNode& node) const;
    /// The first node with exactly this name among the document element and its following siblings;
    /// null gives the document element.
    bool GetNode(const wchar_t* name, XMLNode& node) const;
    /// As XMLNode::AddNode on the document element; the new element is the document element when
    /// there is none yet.
    XMLNode AddNode(const wchar_t* name, const wchar_t* text = nullptr,
                    const wchar_t* attr1 = nullptr, const wchar_t* value1 = nullptr,
                    const wchar_t* attr2 = nullptr, const wchar_t* value2 = nullptr);
    /// All elements of that name at any depth, in document order; replaces the array's content. "*"
    /// is any name. True when there is one.
    bool GetNodesByTag(const wchar_t* tag, XMLNodeArray& nodes) const;
    /// Takes every such element out of its parent, nested ones too. True when there was one.
    bool RemoveNodesByTag(const wchar_t* tag);
    /// The number of child nodes of the document element.
    [[nodiscard]] int GetNodesCount() const;

protected:
    /// Indents the children of the document element (a null list) or the nodes of the list, and all
    /// below them, by white space texts: two blanks a level, at most 78. Existing texts stay, so
    /// a second run adds a second layer.
    static void FormatXml(const XMLDocumentHandle& document, const XMLNodeArray* list, int level);

private:
    [[nodiscard]] IXMLDOMNode* CheckPtr(IXMLDOMNode* node) const;
    static bool GenericXmlFilename(CString& path);

    XMLDocumentHandle m_document;
};
