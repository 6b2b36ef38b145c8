#pragma once

#include "cli/Command.h"

namespace encap::cli {

/// encap info: prints what a family is, without evaluating it: properties, languages, counts,
/// columns, on request what the columns and constants are mapped to.
[[nodiscard]] std::unique_ptr<Command> MakeInfoCommand();

} // namespace encap::cli
