#pragma once

#include "cli/Command.h"

namespace encap::cli {

/// encap row: adds, deletes, copies and moves the rows of a family.
[[nodiscard]] std::unique_ptr<Command> MakeRowCommand();

} // namespace encap::cli
