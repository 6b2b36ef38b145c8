#pragma once

#include "encap/xml/XMLParser.h"

#include <vector>

namespace encap::cli {

/// What differs between two states of a document, a line each, in document order: the path of the
/// element or attribute below the document element, and its texts before and after
/// ("FamilyTable/Rows/Row[r1]/Cell[D]: "3" -> "4"").
[[nodiscard]] std::vector<CString> ChangesBetween(const XMLParser& before, const XMLParser& after);

} // namespace encap::cli
