#include "encap/table/FamilyColumn.h"

#include "encap/family/Family.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/NullText.h"
#include "encap/mapping/FamilyColVexilData.h"
#include "encap/mapping/FamilyMapping.h"
#include "encap/platform/Encoding.h"
#include "encap/table/FamilyTable.h"
#include "encap/table/TableState.h"

#include <algorithm>
#include <array>
#include <optional>

using encap::ColumnState;
using encap::TableAccess;
namespace vocabulary = encap::vocabulary;

namespace {

struct CategoryRole {
    std::wstring_view category;
    CEncapFamilyColumn::ColumnType type;
};

// The category parameters that give a column its role.
constexpr std::array<CategoryRole, 5> kCategoryRoles{{
    {L"8b46a4cc-9585-4fed-90c3-899f57e09a73", CEncapFamilyColumn::ColumnTypeFileName},
    {L"818a152a-d3c3-49ca-80ee-df7d91421b8e", CEncapFamilyColumn::ColumnTypeMaterial},
    {L"2675968c-4ce5-49e0-a4f5-552d29089031", CEncapFamilyColumn::ColumnTypeRestricted3},
    {L"016b6077-bfbe-49bd-92c9-d8d59c39c941", CEncapFamilyColumn::ColumnTypeRestricted4},
    {L"4dba7c1c-e26c-444e-836c-b08b433409a8", CEncapFamilyColumn::ColumnTypeRestricted5},
}};

constexpr std::array<std::wstring_view, 8> kLegacyMapCategories{
    L"8e5e0294-fc51-4c8f-b3d7-003dc5ed94f6", L"e705e1f4-09cb-413e-91f9-551b4188271e",
    L"d99d1e27-aa94-4de2-af4c-c348882a6f4f", L"5193edd4-b2b0-4ab4-9d54-de900eee34e0",
    L"0918ad47-427f-4fed-ae26-24c81c58f590", L"316934ee-8fe1-4c7a-9c36-f2d79e1add1a",
    L"e2cc04c6-09a4-4218-9b13-cc2651121187", L"9345fe05-da15-4943-be2b-92536398cd61",
};

CEncapFamily* FamilyOf(const CEncapFamilyTable* table)
{
    return table != nullptr ? table->GetFamily() : nullptr;
}

// What is kept beside the ID.
void NoteId(ColumnState& state)
{
    state.idUtf8 = encap::platform::WideToUtf8(state.id);
    state.bookkeeping = encap::IsRowBookkeeping(state.id);
}

void ReadAttributes(const XMLNode& node, ColumnState& state)
{
    CString type;
    node.GetProperty(vocabulary::kColumnId, state.id);
    node.GetProperty(vocabulary::kColumnwideValue, state.formula);
    node.GetProperty(vocabulary::kTitle, state.title);
    node.GetStrBoolProperty(vocabulary::kCustom, state.custom);
    node.GetStrBoolProperty(vocabulary::kHidden, state.hidden);
    int weight = 0;
    node.GetProperty(vocabulary::kKeyWeight, weight);
    state.keyWeight = weight;
    node.GetProperty(vocabulary::kUnitType, state.unit);
    node.GetProperty(vocabulary::kValueType, type);
    state.dataType = DataTypes::DataTypeStr2Num(type);
    NoteId(state);
}

/// The scope of an edit of a column, which may be in no table.
class OptionalScope {
public:
    explicit OptionalScope(const CEncapFamilyTable* table)
    {
        if (table != nullptr) {
            m_scope.emplace(*table);
        }
    }

private:
    std::optional<encap::EditScope> m_scope;
};

} // namespace

CEncapFamilyColumn::CEncapFamilyColumn() : m_state(std::make_unique<ColumnState>()) {}

CEncapFamilyColumn::CEncapFamilyColumn(const XMLNode& columnNode, CEncapFamilyTable* table)
    : m_table(table), m_node(columnNode), m_state(std::make_unique<ColumnState>())
{
    if (columnNode.IsNode()) {
        ReadAttributes(columnNode, *m_state);
    }
    if (table != nullptr && TableAccess::Of(*table).cacheStore != nullptr) {
        m_state->cacheNumber = TableAccess::Of(*table).cacheStore->ColumnNumber(m_state->id);
    }
}

CEncapFamilyColumn::CEncapFamilyColumn(const CEncapFamilyColumn& other)
    : m_table(other.m_table), m_node(other.m_node), m_propertyData(other.m_propertyData),
      m_state(std::make_unique<ColumnState>(*other.m_state))
{
    // The copy is in no table: it has no values, and nothing depends on it.
    m_state->references.clear();
    m_state->visiting = 0;
    m_state->inTable = false;
}

