#include "encap/evaluation/TableEvaluator.h"

#include "encap/evaluation/EvaluatorState.h"
#include "encap/family/Family.h"

namespace {

IEvaluatorProvider* ProviderOf(const CEncapFamilyTable& table)
{
    const CEncapFamily* family = table.GetFamily();
    return family != nullptr ? family->GetEvaluatorProvider() : nullptr;
}

} // namespace

CTableEvaluator::CTableEvaluator(CEncapFamilyTable* table)
    : m_state(std::make_unique<encap::EvaluatorState>(*table, ProviderOf(*table)))
{
}

CTableEvaluator::~CTableEvaluator() = default;

CTableEvaluator::EvaluateResult CTableEvaluator::EvaluateCell(std::wstring_view rowId,
                                                              CEncapFamilyColumn& column,
                                                              std::wstring_view language,
                                                              CString& value)
{
    CEncapFamilyTable& table = *encap::TableAccess::Table(column);
    const encap::RowReference row = encap::TableAccess::FindRow(table, rowId);
    encap::LanguageReference reference{language};
    return m_state->cells.Evaluate(row, column, reference, value);
}

CTableEvaluator::EvaluateResult
CTableEvaluator::EvaluateExpression(std::wstring_view formula,
                                    DataTypes::ColumnFormulaType formulaType,
                                    DataTypes::ColumnDataType dataType, std::wstring_view rowId,
                                    const CString& units, CString& result)
{
    return m_state->expressions.Evaluate(formula, formulaType, dataType, rowId, units, result);
}

CTableEvaluator::EvaluateResult CTableEvaluator::ReplaceReferences(std::wstring_view text,
                                                                   const CString& rowId,
                                                                   const CString& language,
                                                                   CString& replaced)
{
    return m_state->expressions.ReplaceReferences(text, rowId, language, replaced);
}

CTableEvaluator::EvaluateResult
CTableEvaluator::CheckFormulaSyntax(const CString& formula,
                                    DataTypes::ColumnFormulaType formulaType,
                                    DataTypes::ColumnDataType dataType, const CString& units)
{
    return m_state->expressions.CheckSyntax(formula, formulaType, dataType, units);
}
