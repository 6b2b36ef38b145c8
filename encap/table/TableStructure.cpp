#include "encap/evaluation/ColumnDependencies.h"
#include "encap/evaluation/ValueText.h"
#include "encap/family/Family.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/NullText.h"
#include "encap/foundation/StringUtil.h"
#include "encap/platform/Encoding.h"
#include "encap/table/FamilyTable.h"
#include "encap/table/TableState.h"
#include "encap/xml/NodeAccess.h"

#include <algorithm>
#include <new>

using encap::ColumnDependencies;
using encap::EditScope;
using encap::IdTable;
using encap::TableAccess;
using encap::TableState;
namespace vocabulary = encap::vocabulary;

namespace {

// Where a new element goes: before the item now at the place, or behind the last one.
template <class T>
std::size_t PlaceFor(const IdTable<T>& items, int index)
{
    const auto wanted = static_cast<std::size_t>(std::max(index, 0));
    return std::min(wanted, items.Count());
}

// A new element of a container, at the place of the item that will follow it.
template <class T>
XMLNode AddElement(XMLNode& container, const IdTable<T>& items, std::size_t place,
                   const encap::Name& element, const encap::Name& idName, const CString& id)
{
    if (place == items.Count()) {
        return container.AddNode(element, nullptr, idName, id.c_str());
    }
    XMLNode following = items.At(static_cast<int>(place))->GetXMLNode();
    return following.AddNodeBefore(element, nullptr, idName, id.c_str());
}

/// An element that goes again unless the table takes it.
class NewElement {
public:
    explicit NewElement(const XMLNode& element) : m_element(element) {}
    ~NewElement()
    {
        try {
            m_element.RemoveThisNode(true);
        } catch (const std::bad_alloc&) { // the element stays, and shows when it is opened again
            m_element = XMLNode();
        }
    }
    NewElement(const NewElement&) = delete;
    NewElement& operator=(const NewElement&) = delete;

    void Keep() { m_element = XMLNode(); }

private:
    XMLNode m_element;
};

// Puts an element that is in no parent at the place of the item that will follow it.
template <class T>
bool PutElement(XMLNode& container, const IdTable<T>& items, std::size_t place, XMLNode& element)
{
    if (place == items.Count()) {
        return container.AppendChild(element).IsNode();
    }
    return encap::InsertBefore(items.At(static_cast<int>(place))->GetXMLNode(), element);
}

// Moves an item to index, counted after its removal, in the document and in the table.
template <class T>
void MoveElement(XMLNode& table, const encap::Name& containerName, IdTable<T>& items,
                 std::wstring_view id, int& index)
{
    const int from = items.IndexOfExact(id);
    if (from < 0) {
        return;
    }
    const auto last = static_cast<int>(items.Count()) - 1;
    if (index > last) {
        index = last;
    }
    const int to = std::max(index, 0);
    if (to == from) {
        return;
    }
    XMLNode container = table.GetOrAddNode(containerName);
    XMLNode element = items.At(from)->GetXMLNode();
    // The item that follows the new place, counted with the moved one still in its old place.
    const auto following = static_cast<std::size_t>(to > from ? to + 1 : to);
    if (PutElement(container, items, following, element)) {
        items.Move(from, to);
    }
}

} // namespace

CEncapFamilyRow* CEncapFamilyTable::InsertNewRow(int index, const CString& rowId)
{
    XMLNode rows = m_state->node.GetOrAddNode(vocabulary::kRows);
    if (!rows.IsNode()) {
        return nullptr;
    }
    const EditScope scope(*this);
    CString id = rowId.empty() ? CStringUtil::NewGuid() : rowId;
    const std::size_t place = PlaceFor(m_state->rows, index);
    XMLNode element =
        AddElement(rows, m_state->rows, place, vocabulary::kRow, vocabulary::kRowId, id);
    // The document's spelling counts: it holds no character that XML forbids.
    if (!element.IsNode() || !element.GetProperty(vocabulary::kRowId, id)) {
        return nullptr;
    }
    NewElement newElement(element);
    auto created = std::make_unique<CEncapFamilyRow>(element, this);
    created->SetRawValue(vocabulary::kRidColumn, id.c_str());
    CEncapFamilyRow* row = m_state->rows.Insert(place, id, std::move(created));
    newElement.Keep();
    const TableState::RowEntry* entry = m_state->rows.FindEntry(id);
    ++m_state->editVersion;
    if (m_state->cacheStore != nullptr) {
        m_state->cacheStore->ForgetRow(id); // values of a row that had this ID before
    }
    row->SetRowState(CEncapFamilyRow::RowStateNew);
    BumpMemberRevision(id.c_str());
    return m_state->rows.FindEntry(id) == entry ? row : nullptr;
}

