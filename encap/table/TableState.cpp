#include "encap/table/TableState.h"

#include "encap/family/Family.h"
#include "encap/family/Vocabulary.h"
#include "encap/mapping/FamilyMapping.h"
#include "encap/platform/Encoding.h"
#include "encap/xml/NodeAccess.h"

#include <algorithm>
#include <exception>

namespace encap {

namespace {

bool ReadText(IXMLDOMNode* cell, CString& text)
{
    if (cell == nullptr) {
        return false;
    }
    std::string_view view;
    if (TextView(cell, view)) {
        platform::AssignWide(text, view);
    } else {
        text.clear();
        AppendNodeText(cell, text);
    }
    return true;
}

// One more than the mapping's own count, so that 0 stands for "not asked yet".
uint64_t LocalizationVersion(const TableState& state)
{
    const CEncapFamilyMapping* mapping =
        state.family != nullptr ? state.family->GetEncapFamilyMapping() : nullptr;
    return mapping != nullptr ? mapping->LocalizedColumnsVersion() + 1 : 0;
}

} // namespace

IXMLDOMNode* RowCellIndex::Find(const XMLNode& row, const ColumnState& column,
                                ValueCacheStore& numbers)
{
    if (m_row != Raw(row) || m_changes != ChangeCount(row)) {
        Build(row, numbers);
    }
    return column.cacheNumber < m_cells.size() ? m_cells[column.cacheNumber] : nullptr;
}

void RowCellIndex::Build(const XMLNode& row, ValueCacheStore& numbers)
{
    m_row = nullptr; // until all of it is known
    std::fill(m_cells.begin(), m_cells.end(), nullptr);
    std::size_t place = 0;
    IXMLDOMNode* cell = FirstChildElement(Raw(row), vocabulary::kCell.utf8);
    for (; cell != nullptr; cell = NextElement(cell, vocabulary::kCell.utf8)) {
        const std::string_view columnId = AttributeView(cell, vocabulary::kColumnId.utf8);
        if (columnId.data() == nullptr) {
            continue;
        }
        const uint32_t number = NumberOf(place++, columnId, numbers);
        if (number == ValueCacheStore::kNoNumber) {
            continue;
        }
        if (number >= m_cells.size()) {
            m_cells.resize(number + std::size_t{1}, nullptr);
        }
        if (m_cells[number] == nullptr) {
            m_cells[number] = cell;
        }
    }
    m_row = Raw(row);
    m_changes = ChangeCount(row);
}

// The number of the column at a place among the cells, guessed from the row before.
uint32_t RowCellIndex::NumberOf(std::size_t place, std::string_view columnId,
                                ValueCacheStore& numbers)
{
    if (place == m_lastNumbers.size()) {
        m_lastNumbers.push_back(ValueCacheStore::kNoNumber);
    }
    uint32_t& guess = m_lastNumbers[place];
    if (guess == ValueCacheStore::kNoNumber || numbers.ColumnUtf8(guess) != columnId) {
        guess = numbers.FindColumn(platform::Utf8ToWide(columnId));
    }
    return guess;
}

EvaluationScope::EvaluationScope(const CEncapFamilyTable& table) : m_state(TableAccess::Of(table))
{
    ++m_state.evaluations;
}

EvaluationScope::~EvaluationScope()
{
    if (--m_state.evaluations == 0) {
        m_state.removedColumns.clear();
        m_state.removedRows.clear();
    }
}

EditScope::EditScope(const CEncapFamilyTable& table)
    : EvaluationScope(table), m_exceptions(std::uncaught_exceptions())
{
}

EditScope::~EditScope()
{
    if (std::uncaught_exceptions() == m_exceptions || m_state.cacheStore == nullptr) {
        return;
    }
    // Memory ran out: which of the edit's steps were made is not known.
    m_state.cacheStore->ForgetAllRows();
    m_state.dependenciesIncomplete = true;
    ++m_state.graphVersion;
    ++m_state.structureVersion;
    ++m_state.editVersion;
}

bool IsRowBookkeeping(std::wstring_view columnId)
{
    return EqualNoCase(columnId, vocabulary::kRidColumn.View()) ||
           EqualNoCase(columnId, vocabulary::kStatusColumn.View());
}

CString CurrentLanguage(const CEncapFamilyTable* table)
{
    CString language;
    if (table != nullptr) {
        table->GetActualLanguage(language);
    }
    return language;
}

RowReference TableAccess::FindRow(const CEncapFamilyTable& table, std::wstring_view rowId)
{
    const TableState::RowEntry* entry = Of(table).rows.FindEntry(rowId);
    return {entry != nullptr ? std::wstring_view(entry->id) : rowId, entry};
}

IXMLDOMNode* TableAccess::FindCell(const CEncapFamilyRow& row, std::string_view columnId)
{
    return FindChildByAttribute(Raw(row.m_node), vocabulary::kCell.utf8, vocabulary::kColumnId.utf8,
                                columnId);
}

bool TableAccess::ReadCell(const CEncapFamilyRow& row, std::string_view columnId, CString& text)
{
    return ReadText(FindCell(row, columnId), text);
}

bool TableAccess::ReadCell(CEncapFamilyTable& table, const CEncapFamilyRow& row,
                           const ColumnState& column, CString& text)
{
    TableState& state = Of(table);
    return ReadText(state.rowCells.Find(row.m_node, column, *state.cacheStore), text);
}

bool TableAccess::RemoveCell(const CEncapFamilyRow& row, std::string_view columnId)
{
    IXMLDOMNode* cell = FindCell(row, columnId);
    return cell != nullptr && Wrap(cell).RemoveThisNode(true);
}

void TableAccess::NoticeLocalization(const CEncapFamilyTable& table)
{
    TableState& state = Of(table);
    const uint64_t version = LocalizationVersion(state);
    if (state.localizationVersion == version) {
        return;
    }
    const bool isOpening = state.localizationVersion == 0;
    state.localizationVersion = version;
    const auto count = static_cast<int>(state.columns.Count());
    for (int index = 0; index < count; ++index) {
        CEncapFamilyColumn& column = *state.columns.At(index);
        // A column that was never asked may have values all the same, from the cache file.
        const bool isFirst = Of(column).localizedVersion == 0;
        const bool before = Of(column).localized;
        const bool differs = IsLocalized(table, Of(column)) != before;
        if (isFirst ? !isOpening : differs) {
            column.InvalidateCache(CString(), CString());
        }
    }
}

bool TableAccess::IsLocalized(const CEncapFamilyTable& table, ColumnState& column)
{
    const uint64_t version = LocalizationVersion(Of(table));
    if (column.localizedVersion != version) {
        column.localized =
            version != 0 && Of(table).family->IsFamilyColumnLocalized(column.id.c_str());
        column.localizedVersion = version;
    }
    return column.localized;
}

} // namespace encap
