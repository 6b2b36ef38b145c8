#pragma once

#include "encap/foundation/Types.h"

#include <string_view>

namespace encap::cli {

enum class DocumentKind {
    Family,          ///< the document element has a FamilyTable
    Strings,         ///< the document element names its language
    TableOfContents, ///< by the name of the document element
    Other,           ///< an XML document that is none of these
    Unknown          ///< no XML document, or one that is not whole or not readable
};

/// What the beginning of a document tells without parsing it.
struct DocumentHead {
    DocumentKind kind = DocumentKind::Unknown;
    CString internalName; ///< the document element's attribute
};

/// Reads no more of the file than it takes to tell.
[[nodiscard]] DocumentHead ReadDocumentHead(const CString& path);

} // namespace encap::cli
