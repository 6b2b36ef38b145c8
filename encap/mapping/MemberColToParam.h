#pragma once

#include "encap/foundation/Types.h"
#include "encap/xml/XMLNode.h"

#include <unordered_set>
#include <vector>

class CEncapFamilyMapping;

/// The category parameters that one column supplies: the column's "ParamToColumn" elements, one
/// per category parameter, in the order in which they were added. Owned by the family mapping;
/// shares the document's elements.
class ENCAP_API CEncapMemberColToParam {
public:
    CEncapMemberColToParam();
    /// Takes the first element without looking at it. mapping may be null.
    CEncapMemberColToParam(const XMLNode& node, CEncapFamilyMapping* mapping);
    CEncapMemberColToParam(const CEncapMemberColToParam&) = delete;
    CEncapMemberColToParam& operator=(const CEncapMemberColToParam&) = delete;
    virtual ~CEncapMemberColToParam();

    /// As it was when there is no element.
    void GetColumnName(CString& columnId) const;
    /// False, with nothing added, when the element names no category parameter or one that the
    /// column supplies already.
    bool AddCategoryParam(XMLNode& element);
    /// Removes the elements of a category parameter, without regard to case, here and from the
    /// document. Always true.
    bool RemoveCategoryParam(const wchar_t* categoryParameter);
    /// Replaces ids by the category parameters; whether there are any.
    bool GetCategoryParams(std::vector<CString>& ids) const;
    /// Exact, unlike RemoveCategoryParam.
    bool IsMappedForCatParam(const wchar_t* categoryParameter) const;
    /// The number of elements, those that name no category parameter included.
    int ParamCount() const;
    /// Removes every element, here and from the document.
    void RemoveNodesFromXML();

private:
    uint64_t Reading() const;
    void EnterIds(const XMLNode& element) const;

    std::vector<XMLNode> m_nodes;
    CEncapFamilyMapping* m_mapping = nullptr;
    // The identifiers in the elements, as of a reading of the mapping's clock; 0: to be read anew.
    mutable std::unordered_set<CString> m_ids;
    mutable uint64_t m_idsReading = 0;
};