bool CEncapFamilyTable::DeleteRow(int index)
{
    if (!m_state->rows.HasIndex(index)) {
        return false;
    }
    const CString rowId = m_state->rows.EntryAt(index).id;
    DeleteLocalizedCellsValues(rowId.c_str(), L"", true);
    if (m_state->cacheStore != nullptr) {
        m_state->cacheStore->ForgetRow(rowId);
    }
    ++m_state->editVersion;
    const EditScope scope(*this);
    m_state->removedRows.reserve(m_state->removedRows.size() + 1);
    m_state->rows.At(index)->m_node.RemoveThisNode(false);
    m_state->removedRows.push_back(m_state->rows.Take(index));
    return true;
}

CEncapFamilyRow* CEncapFamilyTable::CopyRow(const CString& rowId)
{
    const encap::RowReference source = TableAccess::FindRow(*this, rowId);
    if (source.entry == nullptr) {
        return nullptr;
    }
    const EditScope scope(*this);
    CEncapFamilyRow* copy = InsertNewRow(static_cast<int>(GetRowsCount()), CString());
    if (copy == nullptr) {
        return nullptr;
    }
    CString copyId;
    copy->GetRowID(copyId);
    const std::vector<CString> columnIds = GetAllColumnIDs();
    for (const CString& columnId : columnIds) {
        CopyCell(source, columnId, copyId);
    }
    // The values came with the source's revision.
    BumpMemberRevision(copyId.c_str());
    return GetFamilyRowByID(copyId.c_str());
}

// Copies the source row's own cell, evaluated where it can be.
void CEncapFamilyTable::CopyCell(const encap::RowReference& source, const CString& columnId,
                                 const CString& targetId)
{
    const CEncapFamilyColumn* column = m_state->columns.Find(columnId);
    if (encap::IsRowBookkeeping(columnId) || !source.Row()->HasRawValue(columnId.c_str())) {
        return;
    }
    const bool referenced = column != nullptr && column->IsReferencedByOther();
    CString value;
    const EvaluateResult read = GetValue(source.entry->id.c_str(), columnId.c_str(), value);
    const bool isEvaluated = encap::HasValue(read);
    if (!isEvaluated) {
        source.Row()->GetRawValue(columnId.c_str(), value);
    }
    SetValue(targetId.c_str(), columnId.c_str(), value.c_str(), referenced);
    if (!isEvaluated) {
        ClearCachedValue(targetId.c_str(),
                         columnId.c_str()); // the text fails there as it does here
    }
}

bool CEncapFamilyTable::PasteRow(int targetIndex, int sourceIndex)
{
    if (!m_state->rows.HasIndex(targetIndex) || !m_state->rows.HasIndex(sourceIndex)) {
        return false;
    }
    const EditScope scope(*this);
    const CString target = GetRowIDByIndex(targetIndex);
    const CString source = GetRowIDByIndex(sourceIndex);
    const std::vector<CString> columnIds = GetAllColumnIDs();
    for (const CString& columnId : columnIds) {
        CString value;
        if (encap::IsRowBookkeeping(columnId)) {
            continue;
        }
        const EvaluateResult read = GetValue(source.c_str(), columnId.c_str(), value);
        // A value that cannot be read must not erase what the target has.
        if (encap::HasValue(read)) {
            SetValue(target.c_str(), columnId.c_str(), value.c_str(), true);
        }
    }
    return true;
}

void CEncapFamilyTable::ChangeRowIndex(const wchar_t* rowId, int& index)
{
    ++m_state->editVersion;
    MoveElement(m_state->node, vocabulary::kRows, m_state->rows, encap::ViewOrEmpty(rowId), index);
}

