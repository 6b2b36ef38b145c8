#include "cli/FailureReport.h"
#include "cli/check/FamilyCheck.h"

#include <algorithm>

namespace encap::cli {
namespace {

class CellCheck : public FamilyCheck {
public:
    explicit CellCheck(const CheckedFamily& family) : m_family(family) {}

    void VisitRow(const CheckedRow& row, const FindingReport& report) override
    {
        if (!row.HasValues()) {
            return;
        }
        for (const CheckedColumn& column : m_family.Columns()) {
            if (!column.isShadowed) {
                CheckOverride(row, column, report);
                CheckResults(row, column, report);
                CheckCache(row, column, report);
            }
        }
    }

private:
    void CheckOverride(const CheckedRow& row, const CheckedColumn& column,
                       const FindingReport& report) const;
    void CheckResults(const CheckedRow& row, const CheckedColumn& column,
                      const FindingReport& report) const;
    void CheckCache(const CheckedRow& row, const CheckedColumn& column,
                    const FindingReport& report) const;
    [[nodiscard]] CString OwnText(const CheckedRow& row, const CheckedColumn& column,
                                  bool& isThere) const;

    const CheckedFamily& m_family;
};

CString CellCheck::OwnText(const CheckedRow& row, const CheckedColumn& column, bool& isThere) const
{
    const CheckedCell* cell = row.cellOf[column.index];
    isThere = cell != nullptr;
    if (isThere || !column.isLocalized) {
        return isThere ? cell->text : CString();
    }
    CString text;
    isThere = std::any_of(
        m_family.Languages().begin(), m_family.Languages().end(), [&](const CString& language) {
            return m_family.Opened().Family().GetLocalizedCellValue(
                       column.id.c_str(), row.id.c_str(), language.c_str(), text) == 0;
        });
    return text;
}

// A row chooses its value of a custom column: that is what its range is for.
void CellCheck::CheckOverride(const CheckedRow& row, const CheckedColumn& column,
                              const FindingReport& report) const
{
    if (column.formula.empty() || column.isCustom) {
        return;
    }
    bool isThere = false;
    const CString text = OwnText(row, column, isThere);
    if (isThere) {
        report.Add(Rule::ExpressionOverride, {.row = row.id, .column = column.id},
                   {Shortened(text), Shortened(column.formula)});
    }
}

void CellCheck::CheckResults(const CheckedRow& row, const CheckedColumn& column,
                             const FindingReport& report) const
{
    const CellValue& first = row.values.front()[column.index];
    const bool isEverywhere =
        std::all_of(row.values.begin(), row.values.end(), [&](const auto& values) {
            const CellValue& value = values[column.index];
            return !value.isRead || (value.result == first.result && value.fault == first.fault);
        });
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        const CellValue& value = row.values[i][column.index];
        if (!value.isRead || value.result == CTableEvaluator::EvaluateOK) {
            continue;
        }
        const CString language = isEverywhere ? CString() : m_family.Languages()[i];
        report.Add(HasNoValue(value.result) ? Rule::CellFails : Rule::CellUnitless,
                   {row.id, column.id, language}, {value.fault});
        if (isEverywhere) {
            return;
        }
    }
}

void CellCheck::CheckCache(const CheckedRow& row, const CheckedColumn& column,
                           const FindingReport& report) const
{
    if (!m_family.Asked().verifyCache) {
        return;
    }
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        const CellValue& value = row.values[i][column.index];
        const bool isSame =
            value.result == CTableEvaluator::EvaluateOK && value.cached == value.text;
        if (value.cached && !isSame) {
            report.Add(Rule::CacheDiffers, {row.id, column.id, m_family.Languages()[i]},
                       {Shortened(*value.cached), HasNoValue(value.result)
                                                      ? CString(L"no value")
                                                      : L"\"" + Shortened(value.text) + L"\""});
        }
    }
}

} // namespace

std::unique_ptr<FamilyCheck> MakeCellCheck(const CheckedFamily& family)
{
    return std::make_unique<CellCheck>(family);
}

} // namespace encap::cli
