#include "encap/evaluation/EvaluatorState.h"
#include "encap/evaluation/ValueText.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/RangeParser.h"
#include "encap/foundation/StringUtil.h"
#include "encap/table/FamilyTable.h"
#include "encap/table/TableState.h"

#include <cmath>
#include <optional>

using encap::EditScope;
using encap::EvaluationScope;
using encap::TableAccess;

namespace {

constexpr double kStepTolerance = 1e-5;
constexpr double kComputedTolerance = 1e-5; // parts of the number
constexpr int kAllDigits = 17;

bool FitsDataType(DataTypes::ColumnDataType type, const wchar_t* value)
{
    if (type == DataTypes::ColumnDataTypeBoolean) {
        return CStringUtil::IsLogicalValue(value);
    }
    return !encap::IsNumericType(type) || CStringUtil::IsNumericValue(value);
}

CString TitleOf(const CEncapFamilyColumn& column)
{
    CString title;
    column.GetTitle(title);
    return title;
}

/// A part of a range. Of two equal numbers that the host computed, one may be a cell that went
/// through a conversion with six digits.
struct RangeNumber {
    double value = 0.0;
    double tolerance = 0.0;
};

/// The numbers of a range, in a row and a column's unit; an absent part has none.
class RangeInRow {
public:
    RangeInRow(CEncapFamilyTable& table, const CEncapFamilyColumn& column, const wchar_t* rowId)
        : m_table(table), m_type(column.GetDataType()), m_rowId(rowId)
    {
        column.GetUnitType(m_unit);
    }

    [[nodiscard]] std::optional<RangeNumber> Number(const CString& part)
    {
        if (part.empty()) {
            return std::nullopt;
        }
        if (const auto number = Evaluated(part, DataTypes::ColumnDataTypeString)) {
            return RangeNumber{*number}; // a number, or a reference to one
        }
        auto number = ComputedAsCell(part);
        if (!number) {
            number = Evaluated(part, m_type);
        }
        return number
                   ? std::optional<RangeNumber>({*number, std::abs(*number) * kComputedTolerance})
                   : std::nullopt;
    }

    /// A bound that is there but has no number makes every value invalid.
    [[nodiscard]] bool Holds(const CRangeParser& range, double value)
    {
        const std::optional<RangeNumber> least = Number(range.getMin());
        const std::optional<RangeNumber> most = Number(range.getMax());
        if ((range.hasMin() && (!least || value < least->value - least->tolerance)) ||
            (range.hasMax() && (!most || value > most->value + most->tolerance))) {
            return false;
        }
        const std::optional<RangeNumber> step = Number(range.getStep());
        const double start = least ? least->value : 0.0;
        return !step || step->value <= 0.0 ||
               CStringUtil::IsIntegerValue((value - start) / step->value, kStepTolerance);
    }

private:
    [[nodiscard]] std::optional<double> Evaluated(const CString& part,
                                                  DataTypes::ColumnDataType type)
    {
        CString text;
        if (m_table.Evaluate(part.c_str(), DataTypes::NormalFormula, type, m_rowId, m_unit.c_str(),
                             text) != CTableEvaluator::EvaluateOK ||
            text.empty() || !CStringUtil::IsNumericValue(text.c_str())) {
            return std::nullopt;
        }
        CStringUtil::ReplaceDecimalPointOfCell(text);
        return CStringUtil::ToDouble(text.c_str());
    }

    // As the column's cells are computed, but for the digits: free-standing expressions know
    // lengths only.
    [[nodiscard]] std::optional<double> ComputedAsCell(const CString& part)
    {
        const encap::HostCalls& host = TableAccess::Evaluator(m_table).host;
        const CString unit = encap::UnitOrUnitless(m_unit);
        CString expression;
        CString databaseUnit;
        double number = 0.0;
        const CString language = encap::CurrentLanguage(&m_table);
        if (m_table.ReplaceReferences(part.c_str(), m_rowId, language.c_str(), expression) !=
                CTableEvaluator::EvaluateOK ||
            !host.DatabaseUnit(unit, databaseUnit) || host.Evaluate(expression, unit, number) < 0 ||
            !std::isfinite(number)) {
            return std::nullopt;
        }
        if (unit != databaseUnit &&
            !host.Convert(encap::FormatGeneral(number, kAllDigits), databaseUnit, unit, number)) {
            return std::nullopt;
        }
        encap::AssignNumberValue(number, L'.', expression);
        return CStringUtil::ToDouble(expression.c_str());
    }

    CEncapFamilyTable& m_table;
    DataTypes::ColumnDataType m_type;
    const wchar_t* m_rowId;
    CString m_unit;
};

} // namespace

bool CEncapFamilyTable::IsCellValueValid(const wchar_t* rowId, const wchar_t* columnId,
                                         const wchar_t* value)
{
    const CEncapFamilyColumn* column = GetFamilyColumnByID(columnId);
    return column != nullptr &&
           FitsColumn(rowId, *column, value, TableAccess::Of(*column).formula.c_str());
}

bool CEncapFamilyTable::FitsColumn(const wchar_t* rowId, const CEncapFamilyColumn& column,
                                   const wchar_t* value, const wchar_t* range)
{
    const EvaluationScope scope(*this);
    CString text(value != nullptr ? value : L"");
    if (!FitsDataType(column.GetDataType(), text.c_str())) {
        return false;
    }
    if (!column.IsCustom() || !encap::IsNumericType(column.GetDataType())) {
        return true;
    }
    if (text.empty() || !CRangeParser::IsRange(range)) {
        return false;
    }
    CStringUtil::ReplaceDecimalPointOfCell(text);
    RangeInRow inRow(*this, column, rowId);
    return inRow.Holds(CRangeParser(range), CStringUtil::ToDouble(text.c_str()));
}

