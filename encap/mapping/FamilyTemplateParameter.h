#pragma once

#include "encap/foundation/Types.h"
#include "encap/xml/XMLNode.h"

#include <map>
#include <memory>
#include <vector>

class CEncapFamilyTemplate;

namespace encap {
class TemplateIndex;
} // namespace encap

/// One "GeneralizedParameter" element of a template: an object of the model (type, reference key,
/// sub-object) that table columns drive. Owned by the template's tree, kept there by its id; refers
/// to its template and shares the document's element. Attributes are read from the element at each
/// call, and an absent one reads as empty text. One thread at a time per family.
class ENCAP_API CEncapFamilyTemplateParameter {
public:
    /// No element, no template.
    CEncapFamilyTemplateParameter();
    /// Loads the nested parameters too. An element without a whole number as "Id" is left alone,
    /// as is one whose id stands before it under the same parent.
    CEncapFamilyTemplateParameter(const XMLNode& node, CEncapFamilyTemplate* owner);
    CEncapFamilyTemplateParameter(const CEncapFamilyTemplateParameter&) = delete;
    CEncapFamilyTemplateParameter& operator=(const CEncapFamilyTemplateParameter&) = delete;
    virtual ~CEncapFamilyTemplateParameter();

    // Attributes.
    /// 0 when it is missing or no number.
    int GetId() const;
    void GetObjectType(CString& text) const;
    void GetObjectReferenceKey(CString& text) const;
    void GetSubObjectId(CString& text) const;
    void GetValueType(CString& text) const;
    void GetUnitType(CString& text) const;
    /// Null changes nothing.
    void SetObjectType(const wchar_t* text);
    void SetObjectReferenceKey(const wchar_t* text);
    void SetSubObjectId(const wchar_t* text);
    void SetValueType(const wchar_t* text);
    void SetUnitType(const wchar_t* text);

    // The parameters nested in this one.
    /// Children first, then the descendants of each child in ascending id order; null: none.
    CEncapFamilyTemplateParameter* GetChild(int id) const;
    /// The direct children by ascending id.
    std::vector<CEncapFamilyTemplateParameter*> GetChildren() const;
    /// Deletes the descendant of that id with its element and subtree; false when there is none.
    bool DeleteChild(int id);

    /// Takes the element out of the document; the object stays.
    void RemoveNodeFromXML();

private:
    friend class CEncapFamilyTemplate;
    friend class encap::TemplateIndex;
    using Level = std::map<int32_t, std::unique_ptr<CEncapFamilyTemplateParameter>>;

    CEncapFamilyTemplateParameter(int32_t id, const XMLNode& node, CEncapFamilyTemplate* owner,
                                  CEncapFamilyTemplateParameter* parent);
    static void LoadTree(const XMLNode& element, CEncapFamilyTemplate* owner,
                         CEncapFamilyTemplateParameter* parent, Level& level);
    void SetText(const wchar_t* attribute, const wchar_t* text);
    void TakeElementOut();

    XMLNode m_node;
    CEncapFamilyTemplate* m_template = nullptr;
    CEncapFamilyTemplateParameter* m_parent = nullptr; ///< null on the top level
    int32_t m_id = 0;                                  ///< the key in the level that holds it
    Level m_children;
};
