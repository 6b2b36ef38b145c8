#pragma once

#include "cli/Console.h"
#include "cli/FamilyHost.h"
#include "cli/FamilyList.h"
#include "cli/OrderedWork.h"
#include "cli/Progress.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace encap::cli {

/// The arguments of every command that works on many families at a time.
struct ManyFamiliesOptions {
    /// --jobs, --library, --shard, --language and the host's
    void Declare(Options& options);
    /// Those of --jobs, by default as many as the machine has processors for this process.
    [[nodiscard]] std::size_t Threads() const;

    int jobs = 0; ///< 0: not given
    FamilyListOptions list;
    std::optional<CString> language;
    HostOptions host;
};

/// Why the work on a family ends before its end, a sentence; empty when it does not. The other
/// families go on whatever it is, a lack of memory for this one included.
[[nodiscard]] CString FailureOf(const ListedFamily& family, const std::function<void()>& work);

/// Throws, better at once than after hours, FileError for a file that could not be written because
/// its folder is not there, UsageError for one that is read. An empty path is fine.
void RequireOutput(const CString& file, const std::vector<CString>& paths,
                   const std::vector<ListedFamily>& families);

/// Works on every family of a list, several at a time, each thread with a host of its own, and
/// hands the results to take on this thread, in the order of the list. Shows progress; the time is
/// in seconds. Throws what work or take throws.
template <class Result>
double ForEachFamily(const std::vector<ListedFamily>& families, const ManyFamiliesOptions& options,
                     Console& console,
                     const std::function<Result(const ListedFamily&, FamilyHost&)>& work,
                     const std::function<void(Result)>& take)
{
    constexpr std::chrono::milliseconds kPatience{100};
    using Work = OrderedWork<Result>;
    Progress progress(console, families.size(), "families");
    Work ordered(families.size(), options.Threads(), [&]() -> typename Work::Piece {
        const auto host = std::make_shared<FamilyHost>(options.host);
        return [&families, &work, host](std::size_t i) { return work(families[i], *host); };
    });
    std::size_t done = 0;
    Result result;
    for (;;) {
        const typename Work::State state = ordered.Next(result, kPatience);
        if (state == Work::State::Done) {
            return progress.Seconds();
        }
        if (state == Work::State::Ready) {
            ++done;
            take(std::move(result));
        }
        progress.Show(done);
    }
}

} // namespace encap::cli