int CEncapFamilyTable::CheckRangeColumnData(const wchar_t* columnId, const wchar_t* range)
{
    CEncapFamilyColumn* column = GetFamilyColumnByID(columnId);
    if (column == nullptr) {
        return 0;
    }
    const EvaluationScope scope(*this);
    const CString rangeText = range != nullptr ? CString(range) : TableAccess::Of(*column).formula;
    const std::vector<CString> rowIds = GetAllRowIDs();
    for (std::size_t index = 0; index < rowIds.size(); ++index) {
        CString value;
        const EvaluateResult read = GetValue(rowIds[index].c_str(), columnId, value);
        if (!encap::HasValue(read) ||
            !FitsColumn(rowIds[index].c_str(), *column, value.c_str(), rangeText.c_str())) {
            return static_cast<int>(index);
        }
    }
    return -1;
}

void CEncapFamilyTable::ValidateAndRepairColumnData(CEncapFamilyColumn* column)
{
    std::set<CEncapFamilyColumn*> known;
    if (GetAllColumns(known).count(column) == 0) {
        return;
    }
    const EditScope scope(*this);
    const CString columnId = TableAccess::Of(*column).id;
    column->InvalidateCache(CString(), CString());
    const std::vector<CString> rowIds = GetAllRowIDs();
    for (const CString& rowId : rowIds) {
        CString value;
        CEncapFamilyRow* row = GetFamilyRowByID(rowId.c_str());
        if (column->GetValue(rowId.c_str(), value) == CTableEvaluator::EvaluateTypeMismatch &&
            row != nullptr) {
            row->DeleteCellsColumnValues(columnId.c_str(), true);
        }
    }
}

std::vector<CEncapFamilyColumn*> CEncapFamilyTable::GetKeyColumns() const
{
    std::vector<CEncapFamilyColumn*> keys;
    const auto count = static_cast<int>(m_state->columns.Count());
    for (int index = 0; index < count; ++index) {
        if (m_state->columns.At(index)->IsKeyColumn()) {
            keys.push_back(m_state->columns.At(index));
        }
    }
    return keys;
}

bool CEncapFamilyTable::HasColumnUniqueValues(const wchar_t* columnId, EvaluateResult& result)
{
    CEncapFamilyColumn* column = GetFamilyColumnByID(columnId);
    if (column == nullptr) {
        result = CTableEvaluator::EvaluateColumnNotFound;
        return false;
    }
    return column->HasUniqueValues(result);
}

std::vector<CEncapFamilyColumn*> CEncapFamilyTable::CustomColumns() const
{
    std::vector<CEncapFamilyColumn*> custom;
    const auto count = static_cast<int>(m_state->columns.Count());
    for (int index = 0; index < count; ++index) {
        if (m_state->columns.At(index)->IsCustom()) {
            custom.push_back(m_state->columns.At(index));
        }
    }
    return custom;
}

bool CEncapFamilyTable::HasCustomColumns() const
{
    return !CustomColumns().empty();
}

bool CEncapFamilyTable::hasColumnExpression(CString& columnId) const
{
    const CEncapFamilyColumn* column = m_state->columns.Find(columnId);
    return column != nullptr && column->IsExpressionColumn();
}

bool CEncapFamilyTable::isCellOverride(const CString& rowId, const CString& columnId) const
{
    const CEncapFamilyColumn* column = m_state->columns.Find(columnId);
    const CEncapFamilyRow* row = m_state->rows.Find(rowId);
    return column != nullptr && row != nullptr && column->IsExpressionColumn() &&
           TableAccess::FindCell(*row, TableAccess::Of(*column).idUtf8) != nullptr;
}

bool CEncapFamilyTable::FileNameOfCustomPartIsUnique(std::vector<CString>& titles)
{
    titles.clear();
    const CEncapFamilyColumn* fileName =
        GetFamilyColumnByType(CEncapFamilyColumn::ColumnTypeFileName);
    if (fileName == nullptr) {
        return false;
    }
    // An error in the formula counts as "uses none".
    std::set<CEncapFamilyColumn*> used;
    const bool varies = fileName->IsExpressionColumn() && !fileName->HasExpressionColumnOverrides();
    if (varies && TableAccess::Evaluator(*this).expressions.CollectAllReferences(
                      TableAccess::Of(*fileName).formula, used) != CTableEvaluator::EvaluateOK) {
        used.clear();
    }
    for (CEncapFamilyColumn* column : CustomColumns()) {
        if (used.count(column) == 0) {
            titles.push_back(TitleOf(*column));
        }
    }
    return varies && titles.empty();
}

void CEncapFamilyTable::SetRangeColumnValues(const std::map<CString, CString>& values)
{
    for (const auto& [columnId, value] : m_state->rangeColumnValues) {
        DropColumnValues(columnId);
    }
    for (const auto& [columnId, value] : values) {
        DropColumnValues(columnId);
    }
    m_state->rangeColumnValues = values;
}

bool CEncapFamilyTable::GetRangeColumnValue(const wchar_t* columnId, CString& value) const
{
    const auto found = m_state->rangeColumnValues.find(columnId != nullptr ? columnId : L"");
    if (found == m_state->rangeColumnValues.end()) {
        return false;
    }
    value = found->second;
    return true;
}
