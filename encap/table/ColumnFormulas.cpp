#include "encap/evaluation/ColumnDependencies.h"
#include "encap/family/Family.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/NullText.h"
#include "encap/foundation/StringUtil.h"
#include "encap/table/FamilyColumn.h"
#include "encap/table/FamilyTable.h"
#include "encap/table/TableState.h"

using encap::ColumnDependencies;
using encap::EditScope;
using encap::TableAccess;
using encap::TableState;
namespace vocabulary = encap::vocabulary;

void CEncapFamilyColumn::GetFormula(CString& formula) const
{
    formula = m_state->formula;
}

void CEncapFamilyColumn::GetFormula(CString& formula, const wchar_t* language) const
{
    CurrentFormula(language, formula);
}

// The localized text where the column is localized and the language has one, else the attribute.
void CEncapFamilyColumn::CurrentFormula(const wchar_t* language, CString& formula) const
{
    if (!IsLocalized() || m_table->GetLocalizedFormula(
                              m_state->id.c_str(), encap::TextOrEmpty(language), formula) != 0) {
        formula = m_state->formula;
    }
}

CTableEvaluator::EvaluateResult CEncapFamilyColumn::SetFormula(const wchar_t* formula)
{
    CString language;
    if (m_table != nullptr) {
        m_table->GetActualLanguage(language);
    }
    return SetFormula(formula, language.c_str());
}

CTableEvaluator::EvaluateResult CEncapFamilyColumn::SetFormula(const wchar_t* formula,
                                                               const wchar_t* language)
{
    if (m_table == nullptr || !IsLive()) {
        return CTableEvaluator::EvaluateColumnNotFound;
    }
    const EditScope scope(*m_table);
    CString text(encap::TextOrEmpty(formula));
    const CString languageText(encap::TextOrEmpty(language));
    CString current;
    CurrentFormula(languageText.c_str(), current);
    if (current == text) {
        return CTableEvaluator::EvaluateOK;
    }
    const auto refused = ValidateFormulaBeforeSet(text.c_str(), languageText);
    if (refused != CTableEvaluator::EvaluateOK) {
        return refused;
    }
    if (m_state->dataType == DataTypes::ColumnDataTypeReal) {
        text = CStringUtil::ReplaceDecimalPointOfColumnExpression(text, true);
    }
    const bool hadFormula = IsExpressionColumn();
    StoreFormula(text);
    if (!hadFormula) {
        DeleteAllCells();
    }
    BumpRevisionsIfRefreshing();
    if (m_table->GetFamily() != nullptr && IsLocalized()) {
        m_table->GetFamily()->SetLocalizedColumnPropertyValue(
            m_state->id.c_str(), vocabulary::kColumnwideValue, text.c_str(), languageText.c_str());
    }
    InvalidateCache(CString(), CString());
    return CTableEvaluator::EvaluateOK;
}

CTableEvaluator::EvaluateResult CEncapFamilyColumn::SetEmptyFormula()
{
    if (m_table == nullptr || !IsLive()) {
        return CTableEvaluator::EvaluateOK;
    }
    const EditScope scope(*m_table);
    SetIsCustom(false);
    if (m_table->GetFamily() != nullptr && IsLocalized()) {
        // Else the languages' own formulas would go on giving the column its values.
        m_table->GetFamily()->SetLocalizedColumnPropertyValue(m_state->id.c_str(),
                                                              vocabulary::kColumnwideValue, L"");
    }
    if (m_state->formula.empty()) {
        return CTableEvaluator::EvaluateOK;
    }
    StoreFormula(CString());
    m_table->RemoveColumnDependencies(this);
    BumpRevisionsIfRefreshing();
    InvalidateCache(CString(), CString());
    return CTableEvaluator::EvaluateOK;
}

CTableEvaluator::EvaluateResult CEncapFamilyColumn::ValidateFormulaBeforeSet(const wchar_t* formula,
                                                                             const CString&)
{
    const auto kind = IsCustom() ? DataTypes::RangeFormula : DataTypes::NormalFormula;
    const auto unfit = CheckFormula(formula, kind);
    return unfit != CTableEvaluator::EvaluateOK ? unfit : EnterFormula(formula);
}

CTableEvaluator::EvaluateResult CEncapFamilyColumn::ValidateNormalFormula(const wchar_t* formula,
                                                                          const CString&)
{
    if (m_table == nullptr || !IsLive()) {
        return CTableEvaluator::EvaluateColumnNotFound;
    }
    const EditScope scope(*m_table);
    const auto unfit = CheckFormula(encap::TextOrEmpty(formula), DataTypes::NormalFormula);
    if (unfit != CTableEvaluator::EvaluateOK) {
        return unfit;
    }
    const std::vector<CEncapFamilyColumn*> before = m_state->references;
    const auto result = EnterFormula(encap::TextOrEmpty(formula));
    ColumnDependencies::SetReferences(*this, before);
    return result;
}

CTableEvaluator::EvaluateResult CEncapFamilyColumn::CheckFormula(const wchar_t* formula,
                                                                 DataTypes::ColumnFormulaType kind)
{
    const auto unfit =
        m_table->CheckFormulaSyntax(formula, kind, m_state->dataType, m_state->unit.c_str());
    // The host was asked: it may have deleted the column.
    return unfit == CTableEvaluator::EvaluateOK && !IsLive()
               ? CTableEvaluator::EvaluateColumnNotFound
               : unfit;
}

// Makes the formula's references the column's; a formula that closes a cycle leaves them as they
// were.
CTableEvaluator::EvaluateResult CEncapFamilyColumn::EnterFormula(const wchar_t* formula)
{
    const std::vector<CEncapFamilyColumn*> before = m_state->references;
    const auto unknown = m_table->UpdateColumnsDependency(this, formula);
    if (unknown != CTableEvaluator::EvaluateOK) {
        return unknown;
    }
    const auto cycle = CheckCircularDependency(nullptr);
    if (cycle != CTableEvaluator::EvaluateOK) {
        ColumnDependencies::SetReferences(*this, before);
    }
    return cycle;
}

void CEncapFamilyColumn::StoreFormula(const CString& formula)
{
    CString stored = formula;
    m_node.SetProperty(vocabulary::kColumnwideValue, formula);
    m_state->formula = std::move(stored);
    m_state->tokens.reset();
    m_state->namesUnknown = false;
    TableState& table = TableAccess::Of(*m_table);
    ++table.editVersion;
    if (table.dependenciesIncomplete) {
        table.dependenciesIncomplete = false;
        m_table->BuildColumnsDependency();
    }
}

// A value for the whole column takes the place of the members' own ones.
void CEncapFamilyColumn::DeleteAllCells()
{
    const TableState& table = TableAccess::Of(*m_table);
    const auto count = static_cast<int>(table.rows.Count());
    for (int index = 0; index < count; ++index) {
        TableAccess::RemoveCell(*table.rows.At(index), m_state->idUtf8);
    }
    if (table.family != nullptr) {
        table.family->DeleteLocalizedColumnCells(m_state->id.c_str(), false);
    }
}
