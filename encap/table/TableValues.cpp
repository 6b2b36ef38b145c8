#include "encap/evaluation/EvaluatorState.h"
#include "encap/evaluation/ValueText.h"
#include "encap/family/Family.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/NullText.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/RangeParser.h"
#include "encap/foundation/StringUtil.h"
#include "encap/table/FamilyTable.h"
#include "encap/table/TableState.h"

#include <array>

using encap::EvaluationScope;
using encap::RowReference;
using encap::TableAccess;
namespace vocabulary = encap::vocabulary;

CTableEvaluator::EvaluateResult CEncapFamilyTable::GetValue(const wchar_t* rowId,
                                                            const wchar_t* columnId, CString& value)
{
    return GetValue(rowId, columnId, encap::CurrentLanguage(this).c_str(), value);
}

CTableEvaluator::EvaluateResult CEncapFamilyTable::GetValue(const wchar_t* rowId,
                                                            const wchar_t* columnId,
                                                            const wchar_t* language, CString& value)
{
    CEncapFamilyColumn* column = GetFamilyColumnByID(columnId);
    return column != nullptr ? column->GetValue(rowId, language, value)
                             : CTableEvaluator::EvaluateFailed;
}

void CEncapFamilyTable::SetValue(const wchar_t* rowId, const wchar_t* columnId,
                                 const wchar_t* value, bool refreshCache)
{
    SetValue(rowId, columnId, encap::CurrentLanguage(this).c_str(), value, refreshCache);
}

void CEncapFamilyTable::SetValue(const wchar_t* rowId, const wchar_t* columnId,
                                 const wchar_t* language, const wchar_t* value, bool refreshCache)
{
    if (CEncapFamilyColumn* column = GetFamilyColumnByID(columnId)) {
        column->SetValue(rowId, language, value, refreshCache);
    }
}

void CEncapFamilyTable::SetValue(int rowIndex, const wchar_t* columnId, const wchar_t* value,
                                 bool refreshCache)
{
    if (m_state->rows.HasIndex(rowIndex)) {
        SetValue(GetRowIDByIndex(rowIndex).c_str(), columnId, value, refreshCache);
    }
}

void CEncapFamilyTable::ClearCachedValue(const wchar_t* rowId, const wchar_t* columnId)
{
    ClearCachedValue(rowId, columnId, encap::CurrentLanguage(this).c_str());
}

void CEncapFamilyTable::ClearCachedValue(const wchar_t* rowId, const wchar_t* columnId,
                                         const wchar_t* language)
{
    if (CEncapFamilyColumn* column = GetFamilyColumnByID(columnId)) {
        column->ClearCachedValue(rowId, language);
    }
}

long CEncapFamilyTable::GetLocalizedFormula(const wchar_t* columnId, const wchar_t* language,
                                            CString& formula)
{
    return m_state->family != nullptr
               ? m_state->family->GetLocalizedColumnPropertyValue(
                     columnId, vocabulary::kColumnwideValue, language, formula)
               : 1;
}

CTableEvaluator::EvaluateResult
CEncapFamilyTable::Evaluate(const CString& rowId, const CString& columnId, const CString& language)
{
    CEncapFamilyColumn* column = m_state->columns.Find(columnId);
    if (column == nullptr || !column->IsLive()) {
        return CTableEvaluator::EvaluateColumnNotFound;
    }
    const EvaluationScope scope(*this);
    CString value;
    return m_state->evaluator->EvaluateCell(rowId, *column, language, value);
}

CTableEvaluator::EvaluateResult
CEncapFamilyTable::Evaluate(const wchar_t* formula, DataTypes::ColumnFormulaType formulaType,
                            DataTypes::ColumnDataType dataType, const wchar_t* rowId,
                            const wchar_t* units, CString& result)
{
    const EvaluationScope scope(*this);
    return m_state->evaluator->EvaluateExpression(encap::ViewOrEmpty(formula), formulaType,
                                                  dataType, encap::ViewOrEmpty(rowId),
                                                  CString(encap::ViewOrEmpty(units)), result);
}

CTableEvaluator::EvaluateResult CEncapFamilyTable::ReplaceReferences(const wchar_t* text,
                                                                     const wchar_t* rowId,
                                                                     const wchar_t* language,
                                                                     CString& replaced)
{
    const EvaluationScope scope(*this);
    return m_state->evaluator->ReplaceReferences(encap::ViewOrEmpty(text),
                                                 CString(encap::ViewOrEmpty(rowId)),
                                                 CString(encap::ViewOrEmpty(language)), replaced);
}

