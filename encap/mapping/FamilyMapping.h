#pragma once

#include "encap/foundation/StringMap.h"
#include "encap/foundation/Types.h"
#include "encap/mapping/FamilyColVexilData.h"
#include "encap/mapping/FamilyTemplate.h"
#include "encap/mapping/MemberColToParam.h"
#include "encap/mapping/MemberColToTemplate.h"
#include "encap/xml/XMLNode.h"

#include <map>
#include <memory>
#include <set>
#include <vector>

class CEncapFamily;
class CEncapFamilyColumn;

namespace encap {
class MappingIndex;
struct MappingAccess;
} // namespace encap

/// What the columns of a family drive outside the table: parameters of the model templates
/// ("FamilyTemplates") and category parameters ("ParameterMap"). Every change is written into the
/// document at once. Owned by its family; owns its templates and maps; refers to the family and
/// shares the document's elements. Damaged entries stay in the document and are passed over; of
/// two entries under one key the first holds. Null texts count as empty. One thread at a time per
/// family.
class ENCAP_API CEncapFamilyMapping {
public:
    using ColPropertyObjectType = CEncapFamilyColVexilData::ColPropertyObjectType;

    /// Empty; every change does nothing.
    CEncapFamilyMapping();
    /// Loads the "FamilyTemplates" and "ParameterMap" elements. family may be null.
    CEncapFamilyMapping(const XMLNode& templatesNode, const XMLNode& parameterMapNode,
                        CEncapFamily* family);
    CEncapFamilyMapping(const CEncapFamilyMapping&) = delete;
    CEncapFamilyMapping& operator=(const CEncapFamilyMapping&) = delete;
    virtual ~CEncapFamilyMapping();

    // Templates.
    CEncapFamilyTemplate* GetFamilyTemplate(const wchar_t* name) const;
    /// In document order.
    const std::vector<CString>& GetTemplateNames() const;
    /// The template of that name, a new one when there is none; null for an empty name and when no
    /// element can be added.
    CEncapFamilyTemplate* AddFamilyTemplate(const CString& name);
    /// The first template's file; fileName is as it was when there is no template.
    void GetTemplateFileName(CString& fileName) const;

    // What a column drives; null when it drives nothing. Valid until the column's mapping changes.
    const CEncapMemberColToTemplate* GetColumnTemplateMap(const wchar_t* columnId) const;
    const CEncapMemberColToParam* GetColumnCategoryMap(const wchar_t* columnId) const;

    // Binding to model objects.
    /// The property data of a new binding; null when both texts are empty or a column drives the
    /// object already.
    std::unique_ptr<CEncapFamilyColVexilData> GetColVexilData(const wchar_t* objectRefKey,
                                                              const wchar_t* subObjectId,
                                                              ColPropertyObjectType type) const;
    /// Whether a column drives the first top-level parameter for this object (ASCII letters
    /// compare without regard to case).
    bool IsPropertyAlreadyUsed(const wchar_t* objectRefKey, const wchar_t* subObjectId) const;
    /// Brings the maps in step with what the user made the column drive. The caller has set
    /// IsGeometryColumn and IsZelPropertyColumn before. An object that a column drives already,
    /// this one included, gives no property binding. Every member gets one new revision when the
    /// column causes a refresh before or after. A family without templates gets "Template1".
    void UpdateColumnMapping(CEncapFamilyColumn* column, const wchar_t* objectRefKey,
                             const wchar_t* subObjectId, ColPropertyObjectType type);

    // Binding to category parameters.
    /// True when the column supplies the category parameter afterwards; false when an element
    /// cannot be added (what was added so far stays).
    bool AddParamToColumnMapping(CEncapFamilyColumn* column, const wchar_t* category,
                                 const wchar_t* categoryParameter);

    // Localized columns. Answers are kept until something changes that they may depend on.
    /// Changes whenever an answer of the family about a localized column may have changed: a caller
    /// that is asked for every cell keeps its answer together with this number. Never 0.
    uint64_t LocalizedColumnsVersion() const;
    /// Drops the answer for one column, whose visibility or type has changed.
    void ForgetLocalizedColumn(const wchar_t* columnId);
    /// Drops every answer, after category parameters have gone.
    void ForgetLocalizedColumns();

private:
    friend class CEncapFamily;
    friend struct encap::MappingAccess;

    using Entry = CEncapMemberColToTemplate::Entry;

    void InitializeData();
    void ClearData();
    void LoadTemplates();
    void LoadColumnTemplateMaps();
    void LoadColumnCategoryMaps();
    CEncapFamilyTemplate* EnterTemplate(const CString& name, const XMLNode& node);

    // For the family.
    void SetParameterMapNode(const XMLNode& parameterMapNode);
    void InitializeColumnData(CEncapFamilyColumn* column);
    void RemoveColumnMapping(const wchar_t* columnId);
    bool GetCategoryParamColumn(const wchar_t* categoryParameter, CString& columnId) const;
    bool GetColumnCategory(const wchar_t* columnId, CString& categoryParameter) const;
    bool IsFamilyColumnLocalized(const wchar_t* columnId);
    bool RemoveParamToColumnMapping(const wchar_t* categoryParameter);
    bool RemoveParamToConstantMapping(const wchar_t* categoryParameter);

    // Steps of UpdateColumnMapping.
    void UpdateColumnGeometry(CEncapFamilyColumn* column);
    void BindGeometry(CEncapFamilyColumn& column);
    void UpdateVexilMapping(CEncapFamilyColumn* column);
    bool ReleaseProperties(const CEncapFamilyColumn& column, std::set<int>& userParameters);
    void ReleaseAllBut(const CEncapFamilyColumn& column, const std::set<int>& parameterIds);
    void Release(const CEncapFamilyColumn& column, const Entry& entry);
    void BindProperty(CEncapFamilyColumn& column, const CEncapFamilyColVexilData& data);
    void UpdateThreadFeatureColumn(CEncapFamilyColumn* column);
    void UpdateTemplateParameters(const wchar_t* templateName, int parameterId);
    void ReleaseParameters(const CEncapMemberColToTemplate& map);
    void BumpMembers();

    // Shared by them.
    void EnsureNodes();
    void EnsureTemplate();
    CEncapMemberColToTemplate* TemplateMapOf(const CEncapFamilyColumn& column) const;
    CEncapMemberColToTemplate* GetOrAddTemplateMap(const CEncapFamilyColumn& column);
    std::vector<Entry> MappingsOf(const CEncapFamilyColumn& column) const;
    CEncapFamilyTemplateParameter* FindParameter(const Entry& entry) const;
    bool AddParamToColumn(const CString& columnId, const wchar_t* category,
                          const wchar_t* categoryParameter, XMLNode& element);
    bool SuppliesLocalizedParameter(const CEncapMemberColToParam& map) const;
    void ForgetCategoryParameter(const wchar_t* categoryParameter);

    XMLNode m_templatesNode;
    XMLNode m_parameterMapNode;
    CEncapFamily* m_family = nullptr;
    CStringMapTo<std::unique_ptr<CEncapFamilyTemplate>> m_templates;
    std::vector<CString> m_templateNames;
    CStringMapTo<std::unique_ptr<CEncapMemberColToTemplate>> m_columnsToTemplate;
    CStringMapTo<std::unique_ptr<CEncapMemberColToParam>> m_columnsToParam;
    std::map<CString, bool, std::less<>> m_localizedColumns;
    uint64_t m_localizedColumnsVersion = 1;
    std::unique_ptr<encap::MappingIndex> m_index;
};
