#pragma once

#include "encap/foundation/Types.h"

#include <string_view>

namespace encap::platform {

/// The path as the system's calls take it: "\" for "/", and a path that is too long for them in its
/// absolute form behind "\\?\", which has no limit below 32,767 units. False for an empty path, one
/// with a zero or a lone surrogate in it, and one that the system cannot make absolute.
[[nodiscard]] bool NativePath(std::wstring_view path, CString& native);

/// The file that a loaded module, an HMODULE, came from; null: that of the program.
[[nodiscard]] CString FileOfModule(void* module);

} // namespace encap::platform
