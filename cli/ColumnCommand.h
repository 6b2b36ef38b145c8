#pragma once

#include "cli/Command.h"

namespace encap::cli {

/// encap column: adds, deletes, copies, moves and renames the columns of a family.
[[nodiscard]] std::unique_ptr<Command> MakeColumnCommand();

} // namespace encap::cli
