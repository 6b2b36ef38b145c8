#pragma once

#include "cli/FailureReport.h"
#include "encap/table/FamilyTable.h"

#include <vector>

namespace encap::cli {

class Console;
class OpenFamily;

/// Reads the cells of an open family in its language, by row and column number, and tells the
/// console of every one that has no value or one without units. The table must not change.
class CellReader {
public:
    CellReader(OpenFamily& family, Console& console);

    [[nodiscard]] const std::vector<CString>& RowIds() const { return m_rowIds; }
    /// In table order; never null.
    [[nodiscard]] const std::vector<CEncapFamilyColumn*>& Columns() const { return m_columns; }
    /// The code of CEncapFamilyTable::GetValue; value is empty when there is none.
    CTableEvaluator::EvaluateResult Read(std::size_t row, std::size_t column, CString& value);
    [[nodiscard]] FailureReport& Failures() { return m_failures; }

private:
    OpenFamily& m_family;
    const std::vector<CString>& m_rowIds;
    std::vector<CEncapFamilyColumn*> m_columns;
    FailureReport m_failures;
};

} // namespace encap::cli
