#include "encap/platform/ChildProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <memory>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

// POSIX declares it in no header, some systems do all the same.
extern char** environ; // NOLINT(readability-redundant-declaration)

namespace encap::platform {
namespace {

using Clock = std::chrono::steady_clock;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// The two ends of a pipe, closed with the object.
class Pipe {
public:
    Pipe()
    {
        if (pipe(m_ends.data()) != 0) {
            m_ends = {-1, -1};
            return;
        }
        for (const int end : m_ends) {
            fcntl(end, F_SETFD, FD_CLOEXEC);
        }
    }
    ~Pipe()
    {
        CloseEnd(0);
        CloseEnd(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    [[nodiscard]] bool IsOpen() const { return m_ends[0] >= 0; }
    [[nodiscard]] int ReadEnd() const { return m_ends[0]; }
    [[nodiscard]] int WriteEnd() const { return m_ends[1]; }
    void CloseWriteEnd() { CloseEnd(1); }

private:
    void CloseEnd(std::size_t index)
    {
        if (m_ends[index] >= 0) {
            close(std::exchange(m_ends[index], -1));
        }
    }

    std::array<int, 2> m_ends{-1, -1};
};

/// What the child begins with: its three streams, and the usual answer to a closed pipe, which this
/// process may have switched off.
class SpawnSettings {
public:
    SpawnSettings(int input, int output)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, input, STDIN_FILENO);
        if (output >= 0) {
            posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
        } else {
            posix_spawn_file_actions_addopen(&m_actions, STDOUT_FILENO, kNowhere, O_WRONLY, 0);
        }
        posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, kNowhere, O_WRONLY, 0);
        posix_spawnattr_init(&m_attributes);
        sigset_t defaults;
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGPIPE);
        posix_spawnattr_setsigdefault(&m_attributes, &defaults);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    /// The new process, or -1.
    [[nodiscard]] pid_t Spawn(const std::vector<std::string>& command) const
    {
        std::vector<char*> arguments;
        arguments.reserve(command.size() + 1);
        for (const std::string& argument : command) {
            arguments.push_back(const_cast<char*>(argument.c_str()));
        }
        arguments.push_back(nullptr);
        pid_t child = -1;
        const int error = posix_spawnp(&child, arguments.front(), &m_actions, &m_attributes,
                                       arguments.data(), environ);
        return error == 0 ? child : -1;
    }

private:
    static constexpr const char* kNowhere = "/dev/null";

    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
};

/// The input as an unnamed file at its beginning: unlike a pipe it needs nobody to fill it while
/// the child runs, and does no harm when the child does not read it.
File InputFile(std::string_view input)
{
    File file(std::tmpfile());
    if (file == nullptr) {
        return nullptr;
    }
    const bool isWritten =
        input.empty() || (std::fwrite(input.data(), 1, input.size(), file.get()) == input.size() &&
                          std::fflush(file.get()) == 0);
    if (!isWritten) {
        return nullptr;
    }
    std::rewind(file.get());
    fcntl(fileno(file.get()), F_SETFD, FD_CLOEXEC);
    return file;
}

int MillisecondsUntil(Clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::clamp<int64_t>(left.count(), 0, 60000));
}

/// Reads to the end of the output; Exited when that was reached.
ChildEnd Collect(int descriptor, const ChildRun& run, Clock::time_point deadline,
                 std::string& output)
{
    std::array<char, 65536> piece{};
    while (Clock::now() < deadline) {
        struct pollfd waiting {
            descriptor, POLLIN, 0
        };
        if (poll(&waiting, 1, MillisecondsUntil(deadline)) <= 0) {
            continue;
        }
        const ssize_t count = read(descriptor, piece.data(), piece.size());
        if (count == 0 || (count < 0 && errno != EINTR)) {
            return ChildEnd::Exited;
        }
        output.append(piece.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (output.size() > run.mostOutput) {
            return ChildEnd::TooMuchOutput;
        }
    }
    return ChildEnd::TimedOut;
}

enum class Waited { Ended, StillRuns, IsUnknown };

Waited WaitUntil(pid_t child, Clock::time_point deadline, int& status)
{
    constexpr std::chrono::milliseconds kPause{2};
    for (;;) {
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child) {
            return Waited::Ended;
        }
        // A process that ignores the end of its children is not told how they ended.
        if (ended < 0 && errno != EINTR) {
            return Waited::IsUnknown;
        }
        if (Clock::now() >= deadline) {
            return Waited::StillRuns;
        }
        std::this_thread::sleep_for(kPause);
    }
}

/// Waits for the child, or ends it when the result says already that it went wrong.
void Finish(pid_t child, Clock::time_point deadline, ChildResult& result)
{
    int status = 0;
    if (result.end == ChildEnd::Exited) {
        const Waited waited = WaitUntil(child, deadline, status);
        if (waited != Waited::StillRuns) {
            const bool hasStatus = waited == Waited::Ended && WIFEXITED(status);
            result.end = hasStatus ? ChildEnd::Exited : ChildEnd::Killed;
            result.exitStatus = hasStatus ? WEXITSTATUS(status) : -1;
            return;
        }
        result.end = ChildEnd::TimedOut;
    }
    kill(child, SIGKILL);
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {}
}

} // namespace

ChildResult RunChild(const ChildRun& run)
{
    const Clock::time_point deadline = Clock::now() + run.timeout;
    ChildResult result;
    const File input = InputFile(run.input);
    Pipe pipe;
    if (input == nullptr || !pipe.IsOpen()) {
        return result;
    }
    const bool collects = run.mostOutput > 0;
    const SpawnSettings settings(fileno(input.get()), collects ? pipe.WriteEnd() : -1);
    const pid_t child = settings.Spawn(run.command);
    if (child < 0) {
        return result;
    }
    pipe.CloseWriteEnd();
    result.end =
        collects ? Collect(pipe.ReadEnd(), run, deadline, result.output) : ChildEnd::Exited;
    Finish(child, deadline, result);
    return result;
}

} // namespace encap::platform
