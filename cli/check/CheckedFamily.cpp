#include "cli/check/CheckedFamily.h"

#include "cli/ColumnFacts.h"
#include "cli/FormulaFault.h"
#include "cli/FormulaText.h"
#include "encap/foundation/CaseFolding.h"

#include <algorithm>

namespace encap::cli {

CheckedFamily::CheckedFamily(OpenFamily& family, const CheckOptions& options)
    : m_family(family), m_options(options), m_languages(family.File().Languages())
{
    if (m_languages.empty()) {
        m_languages.emplace_back();
    }
    // The family's current language is the one that keys and ranges are read in.
    std::stable_partition(m_languages.begin(), m_languages.end(),
                          [&](const CString& language) { return language == family.Language(); });
    ReadColumns();
    MarkVarying();
}

const CheckedColumn* CheckedFamily::FindColumn(const CString& id) const
{
    const auto found = m_byColumn.find(m_family.Table().GetFamilyColumnByID(id.c_str()));
    return found != m_byColumn.end() ? &m_columns[found->second] : nullptr;
}

std::vector<std::size_t> CheckedFamily::ReferencesIn(const CString& formula) const
{
    std::vector<std::size_t> references;
    for (const CString& id : ReferencesOf(formula)) {
        if (const CheckedColumn* column = FindColumn(id)) {
            references.push_back(column->index);
        }
    }
    return references;
}

CString CheckedFamily::Suggestion(const CString& wrongId) const
{
    constexpr std::size_t kMostKept = 1000;
    const auto known = m_suggestions.find(wrongId);
    if (known != m_suggestions.end()) {
        return known->second;
    }
    CString suggestion = SuggestColumns(m_family, wrongId);
    if (m_suggestions.size() < kMostKept) {
        m_suggestions.emplace(wrongId, suggestion);
    }
    return suggestion;
}

void CheckedFamily::ReadColumns()
{
    for (CEncapFamilyColumn* column : ColumnsOf(m_family.Table())) {
        CheckedColumn& checked = m_columns.emplace_back();
        checked.column = column;
        checked.index = m_columns.size() - 1;
        checked.id = IdOf(*column);
        checked.unit = UnitOf(*column);
        checked.formula = FormulaOf(*column);
        checked.isEvaluated = !column->IsStatusColumn() && !EqualNoCase(checked.id, L"RID");
        checked.isShadowed = checked.id.empty() ||
                             m_family.Table().GetFamilyColumnByID(checked.id.c_str()) != column;
        checked.holdsNumbers = HoldsNumbers(*column);
        checked.isCustom = column->IsCustom();
        checked.isLocalized = column->IsLocalized();
        m_byColumn.emplace(column, checked.index);
    }
    for (CheckedColumn& column : m_columns) {
        ReadFormulas(column);
    }
}

void CheckedFamily::ReadFormulas(CheckedColumn& column)
{
    if (!column.formula.empty()) {
        column.formulas.push_back({column.formula, {}});
    }
    for (const CString& language : m_languages) {
        CString text;
        if (column.isLocalized &&
            m_family.Table().GetLocalizedFormula(column.id.c_str(), language.c_str(), text) == 0 &&
            !text.empty() && text != column.formula) {
            column.formulas.push_back({text, language});
        }
    }
    for (const ColumnFormula& formula : column.formulas) {
        const std::vector<std::size_t> found = ReferencesIn(formula.text);
        column.references.insert(column.references.end(), found.begin(), found.end());
    }
}

// Against the references, from the localized columns on.
void CheckedFamily::MarkVarying()
{
    std::vector<std::vector<std::size_t>> dependents(m_columns.size());
    std::vector<std::size_t> open;
    for (CheckedColumn& column : m_columns) {
        for (const std::size_t reference : column.references) {
            dependents[reference].push_back(column.index);
        }
        if (column.isLocalized) {
            column.variesByLanguage = true;
            open.push_back(column.index);
        }
    }
    while (!open.empty()) {
        const std::size_t current = open.back();
        open.pop_back();
        for (const std::size_t dependent : dependents[current]) {
            if (!m_columns[dependent].variesByLanguage) {
                m_columns[dependent].variesByLanguage = true;
                open.push_back(dependent);
            }
        }
    }
}

} // namespace encap::cli
