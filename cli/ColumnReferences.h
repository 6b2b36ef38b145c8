#pragma once

#include "encap/foundation/Types.h"

#include <vector>

namespace encap::cli {

class FamilyEdit;

/// Throws RefusedEdit unless a new column may have the ID.
void CheckNewColumnId(FamilyEdit& edit, const CString& id);
/// Where the formulas of other columns and of their cells, in every language, refer to a column:
/// "column V", "row r1, column V in de".
[[nodiscard]] std::vector<CString> UsersOf(FamilyEdit& edit, const CString& columnId);
/// Gives a column another ID in all documents: the column, its cells and strings, its mappings, and
/// the references in formulas of columns and cells in every language. Throws RefusedEdit when the
/// new ID is none or belongs to something, or a value of any cell in any language would change. The
/// family is not to be edited further.
void RenameColumn(FamilyEdit& edit, const CString& from, const CString& to);

} // namespace encap::cli
