#pragma once

#include "encap/foundation/Types.h"

#include <cstdint>
#include <string>
#include <string_view>

// Files by wide path. Both "/" and "\" separate directories in a path that is handed in; a path
// that cannot be expressed on the platform gives false. Nothing here throws but std::bad_alloc.
namespace encap::platform {

/// The separator that is added where one is missing: "\" on Windows, "/" elsewhere.
[[nodiscard]] wchar_t PathSeparator();
/// The directory with the platform's separator added unless it already ends in "/" or "\".
[[nodiscard]] CString WithTrailingSeparator(CString directory);
/// The position behind the last "/" or "\" of the path; 0 when it has none.
[[nodiscard]] std::size_t FileNamePosition(std::wstring_view path);

/// Something other than a directory is there.
[[nodiscard]] bool FileExists(const CString& path);
/// The whole file; false when it cannot be opened or read (a directory included), bytes untouched.
[[nodiscard]] bool ReadWholeFile(const CString& path, std::string& bytes);
/// How far the replacement of a file came.
enum class Replacement {
    Done,
    NotCreated,  ///< no file can be made there, or what is there must not be replaced
    NotBegun,    ///< nothing of the content could be written, as on a full disk
    NotFinished, ///< the content could not be written or flushed to its end, or not be put in place
};
/// Replaces the file as one step: a temporary file beside the target is written, flushed to the
/// disk and renamed over it. On failure the old file is whole and the temporary one is gone. The
/// new file has the permissions of the old one; a link stays, and the file it leads to is replaced.
/// Not created over a directory, a device, and a file that the user may not write.
[[nodiscard]] Replacement TryReplaceFile(const CString& path, std::string_view bytes);
/// Whether TryReplaceFile is done.
[[nodiscard]] bool ReplaceFileContent(const CString& path, std::string_view bytes);
/// True when no file is there afterwards.
bool DeleteFileIfPresent(const CString& path);
/// Makes the directory and its missing parents; true when it is there afterwards.
bool MakeDirectories(const CString& path);
/// The user's directory for temporary files, without a trailing separator unless it is the root;
/// read at each call.
[[nodiscard]] CString TemporaryDirectory();

/// For tests of lost writes: the n-th (1-based) coming write, flush or rename of
/// TryReplaceFile on this thread fails. A replacement takes these three steps in this order.
/// 0 turns it off.
void FailReplaceStep(int step);

} // namespace encap::platform
