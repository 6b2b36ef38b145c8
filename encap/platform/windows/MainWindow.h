#pragma once

#include "encap/platform/windows/WindowsHeaders.h"

namespace encap::platform {

/// The application's main window: of the visible windows of this process that no other owns, the
/// topmost; null when there is none, as in a program without windows.
[[nodiscard]] HWND MainWindow();

} // namespace encap::platform
