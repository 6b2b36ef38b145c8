#pragma once

#include "encap/foundation/Types.h"

#include <string_view>
#include <vector>

// Files that a folder or a pattern stands for. Links to folders are not followed, pipes and devices
// are left out; what comes back is in no order.
namespace encap::cli {

/// Has a character that a pattern gives a meaning to.
[[nodiscard]] bool IsPattern(std::wstring_view path);
/// Whether a name fits a pattern: "*" stands for any characters, "?" for one, all others for
/// themselves.
[[nodiscard]] bool MatchesPattern(std::wstring_view name, std::wstring_view pattern);
/// The files and folders whose paths fit a pattern, component by component; the component "**"
/// stands for any number of folders. Names that begin with "." fit only what does so too.
[[nodiscard]] std::vector<CString> PathsMatching(const CString& pattern);
/// The files below a folder whose names end in ".xml", in any case. Throws FileError for a folder
/// that cannot be read.
[[nodiscard]] std::vector<CString> XmlFilesBelow(const CString& folder);
/// A path without "." and without ".." behind a name, with one kind of separator: equal for equal
/// places, as far as names tell.
[[nodiscard]] CString NormalPath(const CString& path);

} // namespace encap::cli
