#include "encap/table/FamilyTable.h"

#include "encap/evaluation/ColumnDependencies.h"
#include "encap/evaluation/EvaluatorState.h"
#include "encap/family/Family.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/NullText.h"
#include "encap/table/TableState.h"
#include "encap/xml/NodeAccess.h"

#include <new>
#include <unordered_set>

using encap::IdTable;
using encap::TableAccess;
using encap::TableState;
namespace vocabulary = encap::vocabulary;

namespace {

using IdSet = std::unordered_set<CString, encap::NoCaseHash, encap::NoCaseEqual>;

// The IDs that more than one row or column has. Which of them answers may be another one when the
// document is opened again.
template <class T>
IdSet RepeatedIds(const IdTable<T>& items)
{
    IdSet repeated;
    const auto count = static_cast<int>(items.Count());
    for (int index = 0; index < count; ++index) {
        const auto& entry = items.EntryAt(index);
        if (items.FindEntry(entry.id) != &entry) {
            repeated.insert(entry.id);
        }
    }
    return repeated;
}

} // namespace

CEncapFamilyTable::CEncapFamilyTable() : m_state(std::make_unique<TableState>())
{
    m_state->evaluator = std::make_unique<CTableEvaluator>(this);
}

CEncapFamilyTable::CEncapFamilyTable(const XMLNode& tableNode, CEncapFamily* family,
                                     const wchar_t* cacheDirectory)
    : m_state(std::make_unique<TableState>())
{
    m_state->node = tableNode;
    m_state->family = family;
    m_state->evaluator = std::make_unique<CTableEvaluator>(this);
    m_state->cacheStore = std::make_unique<encap::ValueCacheStore>(cacheDirectory);
    m_state->loading = true;
    InitializeData();
    m_state->loading = false;
}

CEncapFamilyTable::~CEncapFamilyTable()
{
    bool isSaved = true;
    try {
        SaveCache();
    } catch (const std::bad_alloc&) {
        isSaved = false;
    }
    ClearData();
    try {
        if (!isSaved) {
            m_state->cacheStore->Abandon(); // the values can be computed again
        }
    } catch (const std::bad_alloc&) { // not even a file name has room: the old file stays
        isSaved = false;
    }
}

// Chosen range values are not part of the document: values computed from them must not outlive it.
void CEncapFamilyTable::SaveCache()
{
    if (m_state->cacheStore == nullptr) {
        return;
    }
    TableAccess::NoticeLocalization(*this);
    for (const auto& [columnId, value] : m_state->rangeColumnValues) {
        DropColumnValues(columnId);
    }
    if (!m_state->cacheStore->IsChanged() || m_state->cacheStore->FilePath().empty()) {
        return;
    }
    for (const CString& columnId : RepeatedIds(m_state->columns)) {
        DropColumnValues(columnId);
    }
    const IdSet repeatedRows = RepeatedIds(m_state->rows);
    m_state->cacheStore->Save(m_state->columns.Ids(), [&](const CString& rowId) {
        const TableState::RowEntry* entry = m_state->rows.FindEntry(rowId);
        return entry != nullptr && entry->id == rowId && repeatedRows.count(rowId) == 0;
    });
}

void CEncapFamilyTable::InitializeData()
{
    ClearData();
    IXMLDOMNode* table = encap::Raw(m_state->node);
    IXMLDOMNode* columns = encap::FirstChildElement(table, vocabulary::kColumns.utf8);
    IXMLDOMNode* column = encap::FirstChildElement(columns, vocabulary::kColumn.utf8);
    for (; column != nullptr; column = encap::NextElement(column, vocabulary::kColumn.utf8)) {
        LoadColumn(encap::Wrap(column));
    }
    BuildColumnsDependency();
    IXMLDOMNode* rows = encap::FirstChildElement(table, vocabulary::kRows.utf8);
    IXMLDOMNode* row = encap::FirstChildElement(rows, vocabulary::kRow.utf8);
    for (; row != nullptr; row = encap::NextElement(row, vocabulary::kRow.utf8)) {
        CString rowId;
        const XMLNode node = encap::Wrap(row);
        if (node.GetProperty(vocabulary::kRowId, rowId)) {
            m_state->rows.Append(std::move(rowId), std::make_unique<CEncapFamilyRow>(node, this));
        }
    }
}

void CEncapFamilyTable::LoadColumn(const XMLNode& node)
{
    CString columnId;
    if (!node.GetProperty(vocabulary::kColumnId, columnId)) {
        return;
    }
    CEncapFamilyColumn* column =
        m_state->columns.Append(columnId, std::make_unique<CEncapFamilyColumn>(node, this));
    TableAccess::Of(*column).inTable = true;
    ++m_state->structureVersion;
    CString category;
    if (m_state->family != nullptr) {
        m_state->family->InitializeColumnData(column);
        if (m_state->family->GetColumnCategory(columnId.c_str(), category)) {
            column->UpdateColumnType(category);
        }
    }
    NoteStatusColumn(*column, columnId);
}

