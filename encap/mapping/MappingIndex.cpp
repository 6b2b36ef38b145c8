#include "encap/mapping/MappingIndex.h"

#include "encap/family/Vocabulary.h"
#include "encap/foundation/NumberText.h"
#include "encap/mapping/MapWalk.h"
#include "encap/platform/Encoding.h"
#include "encap/xml/NodeAccess.h"

namespace encap {

using platform::WideToUtf8;

namespace {

/// Two texts as one key; documents hold no zero characters.
std::string JoinKey(std::string_view first, std::string_view second)
{
    std::string key;
    key.reserve(first.size() + 1 + second.size());
    return key.append(first).append(1, '\0').append(second);
}

std::string UseKey(std::wstring_view templateName, int32_t parameterId)
{
    return JoinKey(WideToUtf8(templateName), WideToUtf8(FormatInteger(parameterId)));
}

std::string LowerAscii(std::string_view text)
{
    std::string lowered(text);
    for (char& character : lowered) {
        if (character >= 'A' && character <= 'Z') {
            character = static_cast<char>(character - 'A' + 'a');
        }
    }
    return lowered;
}

/// A missing attribute counts as an empty one here, as it does in translate().
std::string ParameterKey(IXMLDOMNode* parameter)
{
    return LowerAscii(JoinKey(AttributeView(parameter, vocabulary::kObjectReferenceKey.utf8),
                              AttributeView(parameter, vocabulary::kSubObjectId.utf8)));
}

bool IsUse(IXMLDOMNode* element)
{
    return NameEquals(element, vocabulary::kTemplateParameter.utf8) &&
           NameEquals(ParentElement(element), vocabulary::kTemplatesParameter.utf8);
}

} // namespace

MappingIndex::MappingIndex(const XMLNode& templates, const XMLNode& parameterMap)
    : m_templates(templates)
{
    SetParameterMap(parameterMap);
}

void MappingIndex::SetTemplates(const XMLNode& templates)
{
    m_templates = templates;
    SetParameterMap(m_parameterMap);
}

void MappingIndex::SetParameterMap(const XMLNode& parameterMap)
{
    m_parameterMap = parameterMap;
    m_clock.Watch(parameterMap.IsNode() ? parameterMap : m_templates);
}

std::size_t MappingIndex::CountUses(std::wstring_view templateName, int32_t parameterId)
{
    Refresh();
    const auto found = m_uses.find(UseKey(templateName, parameterId));
    return found != m_uses.end() ? found->second.all : 0;
}

bool MappingIndex::IsDrivenByColumn(std::wstring_view templateName, int32_t parameterId)
{
    Refresh();
    const auto found = m_uses.find(UseKey(templateName, parameterId));
    return found != m_uses.end() && found->second.byColumns > 0;
}

XMLNode MappingIndex::FirstParameter(std::wstring_view objectRefKey, std::wstring_view subObjectId)
{
    Refresh();
    return Wrap(
        m_parameters.First(LowerAscii(JoinKey(WideToUtf8(objectRefKey), WideToUtf8(subObjectId)))));
}

XMLNode MappingIndex::ColumnOfParameter(std::wstring_view categoryParameter)
{
    Refresh();
    return Wrap(m_columnReferences.FindFirst(categoryParameter));
}

XMLNode MappingIndex::ParameterOfColumn(std::wstring_view columnId)
{
    Refresh();
    return Wrap(FirstChildElement(m_columns.First(WideToUtf8(columnId)),
                                  vocabulary::kCategoryParameterRef.utf8));
}

std::vector<XMLNode> MappingIndex::ConstantsOfParameter(std::wstring_view categoryParameter)
{
    Refresh();
    std::vector<XMLNode> nodes;
    for (IXMLDOMNode* node : m_constantReferences.Find(categoryParameter)) {
        nodes.push_back(Wrap(node));
    }
    return nodes;
}

void MappingIndex::Added(const XMLNode& element)
{
    if (!IsFresh()) {
        return;
    }
    IXMLDOMNode* node = Raw(element);
    IXMLDOMNode* parent = ParentElement(node);
    if (IsUse(node)) {
        AddUse(node);
    } else if (NameEquals(node, vocabulary::kGeneralizedParameter.utf8)) {
        AddParameter(node, parent);
    } else if (NameEquals(node, vocabulary::kFamilyTemplate.utf8)) {
        m_parameterOrder.AddParent(node);
    } else if (NameEquals(node, vocabulary::kParamToColumn.utf8) &&
               !AddColumnReference(node, parent)) {
        m_reading = 0; // its container is new as well
    }
}

void MappingIndex::Removing(const XMLNode& element)
{
    if (!IsFresh()) {
        return;
    }
    IXMLDOMNode* node = Raw(element);
    if (IsUse(node)) {
        RemoveUse(node);
    }
    ForEachUse(node, [this](IXMLDOMNode* use) { RemoveUse(use); });
    Changing(element);
    m_parameterOrder.RemoveChild(node);
    RemoveColumnReference(node);
    RemoveConstantReference(node);
}

void MappingIndex::Changing(const XMLNode& parameter)
{
    uint64_t order = 0;
    if (IsFresh() && m_parameterOrder.Find(Raw(parameter), order)) {
        m_parameters.Remove(ParameterKey(Raw(parameter)), order);
    }
}

void MappingIndex::Changed(const XMLNode& parameter)
{
    uint64_t order = 0;
    if (IsFresh() && m_parameterOrder.Find(Raw(parameter), order)) {
        m_parameters.Add(ParameterKey(Raw(parameter)), order, Raw(parameter));
    }
}

void MappingIndex::Refresh()
{
    if (IsFresh()) {
        return;
    }
    m_uses.clear();
    m_parameterOrder.Clear();
    m_parameters.Clear();
    m_referenceOrder.Clear();
    m_columnReferences.Clear();
    m_columns.Clear();
    m_constantOrder.Clear();
    m_constantReferences.Clear();
    ReadUses();
    ReadTemplates();
    ReadCategoryReferences();
    m_reading = m_clock.Reading();
}

void MappingIndex::ReadUses()
{
    if (!m_parameterMap.IsNode()) {
        return;
    }
    XMLNode top = m_parameterMap;
    for (XMLNode parent = top; parent.IsNode(); parent = parent.GetParentNode()) {
        top = parent;
    }
    ForEachUse(Raw(top), [this](IXMLDOMNode* use) { AddUse(use); });
}

void MappingIndex::ReadTemplates()
{
    ForEachChild(Raw(m_templates), vocabulary::kFamilyTemplate.utf8, [this](IXMLDOMNode* node) {
        m_parameterOrder.AddParent(node);
        ForEachChild(node, vocabulary::kGeneralizedParameter.utf8,
                     [this, node](IXMLDOMNode* parameter) { AddParameter(parameter, node); });
    });
}

void MappingIndex::ReadCategoryReferences()
{
    IXMLDOMNode* map = Raw(m_parameterMap);
    ForEachGrandchild(map, vocabulary::kMemberParametersMap.utf8, vocabulary::kParamsToColumn.utf8,
                      [this](IXMLDOMNode* container) {
                          m_referenceOrder.AddParent(container);
                          ForEachChild(container, vocabulary::kParamToColumn.utf8,
                                       [this, container](IXMLDOMNode* element) {
                                           AddColumnReference(element, container);
                                       });
                      });
    ForEachGrandchild(map, vocabulary::kFamilyParametersMap.utf8,
                      vocabulary::kParamsToTemplate.utf8, [this](IXMLDOMNode* container) {
                          m_constantOrder.AddParent(container);
                          ForEachChild(container, vocabulary::kParamTemplateValue.utf8,
                                       [this, container](IXMLDOMNode* element) {
                                           uint64_t order = 0;
                                           m_constantOrder.AddChild(container, element, order);
                                           m_constantReferences.Add(element, order);
                                       });
                      });
}

void MappingIndex::AddUse(IXMLDOMNode* element)
{
    const std::string_view name = AttributeView(element, vocabulary::kTemplateName.utf8);
    const std::string_view id = AttributeView(element, vocabulary::kParameterId.utf8);
    if (name.data() == nullptr || id.data() == nullptr) {
        return;
    }
    Uses& uses = m_uses[JoinKey(name, id)];
    ++uses.all;
    uses.byColumns += StandsInColumnMap(element) ? 1 : 0;
}

void MappingIndex::RemoveUse(IXMLDOMNode* element)
{
    const auto found = m_uses.find(JoinKey(AttributeView(element, vocabulary::kTemplateName.utf8),
                                           AttributeView(element, vocabulary::kParameterId.utf8)));
    if (found == m_uses.end()) {
        return;
    }
    found->second.byColumns -= StandsInColumnMap(element) ? 1 : 0;
    if (--found->second.all == 0) {
        m_uses.erase(found);
    }
}

void MappingIndex::AddParameter(IXMLDOMNode* element, IXMLDOMNode* familyTemplate)
{
    uint64_t order = 0;
    if (m_parameterOrder.AddChild(familyTemplate, element, order)) {
        m_parameters.Add(ParameterKey(element), order, element);
    }
}

bool MappingIndex::AddColumnReference(IXMLDOMNode* element, IXMLDOMNode* container)
{
    uint64_t order = 0;
    if (!m_referenceOrder.AddChild(container, element, order)) {
        return false;
    }
    m_columnReferences.Add(element, order);
    const std::string_view column = AttributeView(element, vocabulary::kTableColumn.utf8);
    if (column.data() != nullptr &&
        FirstChildElement(element, vocabulary::kCategoryParameterRef.utf8) != nullptr) {
        m_columns.Add(std::string(column), order, element);
    }
    return true;
}

void MappingIndex::RemoveColumnReference(IXMLDOMNode* element)
{
    uint64_t order = 0;
    if (m_referenceOrder.Find(element, order)) {
        m_columnReferences.Remove(element, order);
        m_columns.Remove(std::string(AttributeView(element, vocabulary::kTableColumn.utf8)), order);
        m_referenceOrder.RemoveChild(element);
    }
}

void MappingIndex::RemoveConstantReference(IXMLDOMNode* element)
{
    uint64_t order = 0;
    if (m_constantOrder.Find(element, order)) {
        m_constantReferences.Remove(element, order);
        m_constantOrder.RemoveChild(element);
    }
}

} // namespace encap
