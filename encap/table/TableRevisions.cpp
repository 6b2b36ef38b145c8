#include "encap/evaluation/EvaluatorState.h"
#include "encap/family/Family.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/StringUtil.h"
#include "encap/table/FamilyTable.h"
#include "encap/table/TableState.h"

using encap::EditScope;
using encap::EvaluationScope;
using encap::TableAccess;
namespace vocabulary = encap::vocabulary;

namespace {

// Stamping a revision writes cells, and must not stamp again on their account.
class BumpingScope {
public:
    explicit BumpingScope(bool& flag) : m_flag(flag) { m_flag = true; }
    ~BumpingScope() { m_flag = false; }
    BumpingScope(const BumpingScope&) = delete;
    BumpingScope& operator=(const BumpingScope&) = delete;

private:
    bool& m_flag;
};

} // namespace

void CEncapFamilyTable::SetStatusColValue(int rowIndex, const wchar_t* value)
{
    CEncapFamilyRow* row = m_state->rows.At(rowIndex);
    if (row == nullptr) {
        return;
    }
    const EditScope scope(*this);
    const wchar_t* status = value != nullptr ? value : L"";
    const CString& columnId = m_state->statusColumnId;
    if (!columnId.empty()) {
        const CString rowId = GetRowIDByIndex(rowIndex);
        SetRawValue(*row, rowId, columnId.c_str(), L"", status);
        DropCellValues(rowId, columnId.c_str());
    }
    row->SetIsSuppressed(encap::EqualNoCase(status, encap::kSuppressedStatus));
}

void CEncapFamilyTable::SetRowStateOfAllRows(CEncapFamilyRow::RowState state)
{
    const auto count = static_cast<int>(m_state->rows.Count());
    for (int index = 0; index < count; ++index) {
        m_state->rows.At(index)->SetRowState(state);
    }
}

// The column to stamp; null when there is none, or when the family is a copy of another and cannot
// keep the source's revisions.
CEncapFamilyColumn* CEncapFamilyTable::RevisionColumn()
{
    CEncapFamilyColumn* revisions = GetFamilyColumnByID(vocabulary::kMemberRevisionColumn);
    CString copyFrom;
    if (revisions == nullptr || m_state->family == nullptr) {
        return revisions;
    }
    m_state->family->GetCopyFrom(copyFrom);
    if (copyFrom.empty() ||
        GetFamilyColumnByID(vocabulary::kSourceMemberRevisionColumn) != nullptr ||
        CreateSourceMemberRevisionColumn() != nullptr) {
        return GetFamilyColumnByID(vocabulary::kMemberRevisionColumn);
    }
    return nullptr;
}

void CEncapFamilyTable::BumpMemberRevision(const wchar_t* rowId)
{
    if (m_state->bumpingRevisions) {
        return;
    }
    const BumpingScope bumping(m_state->bumpingRevisions);
    const EditScope scope(*this);
    if (CEncapFamilyColumn* column = RevisionColumn()) {
        column->SetValue(rowId, CStringUtil::NewGuid().c_str(), column->IsReferencedByOther());
    }
}

void CEncapFamilyTable::BumpAllMemberRevisions(const wchar_t* revision)
{
    if (m_state->bumpingRevisions) {
        return;
    }
    const BumpingScope bumping(m_state->bumpingRevisions);
    const EditScope scope(*this);
    CEncapFamilyColumn* column = RevisionColumn();
    if (column == nullptr) {
        return;
    }
    const CString stamp = revision != nullptr ? CString(revision) : CStringUtil::NewGuid();
    column->InvalidateCache(CString(), CString());
    const auto count = static_cast<int>(m_state->rows.Count());
    CString language;
    GetActualLanguage(language);
    for (int index = 0; index < count; ++index) {
        column->StoreValue(m_state->rows.EntryAt(index).id, *m_state->rows.At(index), language,
                           stamp);
    }
}

CEncapFamilyColumn* CEncapFamilyTable::CreateSourceMemberRevisionColumn()
{
    CEncapFamilyColumn* revisions = GetFamilyColumnByID(vocabulary::kMemberRevisionColumn);
    if (revisions == nullptr) {
        return nullptr;
    }
    const EditScope scope(*this);
    CEncapFamilyColumn* column = InsertNewColumn(static_cast<int>(GetColumnsCount()),
                                                 vocabulary::kSourceMemberRevisionColumn);
    if (column == nullptr) {
        return nullptr;
    }
    column->SetIsHidden(true);
    column->SetDataType(DataTypes::ColumnDataTypeString);
    column->SetTitle(L"");
    column->StoreFormula(TableAccess::Of(*revisions).formula);
    UpdateColumnsDependency(column, TableAccess::Of(*column).formula.c_str());
    const std::vector<CString> rowIds = GetAllRowIDs();
    for (const CString& rowId : rowIds) {
        CString value;
        if (revisions->GetValue(rowId.c_str(), value) != CTableEvaluator::EvaluateOK) {
            return nullptr;
        }
        column->SetValue(rowId.c_str(), value.c_str(), false);
    }
    return GetFamilyColumnByID(vocabulary::kSourceMemberRevisionColumn);
}

CString CEncapFamilyTable::GetMaterialName(const wchar_t* key) const
{
    const EvaluationScope scope(*this);
    return TableAccess::Evaluator(*this).host.MaterialName(key != nullptr ? key : L"");
}

CString CEncapFamilyTable::GetMaterialRefKey(const wchar_t* name) const
{
    const EvaluationScope scope(*this);
    return TableAccess::Evaluator(*this).host.MaterialKey(name != nullptr ? name : L"");
}

bool CEncapFamilyTable::GetMemberMaterialRefId(const wchar_t* rowId, CString& key) const
{
    const CEncapFamilyColumn* column =
        GetFamilyColumnByType(CEncapFamilyColumn::ColumnTypeMaterial);
    if (column == nullptr) {
        return false;
    }
    if (GetRawValue(rowId, TableAccess::Of(*column).id.c_str(), key) != 0) {
        column->GetFormula(key);
    }
    return true;
}
