#pragma once

#include "encap/family/Family.h"

namespace encap::fuzz {

/// Reads everything that a family has to say: properties, languages, columns, mapping, cells in
/// every language, and the checks of the table, the larger ones up to a budget. Returns what was
/// said, so that two openings of one document can be compared.
[[nodiscard]] CString ReadEverything(CEncapFamily& family);

/// Requires that the family's documents, saved now, parse again and hold the same, and that reading
/// changes nothing. Returns what a family says that is opened from them.
CString RequireSavedDocumentsHold(CEncapFamily& family);

} // namespace encap::fuzz
