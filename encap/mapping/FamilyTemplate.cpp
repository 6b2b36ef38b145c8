#include "encap/mapping/FamilyTemplate.h"

#include "encap/family/Vocabulary.h"
#include "encap/foundation/NumberText.h"
#include "encap/mapping/MapEdit.h"
#include "encap/mapping/TemplateIndex.h"

#include <limits>

namespace vocabulary = encap::vocabulary;

namespace {

/// The largest id is never given out, so that counting on from it cannot overflow.
constexpr int32_t kLastParameterId = std::numeric_limits<int32_t>::max();

} // namespace

CEncapFamilyTemplate::CEncapFamilyTemplate() : CEncapFamilyTemplate(XMLNode(), nullptr) {}

CEncapFamilyTemplate::CEncapFamilyTemplate(const XMLNode& node, CEncapFamilyMapping* mapping)
    : m_node(node), m_mapping(mapping)
{
    encap::MappingIndex* mapIndex = MapIndex();
    m_index = std::make_unique<encap::TemplateIndex>(
        m_parameters, mapIndex != nullptr ? &mapIndex->Clock() : nullptr, node);
    InitializeData();
}

CEncapFamilyTemplate::~CEncapFamilyTemplate()
{
    ClearData();
}

void CEncapFamilyTemplate::GetName(CString& name) const
{
    m_node.GetProperty(vocabulary::kName, name);
}

void CEncapFamilyTemplate::GetFileName(CString& fileName) const
{
    m_node.GetProperty(vocabulary::kFileName, fileName);
}

CEncapFamilyTemplateParameter* CEncapFamilyTemplate::GetParameter(int id) const
{
    return m_index->Find(id);
}

std::vector<CEncapFamilyTemplateParameter*> CEncapFamilyTemplate::GetParameters() const
{
    std::vector<CEncapFamilyTemplateParameter*> parameters;
    parameters.reserve(m_parameters.size());
    for (const auto& [id, parameter] : m_parameters) {
        parameters.push_back(parameter.get());
    }
    return parameters;
}

CEncapFamilyTemplateParameter* CEncapFamilyTemplate::AddParameter(const CString& objectRefKey,
                                                                  const CString& subObjectId)
{
    if (CEncapFamilyTemplateParameter* known = m_index->FindObject(objectRefKey, subObjectId)) {
        return known;
    }
    if (m_nextParameterId == kLastParameterId) {
        return nullptr;
    }
    const int32_t id = m_nextParameterId;
    encap::MapEdit edit(m_mapping);
    const XMLNode node =
        m_node.AddNode(vocabulary::kGeneralizedParameter, nullptr, vocabulary::kId,
                       encap::FormatInteger(id).c_str(), vocabulary::kObjectReferenceKey,
                       objectRefKey.c_str(), vocabulary::kSubObjectId, subObjectId.c_str());
    if (!node.IsNode()) {
        return nullptr;
    }
    RaiseNextParameterId(id);
    std::unique_ptr<CEncapFamilyTemplateParameter> made(
        new CEncapFamilyTemplateParameter(id, node, this, nullptr));
    CEncapFamilyTemplateParameter* parameter =
        m_parameters.insert_or_assign(id, std::move(made)).first->second.get();
    m_index->Added(*parameter);
    edit.Added(node);
    return parameter;
}

bool CEncapFamilyTemplate::DeleteParameter(int id)
{
    CEncapFamilyTemplateParameter* parameter = m_index->Find(id);
    if (parameter == nullptr) {
        return false;
    }
    Delete(*parameter);
    return true;
}

void CEncapFamilyTemplate::Delete(CEncapFamilyTemplateParameter& parameter)
{
    m_index->Removing(parameter);
    parameter.TakeElementOut();
    auto& level = parameter.m_parent != nullptr ? parameter.m_parent->m_children : m_parameters;
    level.erase(parameter.m_id);
}

void CEncapFamilyTemplate::InitializeData()
{
    ClearData();
    CEncapFamilyTemplateParameter::LoadTree(m_node, this, nullptr, m_parameters);
}

void CEncapFamilyTemplate::ClearData()
{
    m_parameters.clear();
}

void CEncapFamilyTemplate::RaiseNextParameterId(int32_t id)
{
    if (id >= m_nextParameterId) {
        m_nextParameterId = id < kLastParameterId ? id + 1 : kLastParameterId;
    }
}

encap::MappingIndex* CEncapFamilyTemplate::MapIndex() const
{
    return encap::MappingAccess::Index(m_mapping);
}
