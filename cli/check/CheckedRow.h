#pragma once

#include "cli/check/CheckedFamily.h"

#include <optional>

namespace encap::cli {

/// A "Cell" element of a row.
struct CheckedCell {
    bool hasId = false;
    CString columnId;
    const CheckedColumn* column = nullptr; ///< null when the table has none of exactly that ID
    CString text;
};

/// A text with braces that is a row's own: of a cell, or of a strings document.
struct OwnFormula {
    const CheckedColumn* column = nullptr;
    CString language; ///< empty for a cell's
    CString text;
};

/// An evaluated cell in one language.
struct CellValue {
    bool isRead = false; ///< else the value is that of the first language
    CTableEvaluator::EvaluateResult result = CTableEvaluator::EvaluateOK;
    CString text;
    CString fault;                 ///< why the result is not 0
    std::optional<CString> cached; ///< what there was before the value was computed anew
};

/// A "Row" element with its cells, in document order, and its values.
struct CheckedRow {
    std::size_t number = 0;  ///< from 1
    CString id;              ///< empty when it has none
    bool isShadowed = false; ///< another row has the ID and is found by it
    std::vector<CheckedCell> cells;
    /// By column: the first cell for it, or null.
    std::vector<const CheckedCell*> cellOf;
    std::vector<OwnFormula> formulas;
    /// By language, then by column. Of a row that is shadowed or has no ID nothing is read.
    std::vector<std::vector<CellValue>> values;

    [[nodiscard]] bool HasValues() const { return !id.empty() && !isShadowed; }
};

/// Reads the rows of a family one after the other, with their cells and values. Refers to the
/// family.
class RowReader {
public:
    explicit RowReader(const CheckedFamily& family);

    /// Fills the row from its element; what it held before is used again.
    void Read(const XMLNode& element, CheckedRow& row);

private:
    void ReadCells(const XMLNode& element, CheckedRow& row) const;
    void CollectFormulas(CheckedRow& row) const;
    void ReadCache(CheckedRow& row) const;
    void Evaluate(CheckedRow& row) const;
    void Evaluate(CheckedRow& row, const CheckedColumn& column, std::size_t language) const;
    [[nodiscard]] bool IsSameInAllLanguages(const CheckedRow& row,
                                            const CheckedColumn& column) const;

    const CheckedFamily& m_family;
    ExactMap<const CheckedColumn*> m_columns;
};

} // namespace encap::cli
