#include "encap/xml/Document.h"

IXMLDOMDocument::IXMLDOMDocument(encap::ParsedDocument parsed)
    : tree(parsed.tree ? std::move(parsed.tree) : encap::TreeReference(new encap::Tree)),
      declaration(std::move(parsed.declaration))
{
}

bool IXMLDOMDocument::Replace(encap::ParsedDocument parsed)
{
    const bool isParsed = static_cast<bool>(parsed.tree);
    encap::TreeReference next =
        isParsed ? std::move(parsed.tree) : encap::TreeReference(new encap::Tree);
    next->ContinueChanges(tree->Changes());
    tree = std::move(next);
    if (parsed.declaration.isPresent) {
        declaration = std::move(parsed.declaration);
    }
    return isParsed;
}

XMLDocumentHandle::XMLDocumentHandle(IXMLDOMDocument* document) : m_document(document)
{
    if (m_document != nullptr) {
        ++m_document->references;
    }
}

XMLDocumentHandle::XMLDocumentHandle(const XMLDocumentHandle& other)
    : XMLDocumentHandle(other.m_document)
{
}

XMLDocumentHandle::~XMLDocumentHandle()
{
    if (m_document != nullptr && --m_document->references == 0) {
        delete m_document;
    }
}