CEncapFamilyColumn& CEncapFamilyColumn::operator=(const CEncapFamilyColumn& other)
{
    if (this != &other) {
        auto state = std::make_unique<ColumnState>(*other.m_state);
        // Its place in the table and among the dependencies is this object's own.
        state->references = std::move(m_state->references);
        state->visiting = m_state->visiting;
        state->inTable = m_state->inTable;
        state->removed = m_state->removed;
        m_table = other.m_table;
        m_node = other.m_node;
        m_propertyData = other.m_propertyData;
        m_state = std::move(state);
    }
    return *this;
}

CEncapFamilyColumn::~CEncapFamilyColumn() = default;

const XMLNode& CEncapFamilyColumn::GetXMLNode() const
{
    return m_node;
}

void CEncapFamilyColumn::GetColumnID(CString& columnId) const
{
    columnId = m_state->id;
}

void CEncapFamilyColumn::SetColumnID(const wchar_t* columnId)
{
    const OptionalScope scope(m_table);
    DropValues();
    CString text(encap::TextOrEmpty(columnId));
    m_node.SetProperty(vocabulary::kColumnId, text);
    m_state->id = std::move(text);
    NoteId(*m_state);
    m_state->localizedVersion = 0;
    if (m_table != nullptr && TableAccess::Of(*m_table).cacheStore != nullptr) {
        m_state->cacheNumber = TableAccess::Of(*m_table).cacheStore->ColumnNumber(m_state->id);
    }
    DropValues();
}

void CEncapFamilyColumn::GetTitle(CString& title) const
{
    title = m_state->title;
}

void CEncapFamilyColumn::GetTitle(CString& title, const wchar_t* language) const
{
    const CEncapFamily* family = FamilyOf(m_table);
    if (family == nullptr ||
        family->GetLocalizedColumnPropertyValue(m_state->id.c_str(), vocabulary::kTitle,
                                                encap::TextOrEmpty(language), title) != 0) {
        title = m_state->title;
    }
}

void CEncapFamilyColumn::SetTitle(const wchar_t* title)
{
    CString text(encap::TextOrEmpty(title));
    m_node.SetProperty(vocabulary::kTitle, text);
    m_state->title = std::move(text);
}

void CEncapFamilyColumn::SetTitle(const wchar_t* title, const wchar_t* language)
{
    if (CEncapFamily* family = FamilyOf(m_table)) {
        family->SetLocalizedColumnPropertyValue(m_state->id.c_str(), vocabulary::kTitle,
                                                encap::TextOrEmpty(title),
                                                encap::TextOrEmpty(language));
    }
}

void CEncapFamilyColumn::GetUnitType(CString& unit) const
{
    unit = m_state->unit;
}

void CEncapFamilyColumn::SetUnitType(const wchar_t* unit)
{
    const OptionalScope scope(m_table);
    CString text(encap::TextOrEmpty(unit));
    m_node.SetProperty(vocabulary::kUnitType, text);
    if (m_state->unit != text) {
        m_state->unit = std::move(text);
        DropValues();
    }
}

DataTypes::ColumnDataType CEncapFamilyColumn::GetDataType() const
{
    return m_state->dataType;
}

void CEncapFamilyColumn::SetDataType(DataTypes::ColumnDataType type)
{
    const OptionalScope scope(m_table);
    m_node.SetProperty(vocabulary::kValueType, DataTypes::DataTypeNum2Str(type));
    if (m_state->dataType != type) {
        m_state->dataType = type;
        DropValues();
    }
    DropLocalizedAnswer();
}

int32_t CEncapFamilyColumn::GetKeyWeight() const
{
    return m_state->keyWeight;
}

void CEncapFamilyColumn::SetKeyWeight(const int32_t& weight)
{
    m_node.SetProperty(vocabulary::kKeyWeight, weight);
    m_state->keyWeight = weight;
}

bool CEncapFamilyColumn::IsHidden() const
{
    return m_state->hidden;
}

void CEncapFamilyColumn::SetIsHidden(const bool& hidden)
{
    const OptionalScope scope(m_table);
    m_node.SetStrBoolProperty(vocabulary::kHidden, hidden);
    if (m_state->hidden != hidden) {
        m_state->hidden = hidden;
        DropValues(); // a column that is not hidden may have its texts in the strings documents
    }
    DropLocalizedAnswer();
}

bool CEncapFamilyColumn::IsCustom() const
{
    return m_state->custom;
}

