#pragma once

#include "cli/Command.h"

namespace encap::cli {

/// encap set: writes cells, column formulas and properties of a family.
[[nodiscard]] std::unique_ptr<Command> MakeSetCommand();

} // namespace encap::cli
