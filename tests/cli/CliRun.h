#pragma once

#include "cli/CommandLine.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"
#include "tests/platform/TemporaryFolder.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace encap::test {

/// What one run of the command line gave.
struct CliRun {
    explicit CliRun(const std::vector<std::string>& arguments)
    {
        std::ostringstream outStream;
        std::ostringstream errStream;
        std::unique_ptr<cli::Command> command;
        status = cli::RunCommand(arguments, outStream, errStream, command);
        out = outStream.str();
        err = errStream.str();
    }
    [[nodiscard]] std::ptrdiff_t Messages() const
    {
        return std::count(err.begin(), err.end(), '\n');
    }

    int status = -1;
    std::string out;
    std::string err;
};

/// Refused with one line, nothing printed.
inline void ExpectRefusal(const CliRun& run, int status, const std::string& part)
{
    EXPECT_EQ(status, run.status) << run.err;
    EXPECT_EQ("", run.out);
    EXPECT_EQ(1, run.Messages()) << run.err;
    EXPECT_NE(std::string::npos, run.err.find(part)) << run.err;
}

inline std::string TestData(const std::string& name)
{
    return std::string(ENCAP_TEST_DATA) + "/cli/" + name;
}

inline std::string Utf8(const CString& text)
{
    return platform::WideToUtf8(text);
}

inline std::string ReadFile(const std::string& path)
{
    std::string bytes;
    EXPECT_TRUE(platform::ReadWholeFile(platform::Utf8ToWide(path), bytes)) << path;
    return bytes;
}

/// Writes a file into a test's folder and returns its path.
inline std::string WriteFile(const TemporaryFolder& folder, const CString& name,
                             const std::string& bytes)
{
    EXPECT_TRUE(platform::ReplaceFileContent(folder.File(name), bytes));
    return Utf8(folder.File(name));
}

inline std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
        text.replace(at, from.size(), to);
        at += to.size();
    }
    return text;
}

/// Compares with a file of tests/data/cli. A result that differs is left beside the test program
/// as "NAME.actual": copied over the file it becomes what is expected.
inline void ExpectGolden(const std::string& name, const std::string& text)
{
    const std::string expected = ReadFile(TestData(name));
    EXPECT_EQ(expected, text) << name;
    if (expected != text) {
        const std::string file = name.substr(name.rfind('/') + 1) + ".actual";
        EXPECT_TRUE(platform::ReplaceFileContent(platform::Utf8ToWide(file), text));
    }
}

} // namespace encap::test
