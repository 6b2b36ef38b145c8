#pragma once

#include "cli/TocTree.h"

namespace encap::cli {

class Results;

/// What is shown of a table of contents.
struct ShownToc {
    std::vector<TocBranch> branches;
    /// Behind them; not shown when categories were asked for by name.
    std::vector<TocReference> withoutCategory;
};

/// A family's entry with the paths of its categories.
struct ShownFamily {
    XMLNode entry;
    std::vector<std::vector<CString>> categories;
};

/// A line for each category and family, indented.
void PrintTocText(const ShownToc& toc, Results& results);
/// One object: the categories, nested.
void PrintTocJson(const CString& path, const ShownToc& toc, Results& results);
/// Each property on a line, an empty line between families.
void PrintFamiliesText(const std::vector<ShownFamily>& families, Results& results);
void PrintFamiliesJson(const CString& path, const std::vector<ShownFamily>& families,
                       Results& results);

} // namespace encap::cli
