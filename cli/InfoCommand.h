#pragma once

#include "cli/Command.h"

namespace encap::cli {

/// encap info: prints what a family is, without evaluating it: properties, languages, counts,
/// columns.
[[nodiscard]] std::unique_ptr<Command> MakeInfoCommand();

} // namespace encap::cli
