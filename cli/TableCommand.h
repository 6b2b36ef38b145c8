#pragma once

#include "cli/Command.h"

namespace encap::cli {

/// encap table: evaluates every cell of a family and prints the table as text, CSV, JSON or XML.
[[nodiscard]] std::unique_ptr<Command> MakeTableCommand();

} // namespace encap::cli
