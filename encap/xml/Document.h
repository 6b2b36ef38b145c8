#pragma once

#include "encap/xml/Parsing.h"
#include "encap/xml/Serializer.h"
#include "encap/xml/Tree.h"
#include "encap/xml/XMLParser.h"

#include <cstddef>

/// A document that parsers share: the tree that is its content now, and its declaration. Counted by
/// XMLDocumentHandle. Changes of the content are made through the tree; a new content is a new tree
/// whose count of changes goes on where the old one's was.
struct IXMLDOMDocument {
    encap::TreeReference tree;
    encap::XmlDeclaration declaration;
    std::size_t references = 0;

    /// Takes over what was parsed; empty when it did not parse.
    explicit IXMLDOMDocument(encap::ParsedDocument parsed = {});
    /// The same for a new content. True when it parsed.
    bool Replace(encap::ParsedDocument parsed);
};
