#include "cli/ManyFamilies.h"

#include "cli/CommandError.h"
#include "cli/Options.h"
#include "cli/Paths.h"
#include "encap/platform/Files.h"

#include <algorithm>
#include <new>
#include <thread>

namespace encap::cli {

void ManyFamiliesOptions::Declare(Options& options)
{
    constexpr int kMostJobs = 1024;
    options.Number(jobs, "-j,--jobs", "N", 1, kMostJobs,
                   "How many families to work on at a time (default: one a processor)");
    list.Declare(options);
    options.Text(language, "--language", "TAG",
                 "The language of texts, as the strings documents have it (default: the first of "
                 "each family)");
    host.Declare(options);
}

CString FailureOf(const ListedFamily& family, const std::function<void()>& work)
{
    try {
        work();
        return {};
    } catch (const CommandError& error) {
        return platform::Utf8ToWide(error.what());
    } catch (const std::bad_alloc&) {
        return family.path + L": there is not enough memory for it";
    }
}

void RequireOutput(const CString& file, const std::vector<CString>& paths,
                   const std::vector<ListedFamily>& families)
{
    const CString folder = FolderOf(file);
    if (!folder.empty() && !IsDirectory(folder)) {
        throw FileError(file, L"the file cannot be written: there is no folder " + folder);
    }
    if (!platform::FileExists(file)) {
        return;
    }
    for (const CString& path : paths) {
        RequireNotRead(file, path);
    }
    for (const ListedFamily& family : families) {
        RequireNotRead(file, family.path);
    }
}

std::size_t ManyFamiliesOptions::Threads() const
{
    return jobs > 0 ? static_cast<std::size_t>(jobs)
                    : std::max(1U, std::thread::hardware_concurrency());
}

} // namespace encap::cli
