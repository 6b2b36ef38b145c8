#pragma once

#include "encap/foundation/DataTypes.h"
#include "encap/foundation/Types.h"

#include <memory>
#include <string_view>

class CEncapFamilyColumn;
class CEncapFamilyTable;

namespace encap {
struct EvaluatorState;
struct TableAccess;
} // namespace encap

/// Turns the texts of cells and formulas into values: finds the column references in braces, puts
/// the referenced values in, and has the host compute what is numeric. One per table, owned by it;
/// the table's Evaluate, CheckFormulaSyntax, IsFormulaValid and GetValueFromExpression are the way
/// in. Hosts see the result codes only.
class CTableEvaluator {
public:
    /// The result of every evaluation and check.
    enum EvaluateResult : int32_t {
        EvaluateOK = 0,
        /// The cell is already being evaluated, or a formula would depend on itself.
        EvaluateCircularReference = 1,
        /// The braces of an expression do not pair up.
        EvaluateSyntaxError = 2,
        /// The host could not compute, name the database unit or convert; or the table has no such
        /// column.
        EvaluateFailed = 3,
        /// Not a range text, or its parts contradict each other.
        EvaluateBadRange = 4,
        /// A reference names no column, or the formula type is unknown.
        EvaluateUnknownColumn = 5,
        /// The value or expression does not fit the data type.
        EvaluateTypeMismatch = 6,
        /// There is no such column, or evaluation left no value.
        EvaluateColumnNotFound = 7,
        /// A value, computed without units because the expression failed with them.
        EvaluateUnitlessFallback = 8,
    };

    explicit CTableEvaluator(CEncapFamilyTable* table);
    CTableEvaluator(const CTableEvaluator&) = delete;
    CTableEvaluator& operator=(const CTableEvaluator&) = delete;
    virtual ~CTableEvaluator();

    /// Evaluates one cell. With 0 or 8 value holds the text, which is in the cache too unless it is
    /// too long to keep.
    EvaluateResult EvaluateCell(std::wstring_view rowId, CEncapFamilyColumn& column,
                                std::wstring_view language, CString& value);
    EvaluateResult EvaluateExpression(std::wstring_view formula,
                                      DataTypes::ColumnFormulaType formulaType,
                                      DataTypes::ColumnDataType dataType, std::wstring_view rowId,
                                      const CString& units, CString& result);
    EvaluateResult ReplaceReferences(std::wstring_view text, const CString& rowId,
                                     const CString& language, CString& replaced);
    EvaluateResult CheckFormulaSyntax(const CString& formula,
                                      DataTypes::ColumnFormulaType formulaType,
                                      DataTypes::ColumnDataType dataType, const CString& units);

private:
    friend struct encap::TableAccess;

    std::unique_ptr<encap::EvaluatorState> m_state;
};
