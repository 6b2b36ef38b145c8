#pragma once

#include "encap/foundation/Types.h"
#include "encap/mapping/FamilyTemplateParameter.h"
#include "encap/xml/XMLNode.h"

#include <map>
#include <memory>
#include <vector>

class CEncapFamilyMapping;

namespace encap {
class MappingIndex;
class TemplateIndex;
} // namespace encap

/// One "FamilyTemplate" element: a model file that members are made from, and the parameters of
/// that model which columns drive. Owned by the family mapping; owns its parameters, which may
/// nest; shares the document's element. A pointer to a parameter is valid until the parameter or
/// one that holds it is deleted. One thread at a time per family.
class ENCAP_API CEncapFamilyTemplate {
public:
    CEncapFamilyTemplate();
    /// Loads the whole tree of parameters. mapping may be null.
    CEncapFamilyTemplate(const XMLNode& node, CEncapFamilyMapping* mapping);
    CEncapFamilyTemplate(const CEncapFamilyTemplate&) = delete;
    CEncapFamilyTemplate& operator=(const CEncapFamilyTemplate&) = delete;
    virtual ~CEncapFamilyTemplate();

    /// Empty when the attribute is missing.
    void GetName(CString& name) const;
    void GetFileName(CString& fileName) const;

    /// The parameter of an id: a top-level one, else the first nested one, going down by ascending
    /// ids; null when there is none.
    CEncapFamilyTemplateParameter* GetParameter(int id) const;
    /// The top-level parameters by ascending id.
    std::vector<CEncapFamilyTemplateParameter*> GetParameters() const;
    /// The top-level parameter of lowest id for this object, without regard to case; for the
    /// sub-object "Material" a template has one parameter, whatever its reference key. Else a new
    /// parameter, whose types are the caller's to set. Null when no element can be added.
    CEncapFamilyTemplateParameter* AddParameter(const CString& objectRefKey,
                                                const CString& subObjectId);
    /// Deletes the parameter that GetParameter finds, with its element and subtree; false when
    /// there is none.
    bool DeleteParameter(int id);

private:
    friend class CEncapFamilyTemplateParameter;

    void InitializeData();
    void ClearData();
    void RaiseNextParameterId(int32_t id);
    void Delete(CEncapFamilyTemplateParameter& parameter);
    encap::MappingIndex* MapIndex() const;

    int32_t m_nextParameterId = 0;
    XMLNode m_node;
    CEncapFamilyMapping* m_mapping = nullptr;
    std::map<int32_t, std::unique_ptr<CEncapFamilyTemplateParameter>> m_parameters;
    // Look-ups by id over all levels and by object over the top level.
    std::unique_ptr<encap::TemplateIndex> m_index;
};
