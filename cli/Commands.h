#pragma once

#include "cli/Command.h"

#include <span>

namespace encap::cli {

/// Every subcommand, in the order in which the help lists them.
[[nodiscard]] std::span<const CommandEntry> Commands();

} // namespace encap::cli
