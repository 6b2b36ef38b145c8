#pragma once

#include "cli/Command.h"

namespace encap::cli {

/// encap toc: prints the categories of a table of contents with their families.
[[nodiscard]] std::unique_ptr<Command> MakeTocCommand();

} // namespace encap::cli
