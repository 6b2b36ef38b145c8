#include "tests/fuzz/posix/ApartRun.h"

#include <csignal>
#include <exception>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace encap::test {
namespace {

constexpr int kThrew = 3;

[[noreturn]] void Work(const std::function<void()>& work, unsigned seconds)
{
    alarm(seconds);
    try {
        work();
    } catch (const std::exception&) {
        _exit(kThrew);
    }
    _exit(0);
}

/// The exit status, and the peak of the memory that was there, in bytes.
int Measure(const std::function<void()>& work, unsigned seconds, uint64_t& peakBytes)
{
    const pid_t child = fork();
    if (child == 0) {
        Work(work, seconds);
    }
    int status = -1;
    struct rusage usage {};
    if (child < 0 || wait4(child, &status, 0, &usage) != child) {
        return -1;
    }
    peakBytes = static_cast<uint64_t>(usage.ru_maxrss) * 1024;
    return status;
}

} // namespace

ApartRun RunApart(const std::function<void()>& work, unsigned seconds)
{
    uint64_t emptyBytes = 0;
    Measure([] {}, seconds, emptyBytes);
    ApartRun run;
    const int status = Measure(work, seconds, run.peakBytes);
    run.peakBytes -= run.peakBytes > emptyBytes ? emptyBytes : run.peakBytes;
    run.succeeded = status == 0;
    if (WIFSIGNALED(status)) {
        run.ending = WTERMSIG(status) == SIGALRM
                         ? "took longer than " + std::to_string(seconds) + " s"
                         : "ended by signal " + std::to_string(WTERMSIG(status));
    } else {
        run.ending = run.succeeded ? "done" : "ended with an exception";
    }
    return run;
}

} // namespace encap::test
