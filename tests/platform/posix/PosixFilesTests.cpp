#include "encap/platform/Files.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/platform/posix/EnvironmentVariable.h"

#include <csignal>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace encap::platform {
namespace {

namespace fs = std::filesystem;

std::string Content(const CString& path)
{
    std::string bytes;
    return ReadWholeFile(path, bytes) ? bytes : "(not read)";
}

TEST(PosixFiles, TheNewFileHasThePermissionsOfTheOld)
{
    const TemporaryFolder folder;
    const CString path = folder.File(L"f");
    const mode_t userMask = umask(027);
    EXPECT_TRUE(ReplaceFileContent(path, "new"));
    EXPECT_EQ(fs::status(folder.Native(L"f")).permissions(), fs::perms(0640));
    fs::permissions(folder.Native(L"f"), fs::perms(0606));
    EXPECT_TRUE(ReplaceFileContent(path, "replaced"));
    EXPECT_EQ(fs::status(folder.Native(L"f")).permissions(), fs::perms(0606));
    umask(userMask);
}

TEST(PosixFiles, LinksStayAndTheirFilesAreReplaced)
{
    const TemporaryFolder folder;
    ASSERT_TRUE(MakeDirectories(folder.File(L"d")));
    ASSERT_TRUE(ReplaceFileContent(folder.File(L"d/target"), "old"));
    fs::create_symlink("d/target", folder.Native(L"first"));
    fs::create_symlink(folder.Native(L"first"), folder.Native(L"second"));
    fs::create_symlink("d/none", folder.Native(L"dangling"));
    fs::create_symlink("round", folder.Native(L"round"));

    EXPECT_TRUE(ReplaceFileContent(folder.File(L"second"), "new"));
    EXPECT_EQ(Content(folder.File(L"d/target")), "new");
    EXPECT_TRUE(ReplaceFileContent(folder.File(L"dangling"), "made"));
    EXPECT_EQ(Content(folder.File(L"d/none")), "made");
    EXPECT_FALSE(ReplaceFileContent(folder.File(L"round"), "x"));
    for (const wchar_t* link : {L"first", L"second", L"dangling", L"round"}) {
        EXPECT_TRUE(fs::is_symlink(folder.Native(link)));
    }
    EXPECT_EQ(folder.Names().size(), 5U);
}

TEST(PosixFiles, OnlyFilesAreReplaced)
{
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo(folder.Native(L"pipe").c_str(), 0600), 0);
    EXPECT_FALSE(ReplaceFileContent(folder.File(L"pipe"), "x"));
    EXPECT_TRUE(fs::is_fifo(folder.Native(L"pipe")));
}

TEST(PosixFiles, AProtectedFileIsNotReplaced)
{
    const TemporaryFolder folder;
    const CString path = folder.File(L"f");
    ASSERT_TRUE(ReplaceFileContent(path, "kept"));
    fs::permissions(folder.Native(L"f"), fs::perms(0444));
    if (access(folder.Native(L"f").c_str(), W_OK) == 0) {
        GTEST_SKIP() << "this user may write every file";
    }
    EXPECT_FALSE(ReplaceFileContent(path, "new"));
    EXPECT_EQ(Content(path), "kept");
    EXPECT_EQ(folder.Names().size(), 1U);
}

/// Files of this process become no longer than this while it lives; a write past it fails.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_old);
        rlimit limit = m_old;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_old);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_old{};
    void (*m_handler)(int);
};

TEST(PosixFiles, AReplacementTellsHowFarItCame)
{
    const TemporaryFolder folder;
    const CString path = folder.File(L"f");
    const auto withRoomFor = [&](rlim_t bytes) {
        const FileSizeLimit limit(bytes);
        return TryReplaceFile(path, "content");
    };
    EXPECT_EQ(withRoomFor(7), Replacement::Done);
    EXPECT_EQ(withRoomFor(0), Replacement::NotBegun);
    EXPECT_EQ(withRoomFor(6), Replacement::NotFinished);
    EXPECT_EQ(TryReplaceFile(folder.File(L"none/f"), "x"), Replacement::NotCreated);
    EXPECT_EQ(TryReplaceFile(folder.File(L""), "x"), Replacement::NotCreated);
    EXPECT_EQ(Content(path), "content");
    EXPECT_EQ(folder.Names().size(), 1U);
}

TEST(PosixFiles, FilesThatReportNoSizeAreReadWhole)
{
    if (!FileExists(L"/proc/self/status")) {
        GTEST_SKIP() << "no /proc here";
    }
    EXPECT_NE(Content(L"/proc/self/status").find("Name:"), std::string::npos);
}

TEST(PosixFiles, TheTemporaryDirectoryFollowsTheEnvironment)
{
    const std::pair<const char*, const wchar_t*> cases[] = {
        {nullptr, L"/tmp"}, {"", L"/tmp"},         {"/var/t\xC3\xA4mp//", L"/var/t\u00E4mp"},
        {"///", L"/"},      {"/bad\xFF", L"/tmp"},
    };
    for (const auto& [value, directory] : cases) {
        const EnvironmentVariable variable("TMPDIR", value);
        EXPECT_EQ(TemporaryDirectory(), directory);
    }
}

} // namespace
} // namespace encap::platform
