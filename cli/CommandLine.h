#pragma once

#include "cli/Command.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace encap::cli {

/// Runs the command line with its arguments (UTF-8, without the program's name) and returns the
/// exit status: 0 done and nothing wrong, 1 done and something found wrong, 2 bad usage, 3 a file
/// or the output cannot be read, parsed or written. Results go to out; messages go to err, one a
/// line. Nothing is thrown. The command, which may still hold a large family, is handed out: a
/// program that ends now need not take it apart.
[[nodiscard]] int RunCommand(const std::vector<std::string>& arguments, std::ostream& out,
                             std::ostream& err, std::unique_ptr<Command>& command) noexcept;

} // namespace encap::cli
