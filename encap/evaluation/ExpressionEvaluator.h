#pragma once

#include "encap/evaluation/HostCalls.h"
#include "encap/evaluation/TableEvaluator.h"
#include "encap/evaluation/Tokens.h"

#include <set>
#include <string_view>

class CEncapFamilyTable;

namespace encap {

/// Evaluates and checks free-standing texts against a table: expressions in the context of a row,
/// and formulas before a column accepts them. Keeps nothing.
class ExpressionEvaluator {
public:
    using Result = CTableEvaluator::EvaluateResult;

    ExpressionEvaluator(CEncapFamilyTable& table, const HostCalls& host, TokenCache& tokens)
        : m_table(table), m_host(host), m_tokens(tokens)
    {
    }

    Result Evaluate(std::wstring_view formula, DataTypes::ColumnFormulaType formulaType,
                    DataTypes::ColumnDataType dataType, std::wstring_view rowId,
                    const CString& units, CString& result);
    /// The text with its references replaced as those of a numeric cell are: the expression that
    /// such a cell hands to the host. replaced is set with 0 only.
    Result ReplaceReferences(std::wstring_view text, const CString& rowId, const CString& language,
                             CString& replaced);
    Result CheckSyntax(const CString& formula, DataTypes::ColumnFormulaType formulaType,
                       DataTypes::ColumnDataType dataType, const CString& units);
    /// The columns that a text refers to, each once; 2 or 5 with columns as they were.
    Result CollectReferences(std::wstring_view formula, std::set<CEncapFamilyColumn*>& columns);
    /// The same, with the columns that the formulas of those refer to, and so on.
    Result CollectAllReferences(std::wstring_view formula, std::set<CEncapFamilyColumn*>& columns);

private:
    Result Substitute(const TokenList& list, const CString& row, bool material,
                      DataTypes::ColumnDataType dataType, const CString& units,
                      CString& expression);
    Result SubstituteReference(const Token& token, const CString& row, const CString& units,
                               CString& expression);
    Result FinishNumber(CString expression, const CString& units, CString& result);
    Result CheckNormal(const CString& formula, DataTypes::ColumnDataType dataType,
                       const CString& units);
    Result CheckNumericReferences(const TokenList& list, DataTypes::ColumnDataType dataType,
                                  const CString& units);
    Result CheckRange(const CString& formula, DataTypes::ColumnDataType dataType,
                      const CString& units);
    bool HostAccepts(const CString& expression, const CString& units);
    double UnitlessNumber(const CString& text);
    [[nodiscard]] wchar_t LocalizedSeparator() const;

    CEncapFamilyTable& m_table;
    const HostCalls& m_host;
    TokenCache& m_tokens;
};

} // namespace encap
