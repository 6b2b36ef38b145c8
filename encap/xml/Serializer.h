#pragma once

#include "encap/xml/Tree.h"

#include <string>
#include <string_view>
#include <vector>

namespace encap {

/// The declaration of a document: what "<?xml ...?>" says, when the document has one.
struct XmlDeclaration {
    bool isPresent = false;
    std::string version = "1.0";
    std::string encoding; ///< as named, empty when none is
    int standalone = -1;  ///< 1 yes, 0 no, negative: not said
};

/// Writes trees as XML text in UTF-8, with characters escaped so that parsing gives them back: in
/// texts & < > and carriage returns, in attributes also the quote, tabs and line feeds.
/// Declarations of namespaces that a moved node lacks at its place are added. Never recursive.
class Serializer {
public:
    /// Appends to out, which must outlive this object.
    explicit Serializer(std::string& out) : m_out(out) {}

    void WriteDeclaration(const XmlDeclaration& declaration);
    /// The nodes of a document, each on a line of its own.
    void WriteDocument(xmlDoc* document);
    /// A node with all below; a document gives its nodes without a declaration.
    void WriteNode(xmlNode* root);

    /// The names, comments and processing instructions written so far that hold characters beyond
    /// ASCII: they cannot be written as character references.
    [[nodiscard]] const std::string& BareText() const { return m_bareText; }

private:
    struct Binding {
        std::string_view prefix;
        std::string_view href;
        const xmlNode* element;
    };

    void Open(xmlNode* node);
    void Close(const xmlNode* node);
    void OpenElement(xmlNode* element);
    void WriteAttribute(const xmlAttr* attribute);
    void WriteQualifiedName(const xmlNode* node);
    void WriteBare(std::string_view text);
    void WriteBinding(const xmlNode* element, std::string_view prefix, std::string_view href);
    void BindNamespaces(xmlNode* element);
    void Require(const xmlNode* element, const xmlNs* space);

    std::string& m_out;
    std::string m_bareText;
    std::vector<Binding> m_bindings;
};

} // namespace encap
