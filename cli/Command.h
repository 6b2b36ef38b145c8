#pragma once

#include "cli/CommandError.h"

#include <memory>

namespace encap::cli {

class Console;
class Options;

/// One subcommand: its arguments and what it does. Made for one run. It stands in a file of its own
/// and becomes known by its line in Commands.cpp.
class Command {
public:
    Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    /// Tells the options which fields of the command the arguments go to.
    virtual void Declare(Options& options) = 0;
    /// Does the work once the fields are filled. Throws CommandError.
    virtual ExitStatus Run(Console& console) = 0;
};

/// A line of the table of commands.
struct CommandEntry {
    const char* name;
    const char* summary; ///< one sentence, the first of the command's help
    std::unique_ptr<Command> (*make)();
};

} // namespace encap::cli
