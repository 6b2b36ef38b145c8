#include "encap/mapping/FamilyMapping.h"

#include "encap/family/Family.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/DataTypes.h"
#include "encap/foundation/NullText.h"
#include "encap/mapping/MapEdit.h"
#include "encap/mapping/MapWalk.h"
#include "encap/platform/Encoding.h"
#include "encap/table/FamilyColumn.h"
#include "encap/xml/Texts.h"

#include <algorithm>

using namespace encap;

namespace {

/// The object that a key finds in a map of owned objects; null when there is none.
template <class T>
T* Find(const CStringMapTo<std::unique_ptr<T>>& map, std::wstring_view key)
{
    const auto found = map.find(key);
    return found != map.end() ? found->second.get() : nullptr;
}

} // namespace

CEncapFamilyMapping::CEncapFamilyMapping() : CEncapFamilyMapping(XMLNode(), XMLNode(), nullptr) {}

CEncapFamilyMapping::CEncapFamilyMapping(const XMLNode& templatesNode,
                                         const XMLNode& parameterMapNode, CEncapFamily* family)
    : m_templatesNode(templatesNode), m_parameterMapNode(parameterMapNode), m_family(family),
      m_index(std::make_unique<MappingIndex>(templatesNode, parameterMapNode))
{
    InitializeData();
}

CEncapFamilyMapping::~CEncapFamilyMapping()
{
    ClearData();
}

CEncapFamilyTemplate* CEncapFamilyMapping::GetFamilyTemplate(const wchar_t* name) const
{
    return Find(m_templates, TextOrEmpty(name));
}

const std::vector<CString>& CEncapFamilyMapping::GetTemplateNames() const
{
    return m_templateNames;
}

CEncapFamilyTemplate* CEncapFamilyMapping::AddFamilyTemplate(const CString& name)
{
    // The document's spelling counts: it holds no character that XML forbids.
    const CString spelled = platform::Utf8ToWide(DocumentText(name.c_str()));
    if (spelled.empty()) {
        return nullptr;
    }
    if (CEncapFamilyTemplate* known = Find(m_templates, spelled)) {
        return known;
    }
    EnsureNodes();
    MapEdit edit(m_index.get());
    const XMLNode node = m_templatesNode.AddNode(vocabulary::kFamilyTemplate, nullptr,
                                                 vocabulary::kName, spelled.c_str());
    if (!node.IsNode()) {
        return nullptr;
    }
    edit.Added(node);
    return EnterTemplate(spelled, node);
}

void CEncapFamilyMapping::GetTemplateFileName(CString& fileName) const
{
    if (!m_templateNames.empty()) {
        Find(m_templates, m_templateNames.front())->GetFileName(fileName);
    }
}

const CEncapMemberColToTemplate*
CEncapFamilyMapping::GetColumnTemplateMap(const wchar_t* columnId) const
{
    return Find(m_columnsToTemplate, TextOrEmpty(columnId));
}

const CEncapMemberColToParam*
CEncapFamilyMapping::GetColumnCategoryMap(const wchar_t* columnId) const
{
    return Find(m_columnsToParam, TextOrEmpty(columnId));
}

bool CEncapFamilyMapping::AddParamToColumnMapping(CEncapFamilyColumn* column,
                                                  const wchar_t* category,
                                                  const wchar_t* categoryParameter)
{
    if (column == nullptr) {
        return false;
    }
    CString columnId;
    column->GetColumnID(columnId);
    ForgetLocalizedColumn(columnId.c_str());
    CEncapMemberColToParam* map = Find(m_columnsToParam, columnId);
    if (map != nullptr && map->IsMappedForCatParam(categoryParameter)) {
        return true;
    }
    XMLNode element;
    if (!AddParamToColumn(columnId, category, categoryParameter, element)) {
        return false;
    }
    if (map != nullptr) {
        map->AddCategoryParam(element);
    } else {
        m_columnsToParam.emplace(columnId, std::make_unique<CEncapMemberColToParam>(element, this));
    }
    ForgetCategoryParameter(categoryParameter);
    return true;
}

bool CEncapFamilyMapping::AddParamToColumn(const CString& columnId, const wchar_t* category,
                                           const wchar_t* categoryParameter, XMLNode& element)
{
    EnsureNodes();
    MapEdit edit(m_index.get());
    element = m_parameterMapNode.GetOrAddNode(vocabulary::kMemberParametersMap)
                  .GetOrAddNode(vocabulary::kParamsToColumn)
                  .AddNode(vocabulary::kParamToColumn, nullptr, vocabulary::kTableColumn,
                           columnId.c_str());
    const XMLNode reference = element.AddNode(
        vocabulary::kCategoryParameterRef, nullptr, vocabulary::kCategory, TextOrEmpty(category),
        vocabulary::kCategoryParameter, TextOrEmpty(categoryParameter));
    if (element.IsNode()) {
        edit.Added(element);
    }
    return reference.IsNode();
}

