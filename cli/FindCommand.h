#pragma once

#include "cli/Command.h"

namespace encap::cli {

/// encap find: finds members of many families by a condition over columns.
[[nodiscard]] std::unique_ptr<Command> MakeFindCommand();

} // namespace encap::cli
