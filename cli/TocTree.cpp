#include "cli/TocTree.h"

#include "cli/TocFile.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/toc/TocCategory.h"
#include "encap/toc/TocFamily.h"
#include "encap/xml/XMLNodeArray.h"

#include <algorithm>
#include <map>
#include <utility>

namespace encap::cli {
namespace {

/// The category without those in it.
TocBranch BranchOf(const CToc& toc, const XMLNode& node)
{
    TocBranch branch{node, CTocCategory(node).IsHidden(), {}, {}};
    std::vector<CString> names;
    CTocCategory(node).GetReferencedFamilies(names);
    for (CString& name : names) {
        TocReference reference{std::move(name), {}};
        toc.GetFamilyInfo(reference.internalName.c_str(), reference.entry);
        branch.families.push_back(std::move(reference));
    }
    return branch;
}

TocBranch ReadBranch(const CToc& toc, const XMLNode& node, bool withHidden)
{
    TocBranch branch = BranchOf(toc, node);
    XMLNodeArray nodes;
    CTocCategory(node).GetSubCategoryNodes(nodes);
    for (const XMLNode& inner : nodes) {
        if (withHidden || !CTocCategory(inner).IsHidden()) {
            branch.branches.push_back(ReadBranch(toc, inner, withHidden));
        }
    }
    return branch;
}

/// The categories around a category, the first level first.
std::vector<XMLNode> AroundOf(const XMLNode& category)
{
    std::vector<XMLNode> around;
    CTocCategory current(category);
    for (CTocCategory parent; current.GetParent(parent); current = parent) {
        around.insert(around.begin(), parent);
    }
    return around;
}

bool IsAskedFor(const XMLNode& category, const CString& name)
{
    CString title;
    category.GetProperty(L"DisplayName", title);
    return InternalNameOf(category) == name || EqualNoCase(title, name);
}

/// A branch inside the ones around it, which show only the way to it.
TocBranch Wrapped(const CToc& toc, const XMLNode& category, bool withHidden)
{
    const bool isHidden = CTocCategory(category).IsHidden();
    TocBranch branch = ReadBranch(toc, category, withHidden || isHidden);
    std::vector<XMLNode> around = AroundOf(category);
    for (; !around.empty(); around.pop_back()) {
        TocBranch outer{around.back(), CTocCategory(around.back()).IsHidden(), {}, {}};
        outer.branches.push_back(std::move(branch));
        branch = std::move(outer);
    }
    return branch;
}

bool IsWithinHidden(const XMLNode& category)
{
    const std::vector<XMLNode> around = AroundOf(category);
    return CTocCategory(category).IsHidden() ||
           std::any_of(around.begin(), around.end(),
                       [](const XMLNode& outer) { return CTocCategory(outer).IsHidden(); });
}

XMLNodeArray AllCategories(const CToc& toc)
{
    XMLNodeArray categories;
    toc.GetToc().GetRootNode().SelectChildNodes(L"//Category", categories);
    return categories;
}

} // namespace

void CollectFamilies(const TocBranch& branch, std::set<CString>& names)
{
    for (const TocReference& family : branch.families) {
        names.insert(family.internalName);
    }
    for (const TocBranch& inner : branch.branches) {
        CollectFamilies(inner, names);
    }
}

std::vector<TocBranch> ReadTocTree(const CToc& toc, const TocTreeOptions& options)
{
    std::vector<TocBranch> branches;
    if (!options.category.empty()) {
        for (const XMLNode& category : AllCategories(toc)) {
            if (IsAskedFor(category, options.category)) {
                branches.push_back(Wrapped(toc, category, options.withHidden));
            }
        }
        return branches;
    }
    XMLNodeArray first;
    toc.GetFirstLevelCategories(first);
    for (const XMLNode& category : first) {
        if (options.withHidden || !CTocCategory(category).IsHidden()) {
            branches.push_back(ReadBranch(toc, category, options.withHidden));
        }
    }
    return branches;
}

std::vector<TocReference> FamiliesWithoutCategory(CToc& toc)
{
    std::map<CString, CString> categories;
    toc.GetFam2CatMap(categories, false);
    std::vector<TocReference> families;
    toc.ResetIter();
    for (XMLNode entry; toc.NextNode(entry);) {
        CString name = InternalNameOf(entry);
        if (categories.count(name) == 0) {
            families.push_back({std::move(name), entry});
        }
    }
    return families;
}

std::vector<XMLNode> FindFamilies(CToc& toc, const CString& name)
{
    XMLNode found;
    if (toc.GetFamilyInfo(name.c_str(), found)) {
        return {found};
    }
    std::vector<XMLNode> families;
    toc.ResetIter();
    for (XMLNode entry; toc.NextNode(entry);) {
        CString title;
        CString folder;
        CTocFamily(entry).GetFamilyProperty(FamilyPropDisplayName, title);
        CTocFamily(entry).GetFamilyProperty(FamilyPropFolderName, folder);
        if (EqualNoCase(title, name) || EqualNoCase(folder, name)) {
            families.push_back(entry);
        }
    }
    return families;
}

std::vector<std::vector<CString>> CategoryPathsOf(const CToc& toc, const CString& family,
                                                  bool withHidden)
{
    std::vector<std::vector<CString>> paths;
    for (const XMLNode& category : AllCategories(toc)) {
        std::set<CString> families;
        CTocCategory(category).GetReferencedFamilies(families);
        if (families.count(family) == 0 || (!withHidden && IsWithinHidden(category))) {
            continue;
        }
        std::vector<CString> path;
        for (const XMLNode& outer : AroundOf(category)) {
            path.push_back(TitleOf(outer));
        }
        path.push_back(TitleOf(category));
        paths.push_back(std::move(path));
    }
    return paths;
}

} // namespace encap::cli