void CEncapFamilyColumn::SetIsCustom(const bool& custom)
{
    if (m_state->custom == custom) {
        return;
    }
    const OptionalScope scope(m_table);
    m_node.SetStrBoolProperty(vocabulary::kCustom, custom);
    m_state->custom = custom;
    NoteRefreshChange();
    DropValues();
    BumpRevisionsIfRefreshing();
}

bool CEncapFamilyColumn::IsStatusColumn() const
{
    return m_state->status;
}

void CEncapFamilyColumn::SetIsStatusColumn(bool status)
{
    m_state->status = status;
}

bool CEncapFamilyColumn::IsPropertyColumn() const
{
    return m_state->property;
}

void CEncapFamilyColumn::SetIsPropertyColumn(bool property)
{
    m_state->property = property;
}

bool CEncapFamilyColumn::IsGeometryColumn() const
{
    return m_state->geometry;
}

void CEncapFamilyColumn::SetIsGeometryColumn(bool geometry)
{
    m_state->geometry = geometry;
    NoteRefreshChange();
}

bool CEncapFamilyColumn::IsZelPropertyColumn() const
{
    return m_state->hostProperty;
}

void CEncapFamilyColumn::SetIsZelPropertyColumn(bool property)
{
    m_state->hostProperty = property;
    NoteRefreshChange();
}

CEncapFamilyColumn::ColumnType CEncapFamilyColumn::GetColumnType() const
{
    return m_state->columnType;
}

void CEncapFamilyColumn::SetColumnType(ColumnType type)
{
    const bool wasMaterial = IsMaterial();
    m_state->columnType = type;
    if (IsMaterial() != wasMaterial) {
        DropValues();
    }
}

void CEncapFamilyColumn::UpdateColumnType(const CString& category)
{
    const auto role = std::find_if(kCategoryRoles.begin(), kCategoryRoles.end(),
                                   [&](const auto& known) { return known.category == category; });
    SetColumnType(role != kCategoryRoles.end() ? role->type : ColumnTypeOrdinary);
    if (IsRestrictedColumn()) {
        SetIsZelPropertyColumn(true);
    }
}

CEncapFamilyColVexilData* CEncapFamilyColumn::GetColVexilData() const
{
    return m_propertyData.get();
}

void CEncapFamilyColumn::SetColVexilData(std::unique_ptr<CEncapFamilyColVexilData> data)
{
    m_propertyData = std::move(data);
}

bool CEncapFamilyColumn::IsKeyColumn() const
{
    return m_state->keyWeight > 0;
}

bool CEncapFamilyColumn::IsExpressionColumn() const
{
    return !m_state->formula.empty();
}

bool CEncapFamilyColumn::IsMaterial() const
{
    return m_state->columnType == ColumnTypeMaterial;
}

bool CEncapFamilyColumn::IsRestrictedColumn() const
{
    return m_state->columnType != ColumnTypeOrdinary;
}

bool CEncapFamilyColumn::IsLocalized() const
{
    if (m_table == nullptr) {
        return false;
    }
    TableAccess::NoticeLocalization(*m_table);
    return TableAccess::IsLocalized(*m_table, *m_state);
}

bool CEncapFamilyColumn::IsLegacyMapColumn() const
{
    const CEncapFamily* family = FamilyOf(m_table);
    CString category;
    if (family == nullptr || !family->GetColumnCategory(m_state->id.c_str(), category)) {
        return false;
    }
    return std::any_of(
        kLegacyMapCategories.begin(), kLegacyMapCategories.end(),
        [&](std::wstring_view known) { return encap::EqualNoCase(known, category); });
}

// Whether a column causes a refresh depends on the flags of others too.
void CEncapFamilyColumn::NoteRefreshChange()
{
    if (m_table != nullptr) {
        ++TableAccess::Of(*m_table).graphVersion;
    }
}

// Values computed before a change of what decides them are wrong from now on.
void CEncapFamilyColumn::DropValues()
{
    if (m_table != nullptr && !TableAccess::Of(*m_table).loading) {
        InvalidateCache(CString(), CString());
    }
}

void CEncapFamilyColumn::DropLocalizedAnswer()
{
    const CEncapFamily* family = FamilyOf(m_table);
    if (family != nullptr && family->GetEncapFamilyMapping() != nullptr) {
        family->GetEncapFamilyMapping()->ForgetLocalizedColumn(m_state->id.c_str());
    }
}

void CEncapFamilyColumn::BumpRevisionsIfRefreshing()
{
    if (m_table != nullptr && ChangeInColumnCausesRefresh()) {
        m_table->BumpAllMemberRevisions(nullptr);
    }
}
