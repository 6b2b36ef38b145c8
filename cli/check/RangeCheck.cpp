#include "cli/FailureReport.h"
#include "cli/check/FamilyCheck.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/RangeParser.h"
#include "encap/foundation/StringUtil.h"

#include <cmath>
#include <optional>

namespace encap::cli {
namespace {

constexpr double kStepTolerance = 1e-5; // parts of a step
constexpr int kDigits = 8;
constexpr int kAllDigits = 17;

CString NumberText(double number)
{
    return FormatGeneral(number, kDigits);
}

std::optional<double> ReadNumber(CString text)
{
    if (text.empty() || !CStringUtil::IsNumericValue(text.c_str())) {
        return std::nullopt;
    }
    CStringUtil::ReplaceDecimalPointOfCell(text);
    return CStringUtil::ToDouble(text.c_str());
}

/// The number of a text in the column's unit, computed as a cell of the column is.
std::optional<double> ComputeAsCell(const CheckedFamily& family, const CheckedColumn& column,
                                    const CString& rowId, const CString& text)
{
    CString expression;
    if (family.Opened().Table().ReplaceReferences(text.c_str(), rowId.c_str(),
                                                  family.Languages().front().c_str(),
                                                  expression) != CTableEvaluator::EvaluateOK) {
        return std::nullopt;
    }
    if (const auto number = ReadNumber(expression)) {
        return number;
    }
    IEvaluatorProvider& host = family.Opened().Provider();
    const CString unit = column.unit.empty() ? CString(L"ul") : column.unit;
    CString databaseUnit;
    double number = 0.0;
    if (host.EvaluateExpression(expression.c_str(), unit.c_str(), number) < 0 ||
        host.GetDatabaseUnit(unit.c_str(), databaseUnit) < 0) {
        return std::nullopt;
    }
    if (databaseUnit != unit && host.ConvertUnits(FormatGeneral(number, kAllDigits).c_str(),
                                                  databaseUnit.c_str(), unit.c_str(), number) < 0) {
        return std::nullopt;
    }
    return std::isfinite(number) ? std::optional<double>(number) : std::nullopt;
}

/// The number of a part of a range: the library checks values by free expressions, and computes a
/// cell that holds the range with units.
std::optional<double> Compute(const CheckedFamily& family, const CheckedColumn& column,
                              const CString& rowId, const CString& text)
{
    CString value;
    const auto result = family.Opened().Table().Evaluate(text.c_str(), DataTypes::NormalFormula,
                                                         column.column->GetDataType(),
                                                         rowId.c_str(), column.unit.c_str(), value);
    const auto number = result == CTableEvaluator::EvaluateOK ? ReadNumber(value) : std::nullopt;
    return number ? number : ComputeAsCell(family, column, rowId, text);
}

/// A range with the numbers that its parts have in a row.
class RangeInRow {
public:
    /// The row may be empty for a range without references.
    RangeInRow(const CheckedFamily& family, const CheckedColumn& column, const CString& rowId,
               const CString& text);

    /// What is wrong with the range itself; empty when nothing is.
    [[nodiscard]] CString Contradiction() const;
    /// What a value is that the range does not hold ("above the maximum 10"); empty when it does.
    [[nodiscard]] CString Misfit(double value) const;
    [[nodiscard]] std::optional<double> Default() const { return m_default.number; }

private:
    struct Part {
        const wchar_t* name;
        CString text;
        std::optional<double> number{};
    };

    [[nodiscard]] CString Bounds(double value) const;

