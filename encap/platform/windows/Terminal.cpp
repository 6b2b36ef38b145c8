#include "encap/platform/Terminal.h"

#include "encap/platform/windows/WindowsHeaders.h"

namespace encap::platform {

std::optional<TerminalSize> StandardOutputTerminal()
{
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(output, &mode) == 0) {
        return std::nullopt;
    }
    TerminalSize size;
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(output, &info) != 0) {
        // The window shows a part of what is kept.
        size.columns = info.srWindow.Right - info.srWindow.Left + 1;
        size.rows = info.srWindow.Bottom - info.srWindow.Top + 1;
    }
    return size;
}

bool StandardErrorIsTerminal()
{
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

} // namespace encap::platform
