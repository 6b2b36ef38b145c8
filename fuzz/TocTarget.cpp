#include "encap/toc/Toc.h"

#include "encap/toc/TocCategory.h"
#include "encap/toc/TocFamily.h"
#include "fuzz/Support.h"
#include "fuzz/Targets.h"

#include <map>
#include <set>

namespace encap::fuzz {
namespace {

void ReadFamily(const CToc& toc, const XMLNode& node)
{
    const CTocFamily family(node);
    CString text;
    family.GetInternalName(text);
    XMLNode found;
    Require(toc.GetFamilyInfo(text.c_str(), found) && found.IsSameNode(node),
            "a listed family is found by its name");
    for (int32_t type = 0; type < 17; ++type) {
        family.GetFamilyProperty(static_cast<FamilyPropType>(type), text);
    }
}

void ReadCategory(const CToc& toc, const XMLNode& node)
{
    const CTocCategory category(node);
    CString name;
    category.GetInternalName(name);
    XMLNodeArray path;
    Require(toc.GetCategoryPath(name.c_str(), path) && !path.empty(),
            "a listed category has a path");
    CTocCategory parent;
    category.GetParent(parent);
    parent.IsCategoryNode();
    XMLNodeArray below;
    category.GetSubCategoryNodes(below);
    std::set<CString> families;
    CStringArray list;
    category.GetReferencedFamilies(families);
    category.GetReferencedFamilies(list);
    Require(families.size() <= list.size(), "a set of families is no longer than their list");
    category.IsHidden();
    category.SpecialAuthoring();
}

} // namespace

void RunToc(std::string_view input)
{
    const XMLParser document = ParseBytes(input);
    CToc toc;
    toc.SetToc(document);
    int categories = 0;
    XMLNode node;
    toc.ResetIter();
    while (toc.NextNode(node)) {
        ReadFamily(toc, node);
    }
    toc.ResetCatIter();
    CToc copy;
    while (toc.NextCategory(node)) {
        copy = toc;
        ++categories;
        if (categories < 300) {
            ReadCategory(toc, node);
        }
    }
    Require(categories == toc.GetCategoryCount(), "an iteration meets every category once");
    Require(!copy.NextCategory(node), "a copy goes on where the other is");
    std::map<CString, CString> all;
    std::map<CString, CString> visible;
    XMLNodeArray first;
    toc.GetFam2CatMap(all, false);
    toc.GetFam2CatMap(visible, true);
    Require(visible.size() <= all.size(), "hidden categories add no family");
    toc.GetFirstLevelCategories(first);
}

} // namespace encap::fuzz
