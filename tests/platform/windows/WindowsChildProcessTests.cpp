#include "encap/platform/ChildProcess.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/StandardStreams.h"
#include "encap/platform/windows/WindowsHeaders.h"

#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

namespace encap::platform {
namespace {

using namespace std::chrono_literals;

/// Runs this program as a child: one of the tests below that no run takes by itself.
ChildResult Self(const std::string& part, std::string_view input, std::size_t mostOutput,
                 std::chrono::milliseconds timeout, const std::string& argument = {})
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return RunChild({{WideToUtf8(path), "--gtest_also_run_disabled_tests",
                      "--gtest_filter=ChildPart.DISABLED_" + part, argument},
                     input,
                     mostOutput,
                     timeout});
}

TEST(ChildPart, DISABLED_Copies)
{
    const StandardStreamsScope binary;
    for (int c = std::getchar(); c != EOF; c = std::getchar()) {
        std::putchar(c);
    }
    std::fputs(ProgramArguments(0, nullptr).back().c_str(), stdout);
    std::fflush(stdout);
    std::_Exit(3);
}

TEST(ChildPart, DISABLED_Sleeps)
{
    Sleep(60000);
}

TEST(ChildPart, DISABLED_Writes)
{
    for (;;) {
        std::puts("more");
    }
}

TEST(WindowsChildProcess, TakesArgumentsAndInputAsTheyAreAndGivesOutputAndStatus)
{
    const std::string input(300000, 'x');
    const std::string argument = "a \"b\\\" \\\\ %PATH% \xC3\xA4\xF0\x9F\x94\xA9\\";
    const ChildResult copied = Self("Copies", input, 1 << 20, 60s, argument);
    EXPECT_EQ(copied.end, ChildEnd::Exited);
    EXPECT_EQ(copied.exitStatus, 3);
    EXPECT_TRUE(copied.output.ends_with(input + argument)) << copied.output.substr(
        copied.output.size() - std::min<std::size_t>(copied.output.size(), 100));
    EXPECT_EQ(Self("Copies", "unread", 0, 60s).output, "");
}

TEST(WindowsChildProcess, EndsWhatDoesNotEndOrWritesTooMuch)
{
    EXPECT_EQ(Self("Sleeps", {}, 1000, 2s).end, ChildEnd::TimedOut);
    EXPECT_EQ(Self("Sleeps", {}, 0, 100ms).end, ChildEnd::TimedOut);
    EXPECT_EQ(Self("Writes", {}, 100000, 60s).end, ChildEnd::TooMuchOutput);
    EXPECT_EQ(RunChild({{"there-is-no-such-program"}, {}, 0, 60s}).end, ChildEnd::NotStarted);
}

} // namespace
} // namespace encap::platform