CEncapFamilyColumn* CEncapFamilyTable::InsertNewColumn(int index, const wchar_t* columnId)
{
    XMLNode columns = m_state->node.GetOrAddNode(vocabulary::kColumns);
    CString id(encap::ViewOrEmpty(columnId));
    if (!columns.IsNode() || m_state->columns.Find(id) != nullptr) {
        return nullptr;
    }
    const EditScope scope(*this);
    const std::size_t place = PlaceFor(m_state->columns, index);
    XMLNode element = AddElement(columns, m_state->columns, place, vocabulary::kColumn,
                                 vocabulary::kColumnId, id);
    NewElement newElement(element);
    // The document's spelling counts: it holds no character that XML forbids.
    if (!element.IsNode() || !element.GetProperty(vocabulary::kColumnId, id) ||
        m_state->columns.Find(id) != nullptr) {
        return nullptr;
    }
    element.SetProperty(vocabulary::kTitle, id);
    CEncapFamilyColumn* column = EnterColumn(place, element, id);
    newElement.Keep();
    ConnectColumn(*column, id);
    return column;
}

CEncapFamilyColumn* CEncapFamilyTable::DuplicateColumn(int index, const wchar_t* sourceColumnId,
                                                       const wchar_t* newColumnId)
{
    CEncapFamilyColumn* source = GetFamilyColumnByID(sourceColumnId);
    if (source == nullptr || !IsValidNewColumnName(newColumnId)) {
        return nullptr;
    }
    const EditScope scope(*this);
    XMLNode columns = m_state->node.GetOrAddNode(vocabulary::kColumns);
    XMLNode element = source->GetXMLNode().CloneNode(false);
    const CString id(encap::ViewOrEmpty(newColumnId));
    const std::size_t place = PlaceFor(m_state->columns, index);
    if (!element.IsNode() || !element.SetProperty(vocabulary::kColumnId, id) ||
        !PutElement(columns, m_state->columns, place, element)) {
        return nullptr;
    }
    NewElement newElement(element);
    CEncapFamilyColumn* column = EnterColumn(place, element, id);
    newElement.Keep();
    ConnectColumn(*column, id);
    CString sourceId;
    source->GetColumnID(sourceId);
    const std::vector<CString> rowIds = GetAllRowIDs();
    for (const CString& rowId : rowIds) {
        CString value;
        if (GetRawValue(rowId.c_str(), sourceId.c_str(), value) == 0) {
            SetValue(rowId.c_str(), id.c_str(), value.c_str(), false);
        }
    }
    // The texts were cached as they stand: formulas among them are still to be evaluated.
    DropColumnValues(id);
    return GetFamilyColumnByID(id.c_str());
}

// Makes a column over a new element.
CEncapFamilyColumn* CEncapFamilyTable::EnterColumn(std::size_t place, const XMLNode& element,
                                                   const CString& columnId)
{
    CEncapFamilyColumn* column = m_state->columns.Insert(
        place, columnId, std::make_unique<CEncapFamilyColumn>(element, this));
    TableAccess::Of(*column).inTable = true;
    ++m_state->structureVersion;
    ++m_state->editVersion;
    return column;
}

// Gives a new column its attributes, no key column and not hidden, and its place among the
// dependencies.
void CEncapFamilyTable::ConnectColumn(CEncapFamilyColumn& column, const CString& columnId)
{
    column.SetKeyWeight(0);
    column.SetIsHidden(false);
    NoteStatusColumn(column, columnId);
    encap::ColumnState& state = TableAccess::Of(column);
    state.namesUnknown =
        !state.formula.empty() && UpdateColumnsDependency(&column, state.formula.c_str()) ==
                                      CTableEvaluator::EvaluateUnknownColumn;
    RegisterReferencesTo(columnId);
}

// Formulas may have named the column before it was there.
void CEncapFamilyTable::RegisterReferencesTo(const CString& columnId)
{
    if (m_state->dependenciesIncomplete) {
        m_state->dependenciesIncomplete = false;
        BuildColumnsDependency();
    }
    const auto count = static_cast<int>(m_state->columns.Count());
    for (int index = 0; index < count; ++index) {
        CEncapFamilyColumn* column = m_state->columns.At(index);
        encap::ColumnState& state = TableAccess::Of(*column);
        if (state.namesUnknown && encap::RefersTo(state.formula, columnId)) {
            state.namesUnknown = UpdateColumnsDependency(column, state.formula.c_str()) !=
                                 CTableEvaluator::EvaluateOK;
            column->InvalidateCache(CString(), CString());
        }
    }
}

