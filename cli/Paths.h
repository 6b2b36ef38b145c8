#pragma once

#include "encap/foundation/Types.h"

#include <filesystem>
#include <string_view>

// Paths as documents name them: both "/" and "\" separate directories.
namespace encap::cli {

[[nodiscard]] std::filesystem::path NativePath(const CString& path);
/// Begins with a separator or a drive ("C:").
[[nodiscard]] bool IsAbsolutePath(std::wstring_view path);
/// The path up to and with its last separator; empty when it has none.
[[nodiscard]] CString FolderOf(const CString& path);
/// The last component of a path.
[[nodiscard]] CString FileNameOf(const CString& path);
/// Where the file is that a document refers to: a relative name stands beside the document, an
/// absolute one for itself or, when there is no such file, for the file of that name beside the
/// document.
[[nodiscard]] CString ResolveReference(const CString& document, CString name);
[[nodiscard]] bool IsDirectory(const CString& path);
/// A pipe, a device or the like: what is read of it is gone.
[[nodiscard]] bool IsStream(const CString& path);
/// Both are there and lead to one file.
[[nodiscard]] bool IsSameFile(const CString& left, const CString& right);
/// Throws UsageError when the output, which may be empty, is this file: results never take the
/// place of what they come from.
void RequireNotRead(const CString& output, const CString& input);

} // namespace encap::cli
