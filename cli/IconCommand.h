#pragma once

#include "cli/Command.h"

namespace encap::cli {

/// encap icon: lists, takes out, puts together, converts, copies, pastes and shows the images of
/// icons. Each action is a command of its own in cli/icon/.
[[nodiscard]] std::unique_ptr<Command> MakeIconCommand();

} // namespace encap::cli
