#pragma once

#include "encap/toc/Toc.h"

#include <vector>

namespace encap::cli {

/// Throws FileError for a file that is missing, not readable, or no table of contents.
[[nodiscard]] CToc ReadToc(const CString& path);

/// What does not fit together in a table of contents, a sentence each: internal names that are used
/// twice or are missing, and references to families that are not listed.
[[nodiscard]] std::vector<CString> ProblemsOf(const CToc& toc);

// An entry's texts; empty where it does not hold them.
[[nodiscard]] CString InternalNameOf(const XMLNode& entry);
/// The display name, else the internal name.
[[nodiscard]] CString TitleOf(const XMLNode& entry);

} // namespace encap::cli
