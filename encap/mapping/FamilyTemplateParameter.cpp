#include "encap/mapping/FamilyTemplateParameter.h"

#include "encap/family/Vocabulary.h"
#include "encap/mapping/FamilyTemplate.h"
#include "encap/mapping/MapEdit.h"
#include "encap/mapping/MapWalk.h"
#include "encap/mapping/TemplateIndex.h"

#include <algorithm>

namespace vocabulary = encap::vocabulary;

CEncapFamilyTemplateParameter::CEncapFamilyTemplateParameter() = default;

CEncapFamilyTemplateParameter::CEncapFamilyTemplateParameter(const XMLNode& node,
                                                             CEncapFamilyTemplate* owner)
    : CEncapFamilyTemplateParameter(0, node, owner, nullptr)
{
    m_id = GetId();
    LoadTree(node, owner, this, m_children);
}

CEncapFamilyTemplateParameter::CEncapFamilyTemplateParameter(int32_t id, const XMLNode& node,
                                                             CEncapFamilyTemplate* owner,
                                                             CEncapFamilyTemplateParameter* parent)
    : m_node(node), m_template(owner), m_parent(parent), m_id(id)
{
}

// Takes the tree apart from its leaves: a deep tree must not need a deep stack, nor memory.
CEncapFamilyTemplateParameter::~CEncapFamilyTemplateParameter()
{
    CEncapFamilyTemplateParameter* at = this;
    while (at != this || !m_children.empty()) {
        if (!at->m_children.empty()) {
            at = at->m_children.begin()->second.get();
            continue;
        }
        at = at->m_parent;
        at->m_children.erase(at->m_children.begin());
    }
}

int CEncapFamilyTemplateParameter::GetId() const
{
    int id = 0;
    m_node.GetProperty(vocabulary::kId, id);
    return id;
}

void CEncapFamilyTemplateParameter::GetObjectType(CString& text) const
{
    m_node.GetProperty(vocabulary::kObjectType, text);
}

void CEncapFamilyTemplateParameter::GetObjectReferenceKey(CString& text) const
{
    m_node.GetProperty(vocabulary::kObjectReferenceKey, text);
}

void CEncapFamilyTemplateParameter::GetSubObjectId(CString& text) const
{
    m_node.GetProperty(vocabulary::kSubObjectId, text);
}

void CEncapFamilyTemplateParameter::GetValueType(CString& text) const
{
    m_node.GetProperty(vocabulary::kValueType, text);
}

void CEncapFamilyTemplateParameter::GetUnitType(CString& text) const
{
    m_node.GetProperty(vocabulary::kUnitType, text);
}

void CEncapFamilyTemplateParameter::SetObjectType(const wchar_t* text)
{
    SetText(vocabulary::kObjectType, text);
}

void CEncapFamilyTemplateParameter::SetObjectReferenceKey(const wchar_t* text)
{
    SetText(vocabulary::kObjectReferenceKey, text);
}

void CEncapFamilyTemplateParameter::SetSubObjectId(const wchar_t* text)
{
    SetText(vocabulary::kSubObjectId, text);
}

void CEncapFamilyTemplateParameter::SetValueType(const wchar_t* text)
{
    SetText(vocabulary::kValueType, text);
}

void CEncapFamilyTemplateParameter::SetUnitType(const wchar_t* text)
{
    SetText(vocabulary::kUnitType, text);
}

CEncapFamilyTemplateParameter* CEncapFamilyTemplateParameter::GetChild(int id) const
{
    std::vector<const Level*> pending{&m_children};
    while (!pending.empty()) {
        const Level& level = *pending.back();
        pending.pop_back();
        const auto found = level.find(id);
        if (found != level.end()) {
            return found->second.get();
        }
        std::for_each(level.rbegin(), level.rend(), [&pending](const auto& entry) {
            pending.push_back(&entry.second->m_children);
        });
    }
    return nullptr;
}

std::vector<CEncapFamilyTemplateParameter*> CEncapFamilyTemplateParameter::GetChildren() const
{
    std::vector<CEncapFamilyTemplateParameter*> children;
    children.reserve(m_children.size());
    for (const auto& [id, child] : m_children) {
        children.push_back(child.get());
    }
    return children;
}

bool CEncapFamilyTemplateParameter::DeleteChild(int id)
{
    CEncapFamilyTemplateParameter* child = GetChild(id);
    if (child == nullptr) {
        return false;
    }
    if (m_template != nullptr) {
        m_template->Delete(*child);
    } else {
        child->TakeElementOut();
        child->m_parent->m_children.erase(child->m_id);
    }
    return true;
}

void CEncapFamilyTemplateParameter::RemoveNodeFromXML()
{
    TakeElementOut();
}

void CEncapFamilyTemplateParameter::LoadTree(const XMLNode& element, CEncapFamilyTemplate* owner,
                                             CEncapFamilyTemplateParameter* parent, Level& level)
{
    struct Task {
        XMLNode element;
        CEncapFamilyTemplateParameter* parent;
        Level* level;
    };
    std::vector<Task> pending{{element, parent, &level}};
    while (!pending.empty()) {
        const Task task = std::move(pending.back());
        pending.pop_back();
        encap::ForEachChild(
            encap::Raw(task.element), vocabulary::kGeneralizedParameter.utf8,
            [&](IXMLDOMNode* raw) {
                const XMLNode node = encap::Wrap(raw);
                int32_t id = 0;
                if (!node.GetProperty(vocabulary::kId, id)) {
                    return;
                }
                if (owner != nullptr) {
                    owner->RaiseNextParameterId(id);
                }
                std::unique_ptr<CEncapFamilyTemplateParameter> loaded(
                    new CEncapFamilyTemplateParameter(id, node, owner, task.parent));
                const auto [entry, isNew] = task.level->try_emplace(id, std::move(loaded));
                if (isNew) {
                    CEncapFamilyTemplateParameter* added = entry->second.get();
                    pending.push_back({node, added, &added->m_children});
                }
            });
    }
}

void CEncapFamilyTemplateParameter::SetText(const wchar_t* attribute, const wchar_t* text)
{
    if (m_template == nullptr) {
        m_node.SetProperty(attribute, text);
        return;
    }
    encap::MapEdit edit(m_template->MapIndex());
    edit.Changing(m_node);
    m_template->m_index->Changing(*this);
    m_node.SetProperty(attribute, text);
    m_template->m_index->Changed(*this);
    edit.Changed(m_node);
}

void CEncapFamilyTemplateParameter::TakeElementOut()
{
    encap::MapEdit edit(m_template != nullptr ? m_template->MapIndex() : nullptr);
    edit.Removing(m_node);
    m_node.RemoveThisNode(false);
}
