#include "encap/mapping/TemplateIndex.h"

#include "encap/foundation/CaseFolding.h"
#include "encap/mapping/ParameterKinds.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace encap {

namespace {

/// Both texts as one key; documents hold no zero characters.
CString ObjectKey(std::wstring_view objectRefKey, std::wstring_view subObjectId)
{
    CString key = FoldCase(objectRefKey);
    key.push_back(L'\0');
    return key.append(FoldCase(subObjectId));
}

CString ObjectKey(const CEncapFamilyTemplateParameter& parameter)
{
    CString objectRefKey;
    CString subObjectId;
    parameter.GetObjectReferenceKey(objectRefKey);
    parameter.GetSubObjectId(subObjectId);
    return ObjectKey(objectRefKey, subObjectId);
}

bool IsMaterial(const CEncapFamilyTemplateParameter& parameter)
{
    CString objectType;
    CString subObjectId;
    parameter.GetObjectType(objectType);
    parameter.GetSubObjectId(subObjectId);
    return ClassifyParameter(objectType, subObjectId) == BindingKind::Material;
}

} // namespace

TemplateIndex::TemplateIndex(const Level& topLevel, ChangeClock* shared, const XMLNode& node)
    : m_topLevel(topLevel), m_ownClock(node), m_clock(shared != nullptr ? shared : &m_ownClock)
{
}

CEncapFamilyTemplateParameter* TemplateIndex::Find(int32_t id)
{
    RefreshIds();
    const auto found = m_ids.find(id);
    return found != m_ids.end() ? found->second : nullptr;
}

CEncapFamilyTemplateParameter* TemplateIndex::FindObject(std::wstring_view objectRefKey,
                                                         std::wstring_view subObjectId)
{
    RefreshObjects();
    const CString key = ObjectKey(objectRefKey, subObjectId);
    const auto object = m_objects.lower_bound({key, std::numeric_limits<int32_t>::min()});
    const bool hasObject = object != m_objects.end() && object->first.first == key;
    if (!EqualNoCase(subObjectId, kMaterialSubObject) || m_materials.empty()) {
        return hasObject ? object->second : nullptr;
    }
    const auto material = m_materials.begin();
    return hasObject && object->first.second < material->first ? object->second : material->second;
}

void TemplateIndex::Added(Parameter& topLevel)
{
    if (m_idsFresh && !m_ids.try_emplace(topLevel.m_id, &topLevel).second) {
        m_idsFresh = false;
    }
    Changed(topLevel);
}

void TemplateIndex::Removing(Parameter& parameter)
{
    Changing(parameter);
    if (m_idsRepeat) {
        m_idsFresh = false;
        return;
    }
    std::vector<const Parameter*> pending{&parameter};
    while (m_idsFresh && !pending.empty()) {
        const Parameter* gone = pending.back();
        pending.pop_back();
        m_ids.erase(gone->m_id);
        for (const auto& [id, child] : gone->m_children) {
            pending.push_back(child.get());
        }
    }
}

void TemplateIndex::Changing(Parameter& parameter)
{
    if (AreObjectsFresh() && IsTopLevel(parameter)) {
        RemoveObject(parameter);
    }
}

void TemplateIndex::Changed(Parameter& parameter)
{
    if (AreObjectsFresh() && IsTopLevel(parameter)) {
        AddObject(parameter);
    }
}

// Enters ids level by level on the way down, so that the first entry of an id is the one that a
// search finds: the own level first, then the branches by ascending ids.
void TemplateIndex::RefreshIds()
{
    if (m_idsFresh) {
        return;
    }
    m_ids.clear();
    m_idsRepeat = false;
    std::vector<const Level*> pending{&m_topLevel};
    while (!pending.empty()) {
        const Level& level = *pending.back();
        pending.pop_back();
        for (const auto& [id, parameter] : level) {
            m_idsRepeat = !m_ids.try_emplace(id, parameter.get()).second || m_idsRepeat;
        }
        std::for_each(level.rbegin(), level.rend(), [&pending](const auto& entry) {
            if (!entry.second->m_children.empty()) {
                pending.push_back(&entry.second->m_children);
            }
        });
    }
    m_idsFresh = true;
}

void TemplateIndex::RefreshObjects()
{
    if (AreObjectsFresh()) {
        return;
    }
    m_objects.clear();
    m_materials.clear();
    for (const auto& [id, parameter] : m_topLevel) {
        AddObject(*parameter);
    }
    m_objectsReading = m_clock->Reading();
}

bool TemplateIndex::IsTopLevel(const Parameter& parameter) const
{
    const auto found = m_topLevel.find(parameter.m_id);
    return found != m_topLevel.end() && found->second.get() == &parameter;
}

void TemplateIndex::AddObject(Parameter& parameter)
{
    m_objects.emplace(std::pair(ObjectKey(parameter), parameter.m_id), &parameter);
    if (IsMaterial(parameter)) {
        m_materials.emplace(parameter.m_id, &parameter);
    }
}

void TemplateIndex::RemoveObject(const Parameter& parameter)
{
    m_objects.erase({ObjectKey(parameter), parameter.m_id});
    m_materials.erase(parameter.m_id);
}

} // namespace encap
