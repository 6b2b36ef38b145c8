#include "cli/check/CheckedRow.h"

#include "cli/FailureReport.h"

namespace encap::cli {
namespace {

bool HasBraces(const CString& text)
{
    return text.find_first_of(L"{}") != CString::npos;
}

} // namespace

RowReader::RowReader(const CheckedFamily& family) : m_family(family)
{
    for (const CheckedColumn& column : family.Columns()) {
        if (!column.isShadowed) {
            m_columns.emplace(column.id, &column);
        }
    }
}

void RowReader::Read(const XMLNode& element, CheckedRow& row)
{
    ++row.number;
    element.GetProperty(L"RowId", row.id);
    const CEncapFamilyRow* known = m_family.Opened().Table().GetFamilyRowByID(row.id.c_str());
    row.isShadowed = known == nullptr || !known->GetXMLNode().IsSameNode(element);
    ReadCells(element, row);
    CollectFormulas(row);
    if (row.HasValues()) {
        if (m_family.Asked().verifyCache) {
            ReadCache(row);
        }
        Evaluate(row);
    }
}

void RowReader::ReadCells(const XMLNode& element, CheckedRow& row) const
{
    std::size_t count = 0;
    ForEachChild(element, L"Cell", [&](const XMLNode& node) {
        if (count == row.cells.size()) {
            row.cells.emplace_back();
        }
        CheckedCell& cell = row.cells[count++];
        cell.hasId = node.GetProperty(L"ColumnId", cell.columnId);
        const auto found = m_columns.find(cell.columnId);
        cell.column = found != m_columns.end() ? found->second : nullptr;
        node.GetNodeText(cell.text);
    });
    row.cells.resize(count);
    row.cellOf.assign(m_family.Columns().size(), nullptr);
    for (const CheckedCell& cell : row.cells) {
        if (cell.column != nullptr && row.cellOf[cell.column->index] == nullptr) {
            row.cellOf[cell.column->index] = &cell;
        }
    }
}

void RowReader::CollectFormulas(CheckedRow& row) const
{
    row.formulas.clear();
    CString text;
    for (const CheckedColumn& column : m_family.Columns()) {
        const CheckedCell* cell = row.cellOf[column.index];
        if (column.isEvaluated && cell != nullptr && HasBraces(cell->text)) {
            row.formulas.push_back({&column, {}, cell->text});
        }
        if (!column.isLocalized || !column.isEvaluated) {
            continue;
        }
        for (const CString& language : m_family.Languages()) {
            const bool isThere =
                m_family.Opened().Family().GetLocalizedCellValue(column.id.c_str(), row.id.c_str(),
                                                                 language.c_str(), text) == 0;
            if (isThere && HasBraces(text)) {
                row.formulas.push_back({&column, language, text});
            }
        }
    }
}

// All of a row's values are read before they are dropped: references stay within the row, so that
// nothing of what is computed then comes from the cache.
void RowReader::ReadCache(CheckedRow& row) const
{
    const auto& columns = m_family.Columns();
    row.values.resize(m_family.Languages().size());
    for (std::size_t language = 0; language < row.values.size(); ++language) {
        row.values[language].resize(columns.size());
        for (const CheckedColumn& column : columns) {
            if (column.isShadowed) {
                continue; // it would answer in the place of the column that is found by its ID
            }
            CString text;
            const auto result = column.column->GetValue(
                row.id.c_str(), m_family.Languages()[language].c_str(), text);
            row.values[language][column.index].cached =
                result == CTableEvaluator::EvaluateOK ? std::optional<CString>(text) : std::nullopt;
        }
    }
    for (const CheckedColumn& column : columns) {
        column.column->ClearCachedValue(row.id.c_str());
    }
}

bool RowReader::IsSameInAllLanguages(const CheckedRow& row, const CheckedColumn& column) const
{
    return !column.variesByLanguage && row.formulas.empty() && !m_family.Asked().verifyCache;
}

void RowReader::Evaluate(CheckedRow& row) const
{
    row.values.resize(m_family.Languages().size());
    for (std::size_t language = 0; language < row.values.size(); ++language) {
        row.values[language].resize(m_family.Columns().size());
        for (const CheckedColumn& column : m_family.Columns()) {
            const bool isRead =
                !column.isShadowed && (language == 0 || !IsSameInAllLanguages(row, column));
            row.values[language][column.index].isRead = isRead;
            if (isRead) {
                Evaluate(row, column, language);
            }
        }
    }
}

void RowReader::Evaluate(CheckedRow& row, const CheckedColumn& column, std::size_t language) const
{
    const CString& tag = m_family.Languages()[language];
    CellValue& value = row.values[language][column.index];
    value.text.clear();
    m_family.Opened().Provider().Forget();
    value.result = column.column->GetValue(row.id.c_str(), tag.c_str(), value.text);
    value.fault = value.result != CTableEvaluator::EvaluateOK
                      ? FaultOfCell(m_family.Opened(), row.id, *column.column, tag, value.result)
                      : CString();
}

} // namespace encap::cli