uint64_t CEncapFamilyMapping::LocalizedColumnsVersion() const
{
    return m_localizedColumnsVersion;
}

void CEncapFamilyMapping::ForgetLocalizedColumn(const wchar_t* columnId)
{
    m_localizedColumns.erase(CString(TextOrEmpty(columnId)));
    ++m_localizedColumnsVersion;
}

void CEncapFamilyMapping::ForgetLocalizedColumns()
{
    m_localizedColumns.clear();
    ++m_localizedColumnsVersion;
}

void CEncapFamilyMapping::InitializeData()
{
    ClearData();
    LoadTemplates();
    LoadColumnTemplateMaps();
    LoadColumnCategoryMaps();
}

void CEncapFamilyMapping::ClearData()
{
    m_templates.clear();
    m_columnsToTemplate.clear();
    m_columnsToParam.clear();
    m_templateNames.clear();
}

void CEncapFamilyMapping::LoadTemplates()
{
    ForEachChild(Raw(m_templatesNode), vocabulary::kFamilyTemplate.utf8, [this](IXMLDOMNode* raw) {
        const XMLNode node = Wrap(raw);
        CString name;
        if (node.GetProperty(vocabulary::kName, name) && Find(m_templates, name) == nullptr) {
            EnterTemplate(name, node);
        }
    });
}

CEncapFamilyTemplate* CEncapFamilyMapping::EnterTemplate(const CString& name, const XMLNode& node)
{
    auto made = std::make_unique<CEncapFamilyTemplate>(node, this);
    m_templateNames.push_back(name);
    try {
        return m_templates.insert_or_assign(name, std::move(made)).first->second.get();
    } catch (...) {
        m_templateNames.pop_back();
        throw;
    }
}

// The maps of columns stand below MemberParametersMap or, in documents of another make, directly
// below ParameterMap.
void CEncapFamilyMapping::LoadColumnTemplateMaps()
{
    const auto load = [this](IXMLDOMNode* raw) {
        const XMLNode node = Wrap(raw);
        CString columnId;
        if (node.GetProperty(vocabulary::kTableColumn, columnId)) {
            auto& entry = m_columnsToTemplate[columnId];
            if (entry == nullptr) {
                entry = std::make_unique<CEncapMemberColToTemplate>(node, this);
            }
        }
    };
    IXMLDOMNode* map = Raw(m_parameterMapNode);
    ForEachGrandchild(map, vocabulary::kMemberParametersMap.utf8,
                      vocabulary::kColumnsToTemplate.utf8, [&load](IXMLDOMNode* columns) {
                          ForEachChild(columns, vocabulary::kColumnToTemplate.utf8, load);
                      });
    ForEachGrandchild(map, vocabulary::kColumnsToTemplate.utf8, vocabulary::kColumnToTemplate.utf8,
                      load);
}

void CEncapFamilyMapping::LoadColumnCategoryMaps()
{
    const auto load = [this](IXMLDOMNode* raw) {
        XMLNode node = Wrap(raw);
        CString columnId;
        if (node.GetProperty(vocabulary::kTableColumn, columnId)) {
            auto& entry = m_columnsToParam[columnId];
            if (entry == nullptr) {
                entry = std::make_unique<CEncapMemberColToParam>(node, this);
            } else {
                entry->AddCategoryParam(node);
            }
        }
    };
    ForEachGrandchild(Raw(m_parameterMapNode), vocabulary::kMemberParametersMap.utf8,
                      vocabulary::kParamsToColumn.utf8, [&load](IXMLDOMNode* params) {
                          ForEachChild(params, vocabulary::kParamToColumn.utf8, load);
                      });
}

void CEncapFamilyMapping::SetParameterMapNode(const XMLNode& parameterMapNode)
{
    m_parameterMapNode = parameterMapNode;
    m_index->SetParameterMap(parameterMapNode);
}

