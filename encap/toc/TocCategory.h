#pragma once

#include "encap/foundation/Types.h"
#include "encap/xml/XMLNode.h"
#include "encap/xml/XMLNodeArray.h"

#include <set>

/// A view of one "Category" element of a table of contents. Shares the element; nobody need own it.
/// A getter that returns false found no such attribute and leaves its text empty.
class ENCAP_API CTocCategory : public XMLNode {
public:
    CTocCategory();
    explicit CTocCategory(const XMLNode& node);
    CTocCategory(const CTocCategory& other);
    CTocCategory& operator=(const CTocCategory& other);
    ~CTocCategory() override;

    bool GetInternalName(CString& value) const;
    bool GetDisplayName(CString& value) const;
    bool GetRevisionID(CString& value) const;
    bool GetLibraryID(CString& value) const;
    bool GetDomain(CString& value) const;
    /// False when the attribute is missing.
    bool IsHidden() const;
    bool SpecialAuthoring() const;

    /// Replaces families by the internal names that the category itself references; false without
    /// an element. The list is in document order and may repeat a name.
    bool GetReferencedFamilies(std::set<CString>& families) const;
    bool GetReferencedFamilies(CStringArray& families) const;
    /// Makes parent the view of the parent node, whatever that is; whether it is a category.
    bool GetParent(CTocCategory& parent) const;
    /// Whether the view holds an element named "Category" (exactly).
    bool IsCategoryNode() const;
    /// The sub-categories directly below; false without an element.
    bool GetSubCategoryNodes(XMLNodeArray& categories) const;
};
