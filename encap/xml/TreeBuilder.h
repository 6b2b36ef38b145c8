#pragma once

#include "encap/xml/Nodes.h"
#include "encap/xml/Parsing.h"

#include <array>
#include <exception>
#include <string>

#include <libxml/parser.h>

namespace encap {

/// Builds a tree from the events of one parse. It drops texts of white space only unless
/// xml:space="preserve" is in effect, gives each run of character data, references and CDATA
/// sections one text node, and stops the parser at a document type declaration and below the
/// deepest level allowed. Nothing is thrown through the parser: an exception stops it and is kept.
class TreeBuilder {
public:
    /// Connects itself to the context. REQUIRES: nothing is parsed with it after this object's end.
    explicit TreeBuilder(xmlParserCtxt* context);
    TreeBuilder(const TreeBuilder&) = delete;
    TreeBuilder& operator=(const TreeBuilder&) = delete;

    /// The tree and declaration after the parse; no tree when it was stopped or the text is not
    /// well-formed. Throws what stopped the parser.
    [[nodiscard]] ParsedDocument Take();

private:
    template <class Step>
    static void Guarded(void* self, Step step);
    static void OnStartDocument(void* self);
    static void OnStartElement(void* self, const xmlChar* name, const xmlChar* prefix,
                               const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                               int attributeCount, int defaultedCount, const xmlChar** attributes);
    static void OnEndElement(void* self, const xmlChar* name, const xmlChar* prefix,
                             const xmlChar* uri);
    static void OnCharacters(void* self, const xmlChar* text, int size);
    static void OnSection(void* self, const xmlChar* text, int size);
    static void OnComment(void* self, const xmlChar* text);
    static void OnInstruction(void* self, const xmlChar* target, const xmlChar* data);
    static void OnDoctype(void* self, const xmlChar* name, const xmlChar* externalId,
                          const xmlChar* systemId);

    void Connect();
    void StartDocument();
    void ReadDeclaration();
    void Stop();
    void FlushText(bool endsElement = false);
    void Append(NewNode node);
    void StartElement(const xmlChar* name, const xmlChar* prefix, const xmlChar* uri);
    void EndElement();
    void AddDeclarations(int count, const xmlChar** namespaces);
    void AddAttributes(int count, const xmlChar** attributes);
    void NoteSpaceHandling(const xmlAttr* attribute);
    [[nodiscard]] std::string_view Value(const xmlChar* begin, const xmlChar* end);
    [[nodiscard]] xmlNs* Space(const xmlChar* prefix, const xmlChar* uri);
    [[nodiscard]] const xmlChar* Name(const xmlChar* prefix, const xmlChar* name,
                                      const xmlNs* space);

    xmlParserCtxt* m_context;
    TreeReference m_tree;
    XmlDeclaration m_declaration;
    xmlNode* m_current = nullptr;
    const xmlChar* m_lastPrefix = nullptr;
    const xmlChar* m_lastUri = nullptr;
    xmlNs* m_lastSpace = nullptr;
    int m_level = 0;
    bool m_isStopped = false;
    std::array<bool, kMostParsedLevels + 1> m_preserves{};
    std::string m_text;
    bool m_hasSection = false; ///< the text so far holds a CDATA section
    std::string m_value;
    std::exception_ptr m_failure;
};

} // namespace encap
