#pragma once

#include "encap/toc/Toc.h"

#include <set>
#include <vector>

namespace encap::cli {

/// A family as a category refers to it.
struct TocReference {
    CString internalName;
    XMLNode entry; ///< empty for a family that is not listed
};

/// A category as it is shown: with the families that it refers to, in document order, and the
/// categories in it.
struct TocBranch {
    XMLNode category;
    bool isHidden = false;
    std::vector<TocReference> families;
    std::vector<TocBranch> branches;
};

/// Adds to names every family in a branch, those of hidden categories in it only if they are shown.
void CollectFamilies(const TocBranch& branch, std::set<CString>& names);

struct TocTreeOptions {
    /// An internal name, or a display name without regard to case; empty: all categories.
    CString category;
    /// Takes hidden categories in. One that is asked for by name is taken in anyway, with those in
    /// it.
    bool withHidden = false;
};

/// The first level of categories, or those asked for, each inside the ones around it. Empty when
/// there is no such category.
[[nodiscard]] std::vector<TocBranch> ReadTocTree(const CToc& toc, const TocTreeOptions& options);

/// The families, in the order of their names, that no category at all refers to.
[[nodiscard]] std::vector<TocReference> FamiliesWithoutCategory(CToc& toc);

/// The families with that internal name, or with that display name or folder name without regard to
/// case, in the order of their internal names.
[[nodiscard]] std::vector<XMLNode> FindFamilies(CToc& toc, const CString& name);

/// The paths of display names, first level first, of the categories that refer to a family, in
/// document order. Hidden categories and those in them count only if asked for.
[[nodiscard]] std::vector<std::vector<CString>>
CategoryPathsOf(const CToc& toc, const CString& family, bool withHidden);

} // namespace encap::cli
