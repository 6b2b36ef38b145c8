#pragma once

#include "cli/Command.h"

namespace encap::cli {

/// encap batch: evaluates or checks many families and prints a line of JSON for each.
[[nodiscard]] std::unique_ptr<Command> MakeBatchCommand();

} // namespace encap::cli
