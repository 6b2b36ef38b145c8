#pragma once

#include "encap/mapping/FamilyMapping.h"
#include "encap/mapping/MappingIndex.h"

#include <optional>

namespace encap {

/// The way from a mapping's parts to the index of the mapping.
struct MappingAccess {
    /// Null without a mapping.
    static MappingIndex* Index(const CEncapFamilyMapping* mapping)
    {
        return mapping != nullptr ? mapping->m_index.get() : nullptr;
    }
};

/// One edit of a mapping's part, reported to the mapping's index; without a mapping it reports to
/// nobody. Lives while the document is edited.
class MapEdit {
public:
    explicit MapEdit(const CEncapFamilyMapping* mapping) : MapEdit(MappingAccess::Index(mapping)) {}
    explicit MapEdit(MappingIndex* index) : m_index(index)
    {
        if (m_index != nullptr) {
            m_edit.emplace(m_index->Clock());
        }
    }

    /// As MappingIndex's.
    void Added(const XMLNode& element)
    {
        if (m_index != nullptr) {
            m_index->Added(element);
        }
    }
    void Removing(const XMLNode& element)
    {
        if (m_index != nullptr) {
            m_index->Removing(element);
        }
    }
    void Changing(const XMLNode& parameter)
    {
        if (m_index != nullptr) {
            m_index->Changing(parameter);
        }
    }
    void Changed(const XMLNode& parameter)
    {
        if (m_index != nullptr) {
            m_index->Changed(parameter);
        }
    }

private:
    MappingIndex* m_index;
    std::optional<ChangeClock::OwnEdit> m_edit;
};

} // namespace encap
