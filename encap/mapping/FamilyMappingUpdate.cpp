#include "encap/family/Family.h"

#include "encap/family/Vocabulary.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/DataTypes.h"
#include "encap/foundation/NullText.h"
#include "encap/mapping/FamilyMapping.h"
#include "encap/mapping/MapEdit.h"
#include "encap/mapping/ParameterKinds.h"
#include "encap/table/FamilyColumn.h"
#include "encap/table/FamilyTable.h"

#include <algorithm>
#include <set>

using namespace encap;

namespace {

using Entry = CEncapMemberColToTemplate::Entry;
using Parameter = CEncapFamilyTemplateParameter;

constexpr const wchar_t* kFirstTemplateName = L"Template1";

CString ObjectTypeOf(const Parameter& parameter)
{
    CString text;
    parameter.GetObjectType(text);
    return text;
}

BindingKind KindOf(const Parameter& parameter)
{
    CString subObjectId;
    parameter.GetSubObjectId(subObjectId);
    return ClassifyParameter(ObjectTypeOf(parameter), subObjectId);
}

bool IsUserParameter(const Parameter& parameter)
{
    return encap::ObjectTypeOf(ObjectTypeOf(parameter)) ==
           CEncapFamilyColVexilData::kUserParameterObject;
}

/// The data type as its word.
CString ValueTypeOf(const CEncapFamilyColumn& column)
{
    return DataTypes::DataTypeNum2Str(column.GetDataType());
}

void SetTypes(Parameter& parameter, const CString& valueType, const CString& unitType)
{
    parameter.SetValueType(valueType.c_str());
    parameter.SetUnitType(unitType.c_str());
}

void SetTypesOf(Parameter& parameter, const CEncapFamilyColumn& column)
{
    CString unit;
    column.GetUnitType(unit);
    SetTypes(parameter, ValueTypeOf(column), unit);
}

/// The property data of a column that drives this parameter.
std::unique_ptr<CEncapFamilyColVexilData> PropertyDataOf(const Parameter& parameter,
                                                         BindingKind kind)
{
    if (kind == BindingKind::Material) {
        return std::make_unique<CEncapFamilyColVexilData>(
            L"", kMaterialSubObject.data(),
            CEncapFamilyColVexilData::kPartComponentDefinitionObject);
    }
    CString objectRefKey;
    CString subObjectId;
    parameter.GetObjectReferenceKey(objectRefKey);
    parameter.GetSubObjectId(subObjectId);
    return std::make_unique<CEncapFamilyColVexilData>(objectRefKey.c_str(), subObjectId.c_str(),
                                                      encap::ObjectTypeOf(ObjectTypeOf(parameter)));
}

} // namespace

void CEncapFamilyMapping::InitializeColumnData(CEncapFamilyColumn* column)
{
    if (column == nullptr) {
        return;
    }
    for (const Entry& entry : MappingsOf(*column)) {
        const Parameter* parameter = FindParameter(entry);
        if (parameter == nullptr) {
            continue;
        }
        const BindingKind kind = KindOf(*parameter);
        if (kind == BindingKind::Geometry) {
            column->SetIsGeometryColumn(true);
        } else if (kind == BindingKind::PlainProperty) {
            column->SetIsPropertyColumn(true);
        } else if (IsPropertyKind(kind)) {
            column->SetIsZelPropertyColumn(true);
            column->SetColVexilData(PropertyDataOf(*parameter, kind));
        }
    }
}

std::unique_ptr<CEncapFamilyColVexilData>
CEncapFamilyMapping::GetColVexilData(const wchar_t* objectRefKey, const wchar_t* subObjectId,
                                     ColPropertyObjectType type) const
{
    const bool namesNothing =
        CString(TextOrEmpty(objectRefKey)).empty() && CString(TextOrEmpty(subObjectId)).empty();
    if (namesNothing || IsPropertyAlreadyUsed(objectRefKey, subObjectId)) {
        return nullptr;
    }
    return std::make_unique<CEncapFamilyColVexilData>(objectRefKey, subObjectId, type);
}

bool CEncapFamilyMapping::IsPropertyAlreadyUsed(const wchar_t* objectRefKey,
                                                const wchar_t* subObjectId) const
{
    const XMLNode parameter =
        m_index->FirstParameter(TextOrEmpty(objectRefKey), TextOrEmpty(subObjectId));
    if (!parameter.IsNode()) {
        return false;
    }
    int id = 0;
    CString templateName;
    parameter.GetProperty(vocabulary::kId, id);
    parameter.GetParentNode().GetProperty(vocabulary::kName, templateName);
    return m_index->IsDrivenByColumn(templateName, id);
}

