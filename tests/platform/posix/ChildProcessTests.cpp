#include "encap/platform/ChildProcess.h"

#include <gtest/gtest.h>

namespace encap::platform {
namespace {

using namespace std::chrono_literals;

ChildResult Shell(const std::string& script, std::string_view input = {},
                  std::chrono::milliseconds timeout = 60s)
{
    return RunChild({{"sh", "-c", script}, input, 1 << 20, timeout});
}

TEST(ChildProcess, TakesArgumentsAndInputAsTheyAreAndGivesOutputAndStatus)
{
    const std::string input = std::string("a\0\r\n", 4) + std::string(300000, 'x');
    const ChildResult copied = Shell("cat; exit 3", input);
    EXPECT_EQ(copied.end, ChildEnd::Exited);
    EXPECT_EQ(copied.exitStatus, 3);
    EXPECT_EQ(copied.output, input);
    const ChildResult echoed = RunChild({{"printf", "%s|", "a b", "$HOME;'\"*", ""}, {}, 100, 60s});
    EXPECT_EQ(echoed.output, "a b|$HOME;'\"*||");
    // Input that nobody reads, and a child that writes to a closed pipe, do no harm.
    EXPECT_EQ(Shell("exec true", input).exitStatus, 0);
    EXPECT_EQ(Shell("cat <&- 2>/dev/null; echo on standard error >&2").output, "");
}

TEST(ChildProcess, EndsWhatDoesNotEndOrWritesTooMuch)
{
    EXPECT_EQ(Shell("exec sleep 600", {}, 50ms).end, ChildEnd::TimedOut);
    EXPECT_EQ(Shell("exec >&-; exec sleep 600", {}, 50ms).end, ChildEnd::TimedOut);
    EXPECT_EQ(RunChild({{"cat", "/dev/zero"}, {}, 1000, 60s}).end, ChildEnd::TooMuchOutput);
    EXPECT_EQ(RunChild({{"sh", "-c", "kill -9 $$"}, {}, 0, 60s}).end, ChildEnd::Killed);
    EXPECT_EQ(RunChild({{"there-is-no-such-program"}, {}, 0, 60s}).end, ChildEnd::NotStarted);
}

TEST(ChildProcess, DoesNotWaitForWhatAChildLeavesBehind)
{
    // What stays holds all of the child's streams; its output is not read.
    const ChildResult result = RunChild({{"sh", "-c", "sleep 20 & exit 4"}, "x", 0, 10s});
    EXPECT_EQ(result.end, ChildEnd::Exited);
    EXPECT_EQ(result.exitStatus, 4);
}

} // namespace
} // namespace encap::platform