// A document without the elements gets them with the first binding, which would be lost otherwise.
void CEncapFamilyMapping::EnsureNodes()
{
    if (m_family == nullptr || (m_templatesNode.IsNode() && m_parameterMapNode.IsNode())) {
        return;
    }
    XMLNode root = m_family->GetFamilyXML().GetRootNode();
    if (!m_templatesNode.IsNode()) {
        m_templatesNode = root.GetOrAddNode(vocabulary::kFamilyTemplates);
        m_index->SetTemplates(m_templatesNode);
    }
    if (!m_parameterMapNode.IsNode()) {
        SetParameterMapNode(root.GetOrAddNode(vocabulary::kParameterMap));
    }
}

void CEncapFamilyMapping::RemoveColumnMapping(const wchar_t* columnId)
{
    const std::wstring_view id = TextOrEmpty(columnId);
    const auto templateMap = m_columnsToTemplate.find(id);
    if (templateMap != m_columnsToTemplate.end()) {
        ReleaseParameters(*templateMap->second);
        templateMap->second->RemoveNodeFromXML();
        m_columnsToTemplate.erase(templateMap);
    }
    const auto categoryMap = m_columnsToParam.find(id);
    if (categoryMap != m_columnsToParam.end()) {
        categoryMap->second->RemoveNodesFromXML();
        m_columnsToParam.erase(categoryMap);
    }
    ForgetLocalizedColumn(columnId);
}

bool CEncapFamilyMapping::GetCategoryParamColumn(const wchar_t* categoryParameter,
                                                 CString& columnId) const
{
    const XMLNode element = m_index->ColumnOfParameter(TextOrEmpty(categoryParameter));
    element.GetProperty(vocabulary::kTableColumn, columnId);
    return element.IsNode();
}

bool CEncapFamilyMapping::GetColumnCategory(const wchar_t* columnId,
                                            CString& categoryParameter) const
{
    const XMLNode reference = m_index->ParameterOfColumn(TextOrEmpty(columnId));
    reference.GetProperty(vocabulary::kCategoryParameter, categoryParameter);
    return reference.IsNode();
}

bool CEncapFamilyMapping::IsFamilyColumnLocalized(const wchar_t* columnId)
{
    const std::wstring_view id = TextOrEmpty(columnId);
    const auto known = m_localizedColumns.find(id);
    if (known != m_localizedColumns.end()) {
        return known->second;
    }
    if (m_family == nullptr) {
        return false;
    }
    bool localized = false;
    if (const CEncapMemberColToParam* map = Find(m_columnsToParam, id)) {
        localized = SuppliesLocalizedParameter(*map);
    } else {
        const XMLNode column = m_index->Columns().Find(m_family->GetFamilyXML().GetRootNode(), id);
        if (!column.IsNode()) {
            return false;
        }
        CString valueType;
        column.GetProperty(vocabulary::kValueType, valueType);
        localized =
            EqualNoCase(valueType, DataTypes::DataTypeNum2Str(DataTypes::ColumnDataTypeString));
    }
    m_localizedColumns.emplace(id, localized);
    return localized;
}

bool CEncapFamilyMapping::SuppliesLocalizedParameter(const CEncapMemberColToParam& map) const
{
    std::vector<CString> ids;
    map.GetCategoryParams(ids);
    return std::any_of(ids.begin(), ids.end(), [this](const CString& parameter) {
        return m_family->IsCatParamLocalized(parameter.c_str());
    });
}

bool CEncapFamilyMapping::RemoveParamToColumnMapping(const wchar_t* categoryParameter)
{
    CString columnId;
    if (!GetCategoryParamColumn(categoryParameter, columnId)) {
        return false;
    }
    const auto map = m_columnsToParam.find(columnId);
    if (map != m_columnsToParam.end()) {
        map->second->RemoveCategoryParam(categoryParameter);
        if (map->second->ParamCount() == 0) {
            m_columnsToParam.erase(map);
        }
    }
    ForgetLocalizedColumn(columnId.c_str());
    ForgetCategoryParameter(categoryParameter);
    return true;
}

bool CEncapFamilyMapping::RemoveParamToConstantMapping(const wchar_t* categoryParameter)
{
    std::vector<XMLNode> constants = m_index->ConstantsOfParameter(TextOrEmpty(categoryParameter));
    MapEdit edit(m_index.get());
    for (XMLNode& constant : constants) {
        edit.Removing(constant);
        constant.RemoveThisNode(true);
    }
    ForgetCategoryParameter(categoryParameter);
    return true;
}

void CEncapFamilyMapping::ForgetCategoryParameter(const wchar_t* categoryParameter)
{
    if (m_family != nullptr) {
        m_family->ForgetCategoryParamColumn(categoryParameter);
    }
}
