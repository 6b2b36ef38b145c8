#pragma once

#include "encap/foundation/Types.h"

#include <vector>

namespace encap::cli {

class Options;

/// A family that a command over many families works on.
struct ListedFamily {
    CString path;         ///< empty for a family of a table of contents that is not found
    CString problem;      ///< why there is none
    CString internalName; ///< with the problem: of the family that was looked for
};

/// The arguments that say which families a command over many families works on.
struct FamilyListOptions {
    /// --library and --shard. The paths themselves are arguments of the command.
    void Declare(Options& options);

    CString library;
    CString shard;
};

/// The families that paths stand for, each once, in the order of their paths, as far as the shard
/// has them: positions I, I+N, I+2N and so on of the whole list. A path is
/// - a family document;
/// - a folder: every family document below it;
/// - a table of contents: each of its families, found below its folder (or the library) by the
///   internal name; those that are not found stand at the end of the list;
/// - a pattern for these; one that fits nothing stands at the end of the list.
/// Strings documents are left out. A path that leads to nothing stands in the list for itself.
/// Throws UsageError for the shard, FileError for a folder or a table of contents that cannot be
/// read and when there is no family at all.
[[nodiscard]] std::vector<ListedFamily> ListFamilies(const std::vector<CString>& paths,
                                                     const FamilyListOptions& options);

} // namespace encap::cli
