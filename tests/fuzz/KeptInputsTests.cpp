#include "fuzz/Targets.h"
#include "tests/fuzz/posix/ApartRun.h"
#include "tests/support/Sanitized.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace encap::fuzz {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kMostSeconds = 10;
constexpr uint64_t kMostBytesPerInputByte = 50;
constexpr uint64_t kMostBytes = 100'000'000;

/// The seeds of a target, and the inputs that it once failed on.
std::vector<fs::path> InputsOf(const std::string& target)
{
    std::vector<fs::path> files;
    std::vector<fs::path> folders{fs::path(ENCAP_FUZZ_CORPUS) / target,
                                  fs::path(ENCAP_TEST_DATA) / "fuzz" / target};
    if (target == "images" || target == "checks") {
        folders.push_back(fs::path(ENCAP_TEST_DATA) / (target == "images" ? "icons" : target));
    }
    for (const fs::path& folder : folders) {
        if (fs::is_directory(folder)) {
            std::copy_if(fs::recursive_directory_iterator(folder), {}, std::back_inserter(files),
                         [](const fs::directory_entry& entry) { return entry.is_regular_file(); });
        }
    }
    std::ranges::sort(files);
    return files;
}

std::string ContentOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class KeptInputs : public testing::TestWithParam<Target> {};

} // namespace

// A sanitizer's own memory says nothing about the library's, and its leaks are found at the end of
// this process only.
TEST_P(KeptInputs, AreAnsweredInTimeAndInLittleMemory)
{
    const std::vector<fs::path> files = InputsOf(GetParam().name);
    EXPECT_GE(files.size(), 3U);
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.string());
        const std::string input = ContentOf(file);
        if (test::kSanitized) {
            GetParam().run(input);
            continue;
        }
        const auto run = test::RunApart([&] { GetParam().run(input); }, kMostSeconds);
        EXPECT_TRUE(run.succeeded) << run.ending;
        EXPECT_LE(run.peakBytes, kMostBytes + kMostBytesPerInputByte * input.size());
    }
}

INSTANTIATE_TEST_SUITE_P(Fuzz, KeptInputs, testing::ValuesIn(AllTargets()),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace encap::fuzz
