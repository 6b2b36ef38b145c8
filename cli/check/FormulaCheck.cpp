#include "cli/FailureReport.h"
#include "cli/FormulaFault.h"
#include "cli/FormulaText.h"
#include "cli/check/FamilyCheck.h"

#include <algorithm>

namespace encap::cli {
namespace {

class FormulaCheck : public FamilyCheck {
public:
    explicit FormulaCheck(const CheckedFamily& family) : m_family(family) {}

    void VisitColumn(const CheckedColumn& column, const FindingReport& report) override
    {
        for (const ColumnFormula& formula : column.formulas) {
            const Place place{.column = column.id, .language = formula.language};
            if (CheckText(formula.text, column, place, report)) {
                CheckWithHost(formula, column, place, report);
            }
        }
    }
    void VisitRow(const CheckedRow& row, const FindingReport& report) override
    {
        for (const OwnFormula& formula : row.formulas) {
            CheckText(formula.text, *formula.column, {row.id, formula.column->id, formula.language},
                      report);
        }
    }

private:
    /// False when the text cannot be computed at all.
    bool CheckText(const CString& text, const CheckedColumn& column, const Place& place,
                   const FindingReport& report) const;
    void CheckPowers(const CString& text, const Place& place, const FindingReport& report) const;
    void CheckWithHost(const ColumnFormula& formula, const CheckedColumn& column,
                       const Place& place, const FindingReport& report) const;
    [[nodiscard]] bool SomeRowGetsValue(const CheckedColumn& column, const CString& language) const;

    const CheckedFamily& m_family;
};

bool FormulaCheck::CheckText(const CString& text, const CheckedColumn& column, const Place& place,
                             const FindingReport& report) const
{
    if (const auto fault = FindBraceFault(text)) {
        report.Add(
            Rule::FormulaSyntax, place,
            {Shortened(text), CString(1, fault->brace), static_cast<int32_t>(fault->position + 1)});
        return false;
    }
    ExactMap<bool> unknown;
    for (const CString& id : ReferencesOf(text)) {
        if (m_family.FindColumn(id) == nullptr && unknown.emplace(id, true).second) {
            report.Add(Rule::ReferenceUnknown, place,
                       {Shortened(text), Shortened(id), m_family.Suggestion(id)});
        }
    }
    if (column.holdsNumbers) {
        CheckPowers(text, place, report);
    }
    return unknown.empty();
}

void FormulaCheck::CheckPowers(const CString& text, const Place& place,
                               const FindingReport& report) const
{
    std::size_t close = text.find(L'}');
    for (; close != CString::npos; close = text.find(L'}', close + 1)) {
        const std::size_t next = text.find_first_not_of(kWhiteSpace, close + 1);
        if (next == CString::npos || text[next] != L'^') {
            continue;
        }
        const std::size_t open = text.rfind(L'{', close);
        const CString id(TrimView(std::wstring_view(text).substr(open + 1, close - open - 1)));
        const CheckedColumn* column = m_family.FindColumn(id);
        if (column != nullptr && column->holdsNumbers) {
            const std::size_t end = text.find_first_not_of(L"0123456789.", next + 1);
            const CString exponent = text.substr(next + 1, end - next - 1);
            report.Add(Rule::UnitPower, place,
                       {Shortened(text), id, column->unit.empty() ? CString(L"ul") : column->unit,
                        id, exponent.empty() ? CString(L"...") : exponent});
            return;
        }
    }
}

// The check puts numbers without a unit in for references: what it refuses may have a value in a
// row all the same.
void FormulaCheck::CheckWithHost(const ColumnFormula& formula, const CheckedColumn& column,
                                 const Place& place, const FindingReport& report) const
{
    if (column.isCustom || !column.isEvaluated || column.isShadowed) {
        return;
    }
    OpenFamily& family = m_family.Opened();
    family.Provider().Forget();
    const auto result =
        family.Table().CheckFormulaSyntax(formula.text.c_str(), DataTypes::NormalFormula,
                                          column.column->GetDataType(), column.unit.c_str());
    if (result == CTableEvaluator::EvaluateOK) {
        return;
    }
    const CString fault = FaultOfFormula(family, *column.column, formula.text, result);
    if (!SomeRowGetsValue(column, formula.language)) {
        report.Add(Rule::FormulaRefused, place, {Shortened(formula.text), fault});
    }
}

bool FormulaCheck::SomeRowGetsValue(const CheckedColumn& column, const CString& language) const
{
    const CEncapFamilyTable& table = m_family.Opened().Table();
    const CString& tag = language.empty() ? m_family.Languages().front() : language;
    CString value;
    const auto& rowIds = table.GetAllRowIDs();
    return std::any_of(rowIds.begin(), rowIds.end(), [&](const CString& rowId) {
        const CEncapFamilyRow* row = table.GetFamilyRowByID(rowId.c_str());
        return !row->HasRawValue(column.id.c_str()) &&
               !HasNoValue(column.column->GetValue(rowId.c_str(), tag.c_str(), value));
    });
}

} // namespace

std::unique_ptr<FamilyCheck> MakeFormulaCheck(const CheckedFamily& family)
{
    return std::make_unique<FormulaCheck>(family);
}

} // namespace encap::cli
