#pragma once

#include "cli/Command.h"

namespace encap::cli {

// The actions of encap icon. They throw MessagesShown where the library has told what failed.
[[nodiscard]] std::unique_ptr<Command> MakeIconListAction();
[[nodiscard]] std::unique_ptr<Command> MakeIconExtractAction();
[[nodiscard]] std::unique_ptr<Command> MakeIconBuildAction();
[[nodiscard]] std::unique_ptr<Command> MakeIconConvertAction();
[[nodiscard]] std::unique_ptr<Command> MakeIconCopyAction();
[[nodiscard]] std::unique_ptr<Command> MakeIconPasteAction();
[[nodiscard]] std::unique_ptr<Command> MakeIconShowAction();

} // namespace encap::cli
