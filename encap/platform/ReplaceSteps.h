#pragma once

#include "encap/foundation/Types.h"

// What the replacement of a file has in common on all platforms.
namespace encap::platform {

/// How many names for the temporary file are tried.
inline constexpr int kMostTemporaryNames = 16;

/// A new name for the temporary file of a replacement.
[[nodiscard]] CString NewTemporaryName(int attempt);
/// Whether the step that is about to be taken is the one that FailReplaceStep asks for.
[[nodiscard]] bool StepIsMadeToFail();

} // namespace encap::platform
