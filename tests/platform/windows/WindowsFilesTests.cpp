#include "encap/platform/Files.h"
#include "encap/platform/windows/NativePath.h"
#include "encap/platform/windows/WindowsHeaders.h"
#include "tests/platform/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace encap::platform {
namespace {

std::string Content(const CString& path)
{
    std::string bytes;
    return ReadWholeFile(path, bytes) ? bytes : "(not read)";
}

TEST(WindowsPaths, OnlyLongOnesAreMadeAbsolute)
{
    const CString name(300, L'n');
    const std::pair<CString, CString> cases[] = {
        {L"C:/a/b.xml", L"C:\\a\\b.xml"},
        {L"a/b.xml", L"a\\b.xml"},
        {L"C:/a/../b/" + name, L"\\\\?\\C:\\b\\" + name},
        {L"//server/share/" + name, L"\\\\?\\UNC\\server\\share\\" + name},
        {L"\\\\?\\C:\\" + name, L"\\\\?\\C:\\" + name},
    };
    for (const auto& [path, expected] : cases) {
        CString native;
        EXPECT_TRUE(NativePath(path, native));
        EXPECT_EQ(native, expected);
    }
    CString native;
    ASSERT_TRUE(NativePath(name, native));
    EXPECT_TRUE(native.starts_with(L"\\\\?\\") && native.ends_with(L"\\" + name));
}

TEST(WindowsFiles, AReadOnlyFileIsNotReplaced)
{
    const TemporaryFolder folder;
    const CString path = folder.File(L"f");
    ASSERT_TRUE(ReplaceFileContent(path, "kept"));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(ReplaceFileContent(path, "new"));
    EXPECT_EQ(Content(path), "kept");
    EXPECT_EQ(folder.Names().size(), 1U);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(WindowsFiles, TheNewFileHasTheAttributesOfTheOld)
{
    const TemporaryFolder folder;
    const CString path = folder.File(L"f");
    ASSERT_TRUE(ReplaceFileContent(path, "old"));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(ReplaceFileContent(path, "new"));
    EXPECT_NE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_HIDDEN, 0U);
    EXPECT_EQ(Content(path), "new");
}

TEST(WindowsFiles, AFileThatAnotherHoldsOpenIsReplacedOnceItIsFree)
{
    const TemporaryFolder folder;
    const CString path = folder.File(L"f");
    ASSERT_TRUE(ReplaceFileContent(path, "old"));
    const HANDLE held = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(ReplaceFileContent(path, "new"));
    EXPECT_EQ(Content(path), "old");
    EXPECT_EQ(folder.Names().size(), 1U);
    CloseHandle(held);
    EXPECT_TRUE(ReplaceFileContent(path, "new"));
}

TEST(WindowsFiles, DevicesAreNotReplaced)
{
    EXPECT_FALSE(ReplaceFileContent(L"NUL", "x"));
}

} // namespace
} // namespace encap::platform