    Part m_minimum;
    Part m_maximum;
    Part m_step;
    Part m_default;
};

RangeInRow::RangeInRow(const CheckedFamily& family, const CheckedColumn& column,
                       const CString& rowId, const CString& text)
    : m_minimum{L"minimum", CRangeParser(text.c_str()).getMin()},
      m_maximum{L"maximum", CRangeParser(text.c_str()).getMax()},
      m_step{L"step", CRangeParser(text.c_str()).getStep()},
      m_default{L"default", CRangeParser(text.c_str()).getDefault()}
{
    for (Part* part : {&m_minimum, &m_maximum, &m_step, &m_default}) {
        if (!part->text.empty()) {
            part->number = Compute(family, column, rowId, part->text);
        }
    }
}

CString RangeInRow::Contradiction() const
{
    for (const Part* part : {&m_minimum, &m_maximum, &m_step, &m_default}) {
        if (!part->text.empty() && !part->number) {
            return FormatText(L"the %s \"%s\" has no value", {part->name, part->text});
        }
    }
    if (m_minimum.number && m_maximum.number) {
        if (*m_minimum.number > *m_maximum.number) {
            return FormatText(L"the minimum %s is above the maximum %s",
                              {NumberText(*m_minimum.number), NumberText(*m_maximum.number)});
        }
        const double span = *m_maximum.number - *m_minimum.number;
        if (m_step.number && *m_step.number > span) {
            return FormatText(L"the step %s is larger than the span %s from minimum to maximum",
                              {NumberText(*m_step.number), NumberText(span)});
        }
    }
    const CString outside = m_default.number ? Bounds(*m_default.number) : CString();
    return outside.empty() ? CString() : L"the default " + m_default.text + L" is " + outside;
}

CString RangeInRow::Bounds(double value) const
{
    if (m_minimum.number && value < *m_minimum.number) {
        return L"below the minimum " + NumberText(*m_minimum.number);
    }
    if (m_maximum.number && value > *m_maximum.number) {
        return L"above the maximum " + NumberText(*m_maximum.number);
    }
    return {};
}

CString RangeInRow::Misfit(double value) const
{
    CString outside = Bounds(value);
    if (!outside.empty() || !m_step.number || *m_step.number <= 0.0) {
        return outside;
    }
    const double least = m_minimum.number.value_or(0.0);
    const double steps = (value - least) / *m_step.number;
    if (std::abs(steps - std::round(steps)) < kStepTolerance) {
        return {};
    }
    return FormatText(L"off the grid of %s and steps of %s",
                      {NumberText(least), NumberText(*m_step.number)});
}

class RangeCheck : public FamilyCheck {
public:
    explicit RangeCheck(const CheckedFamily& family);

    void VisitColumn(const CheckedColumn& column, const FindingReport& report) override;
    void VisitRow(const CheckedRow& row, const FindingReport& report) override;

private:
    void NoteFileNames();
    bool CheckRange(const RangeInRow& range, const CString& text, const Place& place,
                    const FindingReport& report) const;
    void CheckCell(const CheckedRow& row, const CheckedColumn& column,
                   const FindingReport& report) const;
    void CheckValue(const CheckedRow& row, const CheckedColumn& column,
                    const FindingReport& report) const;

