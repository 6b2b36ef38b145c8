#pragma once

#include <optional>

namespace encap::platform {

/// A terminal's window, in characters.
struct TerminalSize {
    int columns = 80;
    int rows = 24;
};
/// The window that the process's standard output is shown in, of the customary size where the
/// system does not know it; nothing when standard output does not go to a terminal.
[[nodiscard]] std::optional<TerminalSize> StandardOutputTerminal();

/// Whether what the process writes to its standard error goes to a terminal: somebody may be
/// reading along.
[[nodiscard]] bool StandardErrorIsTerminal();

} // namespace encap::platform
