#include "encap/platform/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace encap::platform {

std::optional<TerminalSize> StandardOutputTerminal()
{
    if (isatty(STDOUT_FILENO) != 1) {
        return std::nullopt;
    }
    TerminalSize size;
    struct winsize window {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col > 0 && window.ws_row > 0) {
        size.columns = window.ws_col;
        size.rows = window.ws_row;
    }
    return size;
}

bool StandardErrorIsTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

} // namespace encap::platform