    const CheckedFamily& m_family;
    bool m_hasFileNames = false;
    std::vector<bool> m_isInFileName; ///< by column
    std::vector<bool> m_isBroken;     ///< by column: its values cannot be told right or wrong
};

RangeCheck::RangeCheck(const CheckedFamily& family)
    : m_family(family), m_isInFileName(family.Columns().size(), true),
      m_isBroken(family.Columns().size())
{
    NoteFileNames();
}

// The library gives the titles of the columns that the file name leaves out, in table order.
void RangeCheck::NoteFileNames()
{
    CEncapFamilyTable& table = m_family.Opened().Table();
    m_hasFileNames = table.GetFamilyColumnByType(CEncapFamilyColumn::ColumnTypeFileName) != nullptr;
    std::vector<CString> titles;
    if (table.FileNameOfCustomPartIsUnique(titles)) {
        return;
    }
    auto next = titles.begin();
    for (const CheckedColumn& column : m_family.Columns()) {
        CString title;
        column.column->GetTitle(title);
        if (column.isCustom && next != titles.end() && title == *next) {
            m_isInFileName[column.index] = false;
            ++next;
        }
    }
}

void RangeCheck::VisitColumn(const CheckedColumn& column, const FindingReport& report)
{
    if (!column.isCustom || column.isShadowed) {
        return;
    }
    const Place place{.column = column.id};
    const bool isRange = CRangeParser::IsRange(column.formula);
    if (!column.holdsNumbers && isRange) {
        report.Add(Rule::RangeParts, place,
                   {FormatText(L"the column has the range %s and does not hold numbers",
                               {Shortened(column.formula)})});
    } else if (column.holdsNumbers && !column.formula.empty() && !isRange) {
        report.Add(Rule::RangeParts, place,
                   {FormatText(L"the column is custom, and \"%s\" is no range",
                               {Shortened(column.formula)})});
    } else if (column.holdsNumbers && isRange && column.references.empty()) {
        const RangeInRow range(m_family, column, {}, column.formula);
        m_isBroken[column.index] = !CheckRange(range, column.formula, place, report);
    }
    if (!m_hasFileNames || !m_isInFileName[column.index]) {
        report.Add(Rule::CustomFileName, place,
                   {m_hasFileNames ? L"the formula of the file name does not follow the column"
                                   : L"the table has no column of file names"});
    }
}

/// Whether the range is free of contradictions.
bool RangeCheck::CheckRange(const RangeInRow& range, const CString& text, const Place& place,
                            const FindingReport& report) const
{
    const CString contradiction = range.Contradiction();
    if (!contradiction.empty()) {
        report.Add(Rule::RangeParts, place,
                   {L"in the range " + Shortened(text) + L" " + contradiction});
        return false;
    }
    const CString misfit = range.Default() ? range.Misfit(*range.Default()) : CString();
    if (!misfit.empty()) {
        report.Add(Rule::RangeValue, place,
                   {NumberText(*range.Default()), Shortened(text), misfit});
    }
    return true;
}

void RangeCheck::VisitRow(const CheckedRow& row, const FindingReport& report)
{
    if (!row.HasValues()) {
        return;
    }
    for (const CheckedColumn& column : m_family.Columns()) {
        if (column.isCustom && column.holdsNumbers && !column.isShadowed) {
            CheckCell(row, column, report);
        }
    }
}

void RangeCheck::CheckCell(const CheckedRow& row, const CheckedColumn& column,
                           const FindingReport& report) const
{
    const CheckedCell* cell = row.cellOf[column.index];
    const bool isOwn = cell != nullptr && CRangeParser::IsRange(cell->text);
    const bool followsRow =
        cell == nullptr && !column.references.empty() && CRangeParser::IsRange(column.formula);
    if (isOwn || followsRow) {
        const CString& text = isOwn ? cell->text : column.formula;
        CheckRange(RangeInRow(m_family, column, row.id, text), text,
                   {.row = row.id, .column = column.id}, report);
    } else if (cell != nullptr) {
        CheckValue(row, column, report);
    }
}

void RangeCheck::CheckValue(const CheckedRow& row, const CheckedColumn& column,
                            const FindingReport& report) const
{
    const CellValue& value = row.values.front()[column.index];
    if (HasNoValue(value.result) || m_isBroken[column.index] ||
        !CRangeParser::IsRange(column.formula)) {
        return;
    }
    const std::optional<double> number = ReadNumber(value.text);
    const RangeInRow range(m_family, column, row.id, column.formula);
    const CString misfit = number ? range.Misfit(*number) : CString(L"no number");
    if (!misfit.empty()) {
        report.Add(Rule::RangeValue, {.row = row.id, .column = column.id},
                   {L"\"" + value.text + L"\"", column.formula, misfit});
    }
}

} // namespace

std::unique_ptr<FamilyCheck> MakeRangeCheck(const CheckedFamily& family)
{
    return std::make_unique<RangeCheck>(family);
}

} // namespace encap::cli
