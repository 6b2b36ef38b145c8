#include "encap/toc/TocCategory.h"

#include "encap/family/Vocabulary.h"
#include "encap/toc/TocNames.h"
#include "encap/xml/NodeAccess.h"

using namespace encap;

namespace {

/// Hands the internal name of every family reference to add; false without an element.
template <class Add>
bool ForEachReference(const XMLNode& category, Add add)
{
    if (!category.IsNode()) {
        return false;
    }
    CString name;
    for (IXMLDOMNode* child = FirstChildElement(Raw(category), toc::kFamilyReference.utf8);
         child != nullptr; child = NextElement(child, toc::kFamilyReference.utf8)) {
        if (Wrap(child).GetProperty(vocabulary::kInternalName, name)) {
            add(name);
        }
    }
    return true;
}

} // namespace

CTocCategory::CTocCategory() = default;
CTocCategory::CTocCategory(const XMLNode& node) : XMLNode(node) {}
CTocCategory::CTocCategory(const CTocCategory& other) = default;
CTocCategory& CTocCategory::operator=(const CTocCategory& other) = default;
CTocCategory::~CTocCategory() = default;

bool CTocCategory::GetInternalName(CString& value) const
{
    return GetProperty(vocabulary::kInternalName, value);
}

bool CTocCategory::GetDisplayName(CString& value) const
{
    return GetProperty(vocabulary::kDisplayName, value);
}

bool CTocCategory::GetRevisionID(CString& value) const
{
    return GetProperty(vocabulary::kRevisionId, value);
}

bool CTocCategory::GetLibraryID(CString& value) const
{
    return GetProperty(vocabulary::kLibrary, value);
}

bool CTocCategory::GetDomain(CString& value) const
{
    return GetProperty(vocabulary::kDomain, value);
}

bool CTocCategory::IsHidden() const
{
    bool hidden = false;
    GetProperty(vocabulary::kHidden, hidden);
    return hidden;
}

bool CTocCategory::SpecialAuthoring() const
{
    bool special = false;
    GetProperty(vocabulary::kSpecialAuthoring, special);
    return special;
}

bool CTocCategory::GetReferencedFamilies(std::set<CString>& families) const
{
    families.clear();
    return ForEachReference(*this, [&families](const CString& name) { families.insert(name); });
}

bool CTocCategory::GetReferencedFamilies(CStringArray& families) const
{
    families.clear();
    return ForEachReference(*this, [&families](const CString& name) { families.push_back(name); });
}

bool CTocCategory::GetParent(CTocCategory& parent) const
{
    parent = CTocCategory(GetParentNode());
    return parent.IsCategoryNode();
}

bool CTocCategory::IsCategoryNode() const
{
    return NameEquals(Raw(*this), vocabulary::kCategory.utf8);
}

bool CTocCategory::GetSubCategoryNodes(XMLNodeArray& categories) const
{
    categories.clear();
    GetChildNodes(vocabulary::kCategory, categories);
    return IsNode();
}
