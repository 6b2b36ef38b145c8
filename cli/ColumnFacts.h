#pragma once

#include "encap/table/FamilyColumn.h"

#include <vector>

namespace encap::cli {

class JsonWriter;

/// In table order; none is null.
[[nodiscard]] std::vector<CEncapFamilyColumn*> ColumnsOf(const CEncapFamilyTable& table);

// A column's texts as results.
[[nodiscard]] CString IdOf(const CEncapFamilyColumn& column);
[[nodiscard]] CString UnitOf(const CEncapFamilyColumn& column);
/// In the language, else the attribute.
[[nodiscard]] CString TitleOf(const CEncapFamilyColumn& column, const CString& language);
/// The formula as stored, for all languages.
[[nodiscard]] CString FormulaOf(const CEncapFamilyColumn& column);
/// "double" and so on.
[[nodiscard]] CString TypeWordOf(const CEncapFamilyColumn& column);
[[nodiscard]] bool HoldsNumbers(const CEncapFamilyColumn& column);

/// The members that describe a column wherever one is printed as JSON: id, title, type, unit,
/// formula, custom, hidden, keyWeight, localized, columnType.
void WriteColumnMembers(JsonWriter& json, const CEncapFamilyColumn& column,
                        const CString& language);

} // namespace encap::cli
