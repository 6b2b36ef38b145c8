#include "encap/xml/XMLParser.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/platform/posix/EnvironmentVariable.h"
#include "tests/support/Sanitized.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <random>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

/// The saver program, from the start until it is killed.
class Saver {
public:
    Saver(const std::string& file, long version)
    {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe(ends), 0);
        m_output = ends[0];
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        posix_spawn_file_actions_addclose(&actions, ends[0]);
        std::string program = ENCAP_SAVER;
        std::string path = file;
        std::string first = std::to_string(version);
        char* const arguments[] = {program.data(), path.data(), first.data(), nullptr};
        EXPECT_EQ(posix_spawn(&m_process, program.c_str(), &actions, nullptr, arguments, environ),
                  0);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
    }
    Saver(const Saver&) = delete;
    Saver& operator=(const Saver&) = delete;
    ~Saver() { close(m_output); }

    /// The next version that it says it has saved; -1 when it has ended.
    long NextVersion() const
    {
        char text[9] = {};
        for (std::size_t used = 0; used < 8;) {
            const ssize_t count = read(m_output, text + used, 8 - used);
            if (count <= 0) {
                return -1;
            }
            used += static_cast<std::size_t>(count);
        }
        return std::atol(text);
    }
    /// Ends it without a chance to tidy up; the last version that it said it had saved.
    long Kill(long saved) const
    {
        EXPECT_EQ(kill(m_process, SIGKILL), 0);
        int status = 0;
        EXPECT_EQ(waitpid(m_process, &status, 0), m_process);
        EXPECT_TRUE(WIFSIGNALED(status)) << "it ended by itself: " << status;
        for (long next = saved; next >= 0; next = NextVersion()) {
            saved = next;
        }
        return saved;
    }

private:
    pid_t m_process = -1;
    int m_output = -1;
};

/// The version that every element of the file holds; -1 when they differ or it does not parse.
long VersionIn(const CString& path)
{
    XMLParser document;
    XMLNodeArray nodes;
    if (!document.LoadXmlDocument(path.c_str()) || !document.GetNodesByTag(L"Version", nodes) ||
        nodes.size() != 2000) {
        return -1;
    }
    int version = -1;
    nodes.begin()->GetProperty(L"Number", version);
    const CString text = std::to_wstring(version);
    const bool isWhole = std::ranges::all_of(nodes, [&](const XMLNode& node) {
        CString here;
        int number = -1;
        return node.GetNodeText(here) && here == text && node.GetProperty(L"Number", number) &&
               number == version;
    });
    return isWhole ? version : -1;
}

} // namespace

TEST(KilledSaving, LeavesOneOfTheTwoVersionsWhole)
{
    constexpr int kRounds = encap::test::kSanitized ? 60 : 200;
    // A killed process loses nothing that the system has, so memory is as good as a disk here.
    const bool hasMemoryFiles = access("/dev/shm", W_OK) == 0;
    const EnvironmentVariable place("TMPDIR", hasMemoryFiles ? "/dev/shm" : std::getenv("TMPDIR"));
    const TemporaryFolder folder;
    const CString path = folder.File(L"versions.xml");
    std::mt19937 random(11);
    long version = 0;
    for (int round = 0; round < kRounds; ++round) {
        const Saver saver(folder.Native(L"versions.xml").string(), version + 1);
        const long first = saver.NextVersion();
        ASSERT_EQ(first, version + 1) << "the program does not start";
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 12'000));
        const long saved = saver.Kill(first);
        version = VersionIn(path);
        ASSERT_GE(version, saved) << "what was saved is lost, or no version is whole";
        ASSERT_LE(version, saved + 1);
    }
    for (const std::string& name : folder.Names()) {
        EXPECT_TRUE(name == "versions.xml" || name.starts_with(".encap-")) << name;
    }
}