bool CEncapFamilyTable::DeleteColumn(int index)
{
    if (!m_state->columns.HasIndex(index)) {
        return false;
    }
    const EditScope scope(*this);
    CEncapFamilyColumn* column = m_state->columns.At(index);
    const CString columnId = m_state->columns.EntryAt(index).id;
    column->BumpRevisionsIfRefreshing();
    if (TableAccess::Of(*column).removed) {
        return true; // by the host, which the bump asked
    }
    m_state->removedColumns.reserve(m_state->removedColumns.size() + 1);
    column->InvalidateCache(CString(), CString());
    ColumnDependencies::Disconnect(*column);
    if (column->IsKeyColumn()) {
        CloseKeyGap(column->GetKeyWeight());
    }
    if (m_state->family != nullptr) {
        m_state->family->RemoveAllColumnMapping(column);
    }
    column->m_node.RemoveThisNode(false);
    // A bump may have inserted a column of its own.
    m_state->removedColumns.push_back(m_state->columns.Take(PositionOf(*column)));
    TableAccess::Of(*column).removed = true;
    ++m_state->structureVersion;
    if (column->IsStatusColumn()) {
        m_state->statusColumnId.clear();
    }
    ForgetColumnId(columnId);
    return true;
}

// What stands under the ID of a deleted column, unless another column of that ID answers again.
void CEncapFamilyTable::ForgetColumnId(const CString& columnId)
{
    if (m_state->columns.Find(columnId) != nullptr) {
        RegisterReferencesTo(columnId);
        return;
    }
    DeleteCellsOf(columnId);
    if (m_state->family != nullptr) {
        m_state->family->DeleteLocalizedColumnPropertyValues(columnId.c_str());
    }
    if (m_state->cacheStore != nullptr) {
        m_state->cacheStore->ForgetColumn(columnId.c_str());
    }
}

// REQUIRES: the column is one of the table's.
int CEncapFamilyTable::PositionOf(const CEncapFamilyColumn& column) const
{
    const auto count = static_cast<int>(m_state->columns.Count());
    int index = 0;
    while (index < count && m_state->columns.At(index) != &column) {
        ++index;
    }
    return index;
}

// Every row's cells of a column, and their localized texts.
void CEncapFamilyTable::DeleteCellsOf(const CString& columnId)
{
    const std::string id = encap::platform::WideToUtf8(columnId);
    const auto count = static_cast<int>(m_state->rows.Count());
    for (int index = 0; index < count; ++index) {
        TableAccess::RemoveCell(*m_state->rows.At(index), id);
    }
    if (m_state->family != nullptr) {
        m_state->family->DeleteLocalizedColumnCells(columnId.c_str(), true);
    }
}

// The key columns behind a place that becomes free move up, so that the order stays gap-free.
void CEncapFamilyTable::CloseKeyGap(int32_t weight)
{
    const auto count = static_cast<int>(m_state->columns.Count());
    for (int index = 0; index < count; ++index) {
        CEncapFamilyColumn* column = m_state->columns.At(index);
        if (column->IsKeyColumn() && column->GetKeyWeight() > weight) {
            column->SetKeyWeight(column->GetKeyWeight() - 1);
        }
    }
}

void CEncapFamilyTable::ChangeColumnIndex(const wchar_t* columnId, int& index)
{
    MoveElement(m_state->node, vocabulary::kColumns, m_state->columns, encap::ViewOrEmpty(columnId),
                index);
}

bool CEncapFamilyTable::IsValidNewColumnName(const wchar_t* name) const
{
    const std::wstring_view text = encap::ViewOrEmpty(name);
    const auto fits = [](wchar_t character) {
        return character == L'_' || character == L'-' || encap::IsDecimalDigit(character) ||
               encap::IsLetter(character);
    };
    return !text.empty() && encap::IsLetter(text.front()) &&
           std::all_of(text.begin(), text.end(), fits) && m_state->columns.Find(text) == nullptr;
}
