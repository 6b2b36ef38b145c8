#include "encap/family/Family.h"

#include "encap/family/FamilyStrings.h"
#include "encap/family/Queries.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/NullText.h"
#include "encap/foundation/TextFormat.h"
#include "encap/mapping/FamilyMapping.h"
#include "encap/table/ConstFamilyColumn.h"
#include "encap/table/FamilyTable.h"
#include "encap/xml/QueryLiteral.h"

using namespace encap;

namespace {

CString ParamsToTemplatePath()
{
    return FormatText(query::kThreeSteps,
                      {vocabulary::kParameterMap.View(), vocabulary::kFamilyParametersMap.View(),
                       vocabulary::kParamsToTemplate.View()});
}

bool FindConstantMapping(const XMLNode& root, const CString& id, XMLNode& entry)
{
    const CString query =
        FormatText(query::kConstantMapping,
                   {vocabulary::kParameterMap.View(), vocabulary::kFamilyParametersMap.View(),
                    vocabulary::kParamsToTemplate.View(), vocabulary::kParamTemplateValue.View(),
                    vocabulary::kCategoryParameterRef.View(), vocabulary::kCategoryParameter.View(),
                    QueryLiteral(id)});
    return root.GetChildNode(query.c_str(), entry);
}

/// The entry of a category parameter below ParamsToTemplate, made when it is not there.
XMLNode GetOrAddConstantMapping(XMLNode& paramsToTemplate, const CString& id)
{
    const CString query = FormatText(query::kConstantMappingStep,
                                     {vocabulary::kParamTemplateValue.View(),
                                      vocabulary::kCategoryParameterRef.View(),
                                      vocabulary::kCategoryParameter.View(), QueryLiteral(id)});
    XMLNode entry;
    if (!paramsToTemplate.GetChildNode(query.c_str(), entry)) {
        entry = paramsToTemplate.AddNode(vocabulary::kParamTemplateValue);
        entry.AddNode(vocabulary::kCategoryParameterRef, nullptr, vocabulary::kCategoryParameter,
                      id.c_str());
    }
    return entry;
}

} // namespace

bool CEncapFamily::GetCatParamConstValue(const wchar_t* id, CString& value) const
{
    const CString parameter = TextOrEmpty(id);
    value.clear();
    XMLNode entry;
    bool found = FindConstantMapping(m_document.GetRootNode(), parameter, entry);
    if (found) {
        entry.GetProperty(vocabulary::kConstantValue, value);
    }
    if (IsCatParamLocalized(parameter.c_str())) {
        const StringsDocument* strings = m_strings->Find(m_strings->ActualLanguage());
        found = (strings != nullptr && strings->GetConstant(parameter, value)) || found;
    }
    return found;
}

void CEncapFamily::SetCatParamConstValue(const wchar_t* id, const wchar_t* value)
{
    XMLNode root = m_document.GetRootNode();
    if (!root.IsNode()) {
        return;
    }
    const CString parameter = TextOrEmpty(id);
    XMLNode parameterMap;
    const bool hadMap = root.GetChildNode(vocabulary::kParameterMap, parameterMap);
    if (!hadMap) {
        parameterMap = root.AddNode(vocabulary::kParameterMap);
        if (m_mapping != nullptr) {
            m_mapping->SetParameterMapNode(parameterMap);
        }
    }
    XMLNode entries = parameterMap.GetOrAddNode(vocabulary::kFamilyParametersMap)
                          .GetOrAddNode(vocabulary::kParamsToTemplate);
    GetOrAddConstantMapping(entries, parameter)
        .SetProperty(vocabulary::kConstantValue, TextOrEmpty(value));
    if (IsCatParamLocalized(parameter.c_str())) {
        for (auto& [language, strings] : m_strings->Documents()) {
            strings.SetConstant(parameter, TextOrEmpty(value));
        }
    }
}

bool CEncapFamily::IsCatParamLocalized(const wchar_t* id) const
{
    const auto definition = m_categoryParameters.find(std::wstring_view(TextOrEmpty(id)));
    bool localized = false;
    return definition != m_categoryParameters.end() &&
           definition->second.GetStrBoolProperty(vocabulary::kValueLocalized, localized) &&
           localized;
}

CEncapFamilyColumn* CEncapFamily::GetCategoryParamColumn(const wchar_t* id)
{
    const CString parameter = TextOrEmpty(id);
    const auto known = m_categoryColumns.find(parameter);
    if (known != m_categoryColumns.end()) {
        return known->second;
    }
    if (m_mapping == nullptr || m_table == nullptr) {
        return nullptr;
    }
    CEncapFamilyColumn* column = nullptr;
    CString text;
    if (m_mapping->GetCategoryParamColumn(parameter.c_str(), text)) {
        column = m_table->GetFamilyColumnByID(text.c_str());
    } else if (GetCatParamConstValue(parameter.c_str(), text)) {
        m_constantColumns.push_back(
            std::make_unique<CEncapConstFamilyColumn>(m_table.get(), parameter, text));
        column = m_constantColumns.back().get();
    }
    if (column != nullptr) {
        m_categoryColumns.emplace(parameter, column);
    }
    return column;
}

void CEncapFamily::ForgetCategoryParamColumn(const wchar_t* id)
{
    m_categoryColumns.erase(CString(TextOrEmpty(id)));
}

bool CEncapFamily::GetColumnCategory(const wchar_t* column, CString& id) const
{
    return m_mapping != nullptr && m_mapping->GetColumnCategory(TextOrEmpty(column), id);
}

long CEncapFamily::SetTemplateParameterValue(const wchar_t* templateName,
                                             const wchar_t* parameterId, const wchar_t* value)
{
    XMLNode entries;
    if (m_table == nullptr ||
        !m_document.GetRootNode().GetChildNode(ParamsToTemplatePath().c_str(), entries)) {
        return 1;
    }
    const CString query =
        FormatText(query::kTemplatesParameterOf,
                   {vocabulary::kParamTemplateValue.View(), vocabulary::kTemplatesParameter.View(),
                    vocabulary::kTemplateParameter.View(), vocabulary::kParameterId.View(),
                    QueryLiteral(TextOrEmpty(parameterId)), vocabulary::kTemplateParameter.View(),
                    vocabulary::kTemplateName.View(), QueryLiteral(TextOrEmpty(templateName))});
    XMLNode target;
    if (!entries.GetChildNode(query.c_str(), target)) {
        return 1;
    }
    target.SetProperty(vocabulary::kConstantValue, TextOrEmpty(value));
    m_table->BumpAllMemberRevisions(nullptr);
    return 0;
}

void CEncapFamily::SetRangeColumnValues(const std::map<CString, CString>& values)
{
    if (m_table != nullptr) {
        m_table->SetRangeColumnValues(values);
    }
}
