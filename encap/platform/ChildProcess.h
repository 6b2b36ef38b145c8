#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace encap::platform {

/// A run of another program. No shell takes part: arguments arrive as they are.
struct ChildRun {
    /// The program, which is looked for as the system does it (PATH), and its arguments, in UTF-8.
    /// REQUIRES: not empty, without zeros.
    std::vector<std::string> command;
    /// What its standard input gives.
    std::string_view input;
    /// More output than this ends the program. 0: its output is not read, and what it leaves
    /// running in the background may keep on writing.
    std::size_t mostOutput = 0;
    /// A program that takes longer is ended.
    std::chrono::milliseconds timeout{10000};
};

/// How the run ended.
enum class ChildEnd {
    Exited,     ///< by itself; its exit status is there
    NotStarted, ///< there is no such program, or it may not be run
    Killed,     ///< by a signal of another
    TimedOut,
    TooMuchOutput,
};

struct ChildResult {
    ChildEnd end = ChildEnd::NotStarted;
    int exitStatus = -1;
    std::string output;
};

/// Runs the program and waits for its end, not for that of programs that it left behind. Its
/// standard error goes nowhere. It has the environment of this process.
[[nodiscard]] ChildResult RunChild(const ChildRun& run);

} // namespace encap::platform