CTableEvaluator::EvaluateResult
CEncapFamilyTable::CheckFormulaSyntax(const wchar_t* formula,
                                      DataTypes::ColumnFormulaType formulaType,
                                      DataTypes::ColumnDataType dataType, const wchar_t* units)
{
    const EvaluationScope scope(*this);
    return m_state->evaluator->CheckFormulaSyntax(CString(encap::ViewOrEmpty(formula)), formulaType,
                                                  dataType, CString(encap::ViewOrEmpty(units)));
}

CTableEvaluator::EvaluateResult CEncapFamilyTable::IsFormulaValid(const wchar_t* columnId,
                                                                  const wchar_t* formula)
{
    CEncapFamilyColumn* column = GetFamilyColumnByID(columnId);
    if (column == nullptr) {
        return CTableEvaluator::EvaluateColumnNotFound;
    }
    if (!column->IsCustom()) {
        return column->ValidateNormalFormula(formula, CString());
    }
    if (!encap::IsNumericType(column->GetDataType())) {
        return CTableEvaluator::EvaluateTypeMismatch;
    }
    const CString text(encap::ViewOrEmpty(formula));
    if (!CRangeParser::IsRange(text)) {
        return CTableEvaluator::EvaluateBadRange;
    }
    const EvaluationScope scope(*this);
    const CRangeParser range(text.c_str());
    const std::array<CString, 4> parts{range.getMin(), range.getMax(), range.getStep(),
                                       range.getDefault()};
    for (const CString& part : parts) {
        if (!part.empty() &&
            column->ValidateNormalFormula(part.c_str(), CString()) != CTableEvaluator::EvaluateOK) {
            return CTableEvaluator::EvaluateBadRange;
        }
    }
    return CTableEvaluator::EvaluateOK;
}

bool CEncapFamilyTable::GetValueFromExpression(const wchar_t* expression, const wchar_t* unit,
                                               double& value) const
{
    const EvaluationScope scope(*this);
    const encap::HostCalls& host = TableAccess::Evaluator(*this).host;
    const CString unitText = encap::UnitOrUnitless(CString(encap::ViewOrEmpty(unit)));
    if (host.Evaluate(CString(encap::ViewOrEmpty(expression)), unitText, value) < 0) {
        return false;
    }
    return unitText == encap::kDatabaseLength ||
           host.Convert(encap::FormatGeneral(value, encap::kHostDigits), encap::kDatabaseLength,
                        unitText, value);
}

long CEncapFamilyTable::GetLocalizedCellValue(const wchar_t* columnId, const wchar_t* rowId,
                                              const wchar_t* language, CString& value)
{
    return m_state->family != nullptr
               ? m_state->family->GetLocalizedCellValue(columnId, rowId, language, value)
               : 1;
}

void CEncapFamilyTable::DeleteLocalizedCellsValues(const wchar_t* rowId, const wchar_t* columnId,
                                                   bool allLanguages)
{
    if (m_state->family != nullptr) {
        m_state->family->DeleteLocalizedCellsValues(rowId, columnId, allLanguages);
    }
}

long CEncapFamilyTable::GetRawValue(const wchar_t* rowId, const wchar_t* columnId,
                                    CString& value) const
{
    value.clear();
    const CEncapFamilyRow* row = GetFamilyRowByID(rowId);
    return row != nullptr ? row->GetRawValue(columnId, value) : 1;
}

void CEncapFamilyTable::SetRawValue(CEncapFamilyRow& row, const CString& rowId,
                                    const wchar_t* columnId, const wchar_t* language,
                                    const wchar_t* value)
{
    row.SetRawValue(columnId, value);
    if (m_state->family == nullptr) {
        return;
    }
    const CString languageText(encap::ViewOrEmpty(language));
    m_state->family->WriteLocalizedCell(columnId, rowId.c_str(), value,
                                        languageText.empty() ? encap::CurrentLanguage(this).c_str()
                                                             : languageText.c_str());
}

// The cached values of one cell and of everything that depends on it.
void CEncapFamilyTable::DropCellValues(const CString& rowId, const wchar_t* columnId)
{
    CEncapFamilyColumn* column = GetFamilyColumnByID(columnId);
    const RowReference row = TableAccess::FindRow(*this, rowId);
    if (column != nullptr) {
        column->InvalidateCache(CString(row.id), CString());
    }
}

void CEncapFamilyTable::DropRowValues(const CString& rowId)
{
    ++m_state->editVersion;
    if (m_state->cacheStore != nullptr) {
        m_state->cacheStore->ForgetRow(TableAccess::FindRow(*this, rowId).id);
    }
}

void CEncapFamilyTable::DropColumnValues(const CString& columnId)
{
    if (CEncapFamilyColumn* column = m_state->columns.Find(columnId)) {
        column->InvalidateCache(CString(), CString());
    }
}
