#pragma once

#include "encap/foundation/Types.h"
#include "encap/mapping/ChangeClock.h"
#include "encap/mapping/FamilyTemplateParameter.h"

#include <map>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace encap {

/// Look-ups in one template's tree of parameters: by id over all levels, by object over the top
/// level. Owned by the template, which reports what comes and goes; the objects of parameters are
/// read again when somebody else has edited the document.
class TemplateIndex {
public:
    using Parameter = CEncapFamilyTemplateParameter;
    using Level = std::map<int32_t, std::unique_ptr<Parameter>>;

    /// shared: the mapping's clock, or null for a template without a mapping.
    /// REQUIRES: topLevel and shared live as long as the index.
    TemplateIndex(const Level& topLevel, ChangeClock* shared, const XMLNode& node);

    /// A top-level parameter, else the first nested one by ascending ids; null when there is none.
    [[nodiscard]] Parameter* Find(int32_t id);
    /// The top-level parameter of lowest id with this key and sub-object, or, for the sub-object
    /// "Material", that is a material; without regard to case. Null when there is none.
    [[nodiscard]] Parameter* FindObject(std::wstring_view objectRefKey,
                                        std::wstring_view subObjectId);

    void Added(Parameter& topLevel);
    /// A parameter of any level is about to go with its subtree.
    void Removing(Parameter& parameter);
    /// The attributes of a parameter are about to change, or have changed.
    void Changing(Parameter& parameter);
    void Changed(Parameter& parameter);

private:
    void RefreshIds();
    void RefreshObjects();
    [[nodiscard]] bool AreObjectsFresh() { return m_objectsReading == m_clock->Reading(); }
    [[nodiscard]] bool IsTopLevel(const Parameter& parameter) const;
    void AddObject(Parameter& parameter);
    void RemoveObject(const Parameter& parameter);

    const Level& m_topLevel;
    ChangeClock m_ownClock;
    ChangeClock* m_clock;

    std::unordered_map<int32_t, Parameter*> m_ids;
    bool m_idsFresh = false;
    bool m_idsRepeat = false; ///< nested levels may repeat an id

    std::map<std::pair<CString, int32_t>, Parameter*> m_objects;
    std::map<int32_t, Parameter*> m_materials;
    uint64_t m_objectsReading = 0;
};

} // namespace encap
