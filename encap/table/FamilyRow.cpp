#include "encap/table/FamilyRow.h"

#include "encap/family/Vocabulary.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/platform/Encoding.h"
#include "encap/table/FamilyTable.h"
#include "encap/table/TableState.h"
#include "encap/xml/NodeAccess.h"

using encap::TableAccess;
namespace vocabulary = encap::vocabulary;

namespace {

std::string Utf8Of(const wchar_t* text)
{
    return encap::platform::WideToUtf8(text != nullptr ? text : L"");
}

} // namespace

CEncapFamilyRow::CEncapFamilyRow(const XMLNode& rowNode, CEncapFamilyTable* table)
    : m_node(rowNode), m_table(table)
{
    InitializeData();
}

CEncapFamilyRow::~CEncapFamilyRow() = default;

void CEncapFamilyRow::InitializeData()
{
    if (m_table == nullptr || m_table->GetStatusColIDStr().empty()) {
        return;
    }
    CString status;
    GetRawValue(m_table->GetStatusColIDStr().c_str(), status);
    m_suppressed = encap::EqualNoCase(status, encap::kSuppressedStatus);
}

const XMLNode& CEncapFamilyRow::GetXMLNode() const
{
    return m_node;
}

void CEncapFamilyRow::GetRowID(CString& rowId) const
{
    m_node.GetProperty(vocabulary::kRowId, rowId);
}

void CEncapFamilyRow::SetRowID(const wchar_t* rowId)
{
    m_node.SetProperty(vocabulary::kRowId, rowId != nullptr ? rowId : L"");
}

void CEncapFamilyRow::GetValue(const wchar_t* columnId, CString& value) const
{
    CString rowId;
    GetRowID(rowId);
    m_table->GetValue(rowId.c_str(), columnId, value);
}

void CEncapFamilyRow::SetValue(const wchar_t* columnId, const wchar_t* value, bool refreshCache)
{
    CString rowId;
    GetRowID(rowId);
    m_table->SetValue(rowId.c_str(), columnId, value, refreshCache);
}

bool CEncapFamilyRow::HasRawValue(const wchar_t* columnId) const
{
    return TableAccess::FindCell(*this, Utf8Of(columnId)) != nullptr;
}

long CEncapFamilyRow::GetRawValue(const wchar_t* columnId, CString& value) const
{
    value.clear();
    return TableAccess::ReadCell(*this, Utf8Of(columnId), value) ? 0 : 1;
}

void CEncapFamilyRow::SetRawValue(const wchar_t* columnId, const wchar_t* value)
{
    const std::string id = Utf8Of(columnId);
    const wchar_t* text = value != nullptr ? value : L"";
    if (*text == L'\0') {
        TableAccess::RemoveCell(*this, id);
    } else if (IXMLDOMNode* cell = TableAccess::FindCell(*this, id)) {
        encap::Wrap(cell).SetNodeText(text);
    } else {
        m_node.AddNode(vocabulary::kCell, text, vocabulary::kColumnId,
                       columnId != nullptr ? columnId : L"");
    }
    // Stamping a revision never makes a row look edited.
    if (id != vocabulary::kMemberRevisionColumn.utf8 &&
        id != vocabulary::kSourceMemberRevisionColumn.utf8) {
        m_state = RowStateModified;
    }
}

void CEncapFamilyRow::DeleteCellsColumnValues(const wchar_t* columnId, bool allLanguages)
{
    CString rowId;
    GetRowID(rowId);
    TableAccess::RemoveCell(*this, Utf8Of(columnId));
    m_table->DropCellValues(rowId, columnId);
    m_table->DeleteLocalizedCellsValues(rowId.c_str(), columnId, allLanguages);
}

bool CEncapFamilyRow::IsSuppressed() const
{
    return m_suppressed;
}

void CEncapFamilyRow::SetIsSuppressed(bool suppressed)
{
    m_suppressed = suppressed;
}

CEncapFamilyRow::RowState CEncapFamilyRow::GetRowState() const
{
    return m_state;
}

void CEncapFamilyRow::SetRowState(RowState state)
{
    m_state = state;
}

bool CEncapFamilyRow::IsRowModified() const
{
    return m_state != RowStateUnchanged;
}
