#include "encap/platform/windows/MainWindow.h"

namespace encap::platform {
namespace {

/// Ends the enumeration at the first window that serves, and leaves it in the HWND at `found`.
BOOL CALLBACK TakeMainWindow(HWND window, LPARAM found)
{
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != GetCurrentProcessId() || GetWindow(window, GW_OWNER) != nullptr ||
        IsWindowVisible(window) == 0) {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

} // namespace

HWND MainWindow()
{
    HWND window = nullptr;
    EnumWindows(TakeMainWindow, reinterpret_cast<LPARAM>(&window));
    return window;
}

} // namespace encap::platform
