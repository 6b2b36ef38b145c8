#pragma once

#include "cli/Command.h"

namespace encap::cli {

/// encap check: runs every check over whole families and prints the findings as text, JSON or
/// SARIF.
[[nodiscard]] std::unique_ptr<Command> MakeCheckCommand();

} // namespace encap::cli
