#include "cli/FailureReport.h"
#include "cli/check/FamilyCheck.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/RangeParser.h"
#include "encap/foundation/StringUtil.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace encap::cli {
namespace {

constexpr double kStepTolerance = 1e-5;     // parts of a step
constexpr double kComputedTolerance = 1e-5; // parts of the number
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

/// A part of a range. Of two equal numbers that the host computed, one may be a cell that went
/// through a conversion with six digits.
struct RangeNumber {
    double value = 0.0;
    double tolerance = 0.0;
};

/// The number of a text in the column's unit, computed as a cell of the column is, but for the
/// digits.
std::optional<double> ComputeAsCell(const CheckedFamily& family, const CheckedColumn& column,
                                    const CString& rowId, const CString& text)
{
    CString expression;
    if (family.Opened().Table().ReplaceReferences(text.c_str(), rowId.c_str(),
                                                  family.Languages().front().c_str(),
                                                  expression) != CTableEvaluator::EvaluateOK) {
        return std::nullopt;
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
    return std::isfinite(number) ? ReadNumber(NumberText(number)) : std::nullopt;
}

std::optional<double> Evaluate(const CheckedFamily& family, const CheckedColumn& column,
                               DataTypes::ColumnDataType type, const CString& rowId,
                               const CString& text)
{
    CString value;
    const auto result = family.Opened().Table().Evaluate(
        text.c_str(), DataTypes::NormalFormula, type, rowId.c_str(), column.unit.c_str(), value);
    return result == CTableEvaluator::EvaluateOK ? ReadNumber(value) : std::nullopt;
}

/// The number of a part of a range: one that stands there or is referred to, else what a cell of
/// the column would compute, else what a free-standing expression gives, as the library has it.
std::optional<RangeNumber> Compute(const CheckedFamily& family, const CheckedColumn& column,
                                   const CString& rowId, const CString& text)
{
    if (const auto number =
            Evaluate(family, column, DataTypes::ColumnDataTypeString, rowId, text)) {
        return RangeNumber{*number};
    }
    auto number = ComputeAsCell(family, column, rowId, text);
    if (!number) {
        number = Evaluate(family, column, column.column->GetDataType(), rowId, text);
    }
    return number ? std::optional<RangeNumber>({*number, std::abs(*number) * kComputedTolerance})
                  : std::nullopt;
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
    [[nodiscard]] const std::optional<RangeNumber>& Default() const { return m_default.number; }

private:
    struct Part {
        const wchar_t* name;
        CString text;
        std::optional<RangeNumber> number{};
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
            return FormatText(L"the %s \"%s\" has no value", {part->name, Shortened(part->text)});
        }
    }
    if (m_minimum.number && m_maximum.number) {
        const double least = m_minimum.number->value;
        const double most = m_maximum.number->value;
        const double tolerance = m_minimum.number->tolerance + m_maximum.number->tolerance;
        if (least - most > tolerance) {
            return FormatText(L"the minimum %s is above the maximum %s",
                              {NumberText(least), NumberText(most)});
        }
        const double span = most - least;
        if (m_step.number && m_step.number->value - span > tolerance + m_step.number->tolerance) {
            return FormatText(L"the step %s is larger than the span %s from minimum to maximum",
                              {NumberText(m_step.number->value), NumberText(span)});
        }
    }
    const CString outside = m_default.number ? Bounds(m_default.number->value) : CString();
    return outside.empty() ? CString()
                           : L"the default " + Shortened(m_default.text) + L" is " + outside;
}

CString RangeInRow::Bounds(double value) const
{
    if (m_minimum.number && value < m_minimum.number->value - m_minimum.number->tolerance) {
        return L"below the minimum " + NumberText(m_minimum.number->value);
    }
    if (m_maximum.number && value > m_maximum.number->value + m_maximum.number->tolerance) {
        return L"above the maximum " + NumberText(m_maximum.number->value);
    }
    return {};
}

CString RangeInRow::Misfit(double value) const
{
    CString outside = Bounds(value);
    if (!outside.empty() || !m_step.number || m_step.number->value <= 0.0) {
        return outside;
    }
    const double least = m_minimum.number ? m_minimum.number->value : 0.0;
    const double steps = (value - least) / m_step.number->value;
    if (std::abs(steps - std::round(steps)) < kStepTolerance) {
        return {};
    }
    return FormatText(L"off the grid of %s and steps of %s",
                      {NumberText(least), NumberText(m_step.number->value)});
}

class RangeCheck : public FamilyCheck {
public:
    explicit RangeCheck(const CheckedFamily& family);

    void VisitColumn(const CheckedColumn& column, const FindingReport& report) override;
    void VisitRow(const CheckedRow& row, const FindingReport& report) override;

private:
    void NoteFileNames();
    void MarkUsedBy(std::size_t column);
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

// The library gives the titles of the columns that the file name leaves out, all of them where it
// uses none; titles may be alike, so that the formula tells which.
void RangeCheck::NoteFileNames()
{
    CEncapFamilyTable& table = m_family.Opened().Table();
    const auto& columns = m_family.Columns();
    const auto fileName =
        std::find_if(columns.begin(), columns.end(), [](const CheckedColumn& column) {
            return column.column->GetColumnType() == CEncapFamilyColumn::ColumnTypeFileName;
        });
    m_hasFileNames = fileName != columns.end();
    std::vector<CString> titles;
    if (table.FileNameOfCustomPartIsUnique(titles)) {
        return;
    }
    const auto customs = std::count_if(columns.begin(), columns.end(),
                                       [](const CheckedColumn& column) { return column.isCustom; });
    m_isInFileName.assign(columns.size(), false);
    if (m_hasFileNames && titles.size() < static_cast<std::size_t>(customs)) {
        MarkUsedBy(fileName->index);
    }
}

void RangeCheck::MarkUsedBy(std::size_t column)
{
    std::vector<std::size_t> open{column};
    while (!open.empty()) {
        const CString& formula = m_family.Columns()[open.back()].formula;
        open.pop_back();
        for (const std::size_t reference : m_family.ReferencesIn(formula)) {
            if (!m_isInFileName[reference]) {
                m_isInFileName[reference] = true;
                open.push_back(reference);
            }
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
    const CString misfit = range.Default() ? range.Misfit(range.Default()->value) : CString();
    if (!misfit.empty()) {
        report.Add(Rule::RangeValue, place,
                   {NumberText(range.Default()->value), Shortened(text), misfit});
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
                   {L"\"" + Shortened(value.text) + L"\"", Shortened(column.formula), misfit});
    }
}

} // namespace

std::unique_ptr<FamilyCheck> MakeRangeCheck(const CheckedFamily& family)
{
    return std::make_unique<RangeCheck>(family);
}

} // namespace encap::cli