// The first column of that ID is the status column.
void CEncapFamilyTable::NoteStatusColumn(CEncapFamilyColumn& column, const CString& columnId)
{
    if (m_state->statusColumnId.empty() &&
        encap::EqualNoCase(columnId, vocabulary::kStatusColumn.View())) {
        column.SetIsStatusColumn(true);
        m_state->statusColumnId = columnId;
    }
}

void CEncapFamilyTable::ClearData()
{
    m_state->columns.Clear();
    m_state->rows.Clear();
}

uint64_t CEncapFamilyTable::GetRowsCount() const
{
    return m_state->rows.Count();
}

uint64_t CEncapFamilyTable::GetColumnsCount() const
{
    return m_state->columns.Count();
}

const std::vector<CString>& CEncapFamilyTable::GetAllRowIDs() const
{
    return m_state->rows.Ids();
}

const std::vector<CString>& CEncapFamilyTable::GetAllColumnIDs() const
{
    return m_state->columns.Ids();
}

CString CEncapFamilyTable::GetRowIDByIndex(int index) const
{
    return m_state->rows.HasIndex(index) ? m_state->rows.EntryAt(index).id : CString();
}

CString CEncapFamilyTable::GetFamilyColumnIDByIndex(int index) const
{
    return m_state->columns.HasIndex(index) ? m_state->columns.EntryAt(index).id : CString();
}

CEncapFamilyColumn* CEncapFamilyTable::GetFamilyColumnByID(const wchar_t* columnId) const
{
    return m_state->columns.Find(encap::ViewOrEmpty(columnId));
}

CEncapFamilyRow* CEncapFamilyTable::GetFamilyRowByID(const wchar_t* rowId) const
{
    return m_state->rows.Find(encap::ViewOrEmpty(rowId));
}

CEncapFamilyColumn* CEncapFamilyTable::GetFamilyColumnByIndex(int index) const
{
    return m_state->columns.At(index);
}

CEncapFamilyRow* CEncapFamilyTable::GetFamilyRowByIndex(int index) const
{
    return m_state->rows.At(index);
}

int CEncapFamilyTable::GetFamilyColumnIndexByID(const wchar_t* columnId) const
{
    return m_state->columns.IndexOf(encap::ViewOrEmpty(columnId));
}

int CEncapFamilyTable::GetFamilyRowIndexByID(const wchar_t* rowId) const
{
    return m_state->rows.IndexOf(encap::ViewOrEmpty(rowId));
}

CEncapFamilyColumn*
CEncapFamilyTable::GetFamilyColumnByType(CEncapFamilyColumn::ColumnType type) const
{
    const auto count = static_cast<int>(m_state->columns.Count());
    for (int index = 0; index < count; ++index) {
        if (m_state->columns.At(index)->GetColumnType() == type) {
            return m_state->columns.At(index);
        }
    }
    return nullptr;
}

std::set<CEncapFamilyColumn*>&
CEncapFamilyTable::GetAllColumns(std::set<CEncapFamilyColumn*>& columns) const
{
    const auto count = static_cast<int>(m_state->columns.Count());
    for (int index = 0; index < count; ++index) {
        columns.insert(m_state->columns.At(index));
    }
    return columns;
}

CEncapFamily* CEncapFamilyTable::GetFamily() const
{
    return m_state->family;
}

CTableEvaluator* CEncapFamilyTable::GetEvaluator() const
{
    return m_state->evaluator.get();
}

const CString& CEncapFamilyTable::GetStatusColIDStr() const
{
    return m_state->statusColumnId;
}

bool CEncapFamilyTable::IsColumnMaterial(const wchar_t* columnId) const
{
    const CEncapFamilyColumn* column = GetFamilyColumnByID(columnId);
    return column != nullptr && column->IsMaterial();
}

bool CEncapFamilyTable::IsColumnLocalized(const wchar_t* columnId) const
{
    return m_state->family != nullptr && m_state->family->IsFamilyColumnLocalized(columnId);
}

bool CEncapFamilyTable::IsRowSuppressed(const wchar_t* rowId) const
{
    const CEncapFamilyRow* row = GetFamilyRowByID(rowId);
    return row != nullptr && row->IsSuppressed();
}

DataTypes::ColumnDataType CEncapFamilyTable::GetColumnDataType(const wchar_t* columnId) const
{
    const CEncapFamilyColumn* column = GetFamilyColumnByID(columnId);
    return column != nullptr ? column->GetDataType() : DataTypes::ColumnDataTypeString;
}

void CEncapFamilyTable::SetColumnDataType(const wchar_t* columnId, DataTypes::ColumnDataType type)
{
    if (CEncapFamilyColumn* column = GetFamilyColumnByID(columnId)) {
        column->SetDataType(type);
    }
}

void CEncapFamilyTable::GetActualLanguage(CString& language) const
{
    language.clear();
    if (m_state->family != nullptr) {
        m_state->family->GetActualLanguage(language);
    }
}

wchar_t CEncapFamilyTable::GetDecimalSeparator() const
{
    return m_state->family != nullptr ? m_state->family->GetDecimalSeparator() : L'\0';
}

bool CEncapFamilyTable::LocalizeDecimalSeparator() const
{
    return m_state->family != nullptr && m_state->family->LocalizeDecimalSeparator();
}