void CEncapFamilyMapping::UpdateColumnMapping(CEncapFamilyColumn* column,
                                              const wchar_t* objectRefKey,
                                              const wchar_t* subObjectId,
                                              ColPropertyObjectType type)
{
    if (column == nullptr) {
        return;
    }
    const bool causedRefresh = column->ChangeInColumnCausesRefresh();
    column->SetColVexilData(GetColVexilData(objectRefKey, subObjectId, type));
    UpdateColumnGeometry(column);
    UpdateVexilMapping(column);
    UpdateThreadFeatureColumn(column);

    CString columnId;
    CString category;
    column->GetColumnID(columnId);
    if (GetColumnCategory(columnId.c_str(), category)) {
        column->UpdateColumnType(category);
    }
    if (causedRefresh || column->ChangeInColumnCausesRefresh()) {
        BumpMembers();
    }
    ForgetLocalizedColumn(columnId.c_str());
}

// Revisions are cells of the table: the index holds nothing of theirs.
void CEncapFamilyMapping::BumpMembers()
{
    if (m_family != nullptr && m_family->GetEncapFamilyTable() != nullptr) {
        const MapEdit edit(m_index.get());
        m_family->GetEncapFamilyTable()->BumpAllMemberRevisions(nullptr);
    }
}

void CEncapFamilyMapping::UpdateColumnGeometry(CEncapFamilyColumn* column)
{
    if (column == nullptr) {
        return;
    }
    EnsureTemplate();
    const std::vector<Entry> entries = MappingsOf(*column);
    const bool wasBound = std::any_of(entries.begin(), entries.end(), [this](const Entry& entry) {
        const Parameter* parameter = FindParameter(entry);
        return parameter != nullptr && IsUserParameter(*parameter);
    });
    if (wasBound && !column->IsGeometryColumn()) {
        // The column's property bindings go as well; what it still drives is bound anew.
        CEncapMemberColToTemplate* map = GetOrAddTemplateMap(*column);
        ReleaseParameters(*map);
        map->DeleteAllMapping();
    } else if (!wasBound && column->IsGeometryColumn()) {
        BindGeometry(*column);
    }
}

void CEncapFamilyMapping::BindGeometry(CEncapFamilyColumn& column)
{
    CString columnId;
    column.GetColumnID(columnId);
    CEncapMemberColToTemplate* map = GetOrAddTemplateMap(column);
    for (const CString& name : m_templateNames) {
        Parameter* parameter = GetFamilyTemplate(name.c_str())->AddParameter(columnId, CString());
        if (parameter == nullptr) {
            return;
        }
        SetTypesOf(*parameter, column);
        parameter->SetObjectType(
            CString(ObjectTypeText(CEncapFamilyColVexilData::kUserParameterObject)).c_str());
        if (map != nullptr) {
            map->AddMapping(name.c_str(), parameter->GetId());
        }
    }
}

void CEncapFamilyMapping::UpdateVexilMapping(CEncapFamilyColumn* column)
{
    if (column == nullptr) {
        return;
    }
    EnsureTemplate();
    std::set<int> userParameters;
    const bool released = ReleaseProperties(*column, userParameters);
    if (!column->IsZelPropertyColumn()) {
        if (released) {
            ReleaseAllBut(*column, userParameters);
        }
        return;
    }
    if (const CEncapFamilyColVexilData* data = column->GetColVexilData()) {
        BindProperty(*column, *data);
    }
}

bool CEncapFamilyMapping::ReleaseProperties(const CEncapFamilyColumn& column,
                                            std::set<int>& userParameters)
{
    bool released = false;
    for (const Entry& entry : MappingsOf(column)) {
        const Parameter* parameter = FindParameter(entry);
        if (parameter == nullptr) {
            continue;
        }
        // The parameter may go with its release: what it is has to be known before.
        if (IsUserParameter(*parameter)) {
            userParameters.insert(entry.parameterId);
        }
        if (IsPropertyKind(KindOf(*parameter))) {
            Release(column, entry);
            released = true;
        }
    }
    return released;
}

void CEncapFamilyMapping::ReleaseAllBut(const CEncapFamilyColumn& column,
                                        const std::set<int>& parameterIds)
{
    for (const Entry& entry : MappingsOf(column)) {
        if (!parameterIds.contains(entry.parameterId)) {
            Release(column, entry);
        }
    }
}

void CEncapFamilyMapping::Release(const CEncapFamilyColumn& column, const Entry& entry)
{
    UpdateTemplateParameters(entry.templateName.c_str(), entry.parameterId);
    TemplateMapOf(column)->DeleteMapping(entry.templateName.c_str(), entry.parameterId);
}

void CEncapFamilyMapping::BindProperty(CEncapFamilyColumn& column,
                                       const CEncapFamilyColVexilData& data)
{
    CEncapMemberColToTemplate* map = GetOrAddTemplateMap(column);
    const CString subObjectId = data.SubObjectId();
    const bool isFeatureState = EqualNoCase(subObjectId, kSuppressedSubObject) ||
                                EqualNoCase(subObjectId, kVisibleSubObject);
    const CString objectType =
        isFeatureState ? CString(ObjectTypeText(CEncapFamilyColVexilData::kPartFeatureObject))
                       : data.PropObjTypeStr();
    for (const CString& name : m_templateNames) {
        Parameter* parameter =
            GetFamilyTemplate(name.c_str())->AddParameter(data.ObjectRefKey(), subObjectId);
        if (parameter == nullptr) {
            return;
        }
        if (map != nullptr) {
            map->AddMapping(name.c_str(), parameter->GetId());
        }
        if (data.PropObjType() == CEncapFamilyColVexilData::kPropertyObject) {
            SetTypes(*parameter, DataTypes::DataTypeNum2Str(DataTypes::ColumnDataTypeString),
                     vocabulary::kUnitless.wide);
        } else {
            SetTypesOf(*parameter, column);
        }
        parameter->SetObjectType(objectType.c_str());
    }
}

// An extension point: columns that drive thread features need nothing of their own so far.
void CEncapFamilyMapping::UpdateThreadFeatureColumn(CEncapFamilyColumn* /*column*/) {}

void CEncapFamilyMapping::UpdateTemplateParameters(const wchar_t* templateName, int parameterId)
{
    CEncapFamilyTemplate* familyTemplate = GetFamilyTemplate(templateName);
    Parameter* parameter =
        familyTemplate != nullptr ? familyTemplate->GetParameter(parameterId) : nullptr;
    if (parameter == nullptr) {
        return;
    }
    if (m_index->CountUses(TextOrEmpty(templateName), parameterId) >= 2) {
        SetTypes(*parameter, DataTypes::DataTypeNum2Str(DataTypes::ColumnDataTypeString),
                 vocabulary::kUnitless.wide);
    } else {
        familyTemplate->DeleteParameter(parameterId);
    }
}

void CEncapFamilyMapping::ReleaseParameters(const CEncapMemberColToTemplate& map)
{
    for (const Entry& entry : map.GetMappings()) {
        UpdateTemplateParameters(entry.templateName.c_str(), entry.parameterId);
    }
}

void CEncapFamilyMapping::EnsureTemplate()
{
    if (m_templateNames.empty()) {
        AddFamilyTemplate(kFirstTemplateName);
    }
}

CEncapMemberColToTemplate*
CEncapFamilyMapping::TemplateMapOf(const CEncapFamilyColumn& column) const
{
    CString columnId;
    column.GetColumnID(columnId);
    const auto found = m_columnsToTemplate.find(columnId);
    return found != m_columnsToTemplate.end() ? found->second.get() : nullptr;
}

CEncapMemberColToTemplate*
CEncapFamilyMapping::GetOrAddTemplateMap(const CEncapFamilyColumn& column)
{
    if (CEncapMemberColToTemplate* known = TemplateMapOf(column)) {
        return known;
    }
    CString columnId;
    column.GetColumnID(columnId);
    EnsureNodes();
    const MapEdit edit(m_index.get());
    const XMLNode node = m_parameterMapNode.GetOrAddNode(vocabulary::kMemberParametersMap)
                             .GetOrAddNode(vocabulary::kColumnsToTemplate)
                             .AddNode(vocabulary::kColumnToTemplate, nullptr,
                                      vocabulary::kTableColumn, columnId.c_str());
    if (!node.IsNode()) {
        return nullptr;
    }
    auto& entry = m_columnsToTemplate[columnId];
    entry = std::make_unique<CEncapMemberColToTemplate>(node, this);
    return entry.get();
}

std::vector<CEncapMemberColToTemplate::Entry>
CEncapFamilyMapping::MappingsOf(const CEncapFamilyColumn& column) const
{
    const CEncapMemberColToTemplate* map = TemplateMapOf(column);
    return map != nullptr ? map->GetMappings() : std::vector<Entry>();
}

CEncapFamilyTemplateParameter* CEncapFamilyMapping::FindParameter(const Entry& entry) const
{
    const CEncapFamilyTemplate* familyTemplate = GetFamilyTemplate(entry.templateName.c_str());
    return familyTemplate != nullptr ? familyTemplate->GetParameter(entry.parameterId) : nullptr;
}
