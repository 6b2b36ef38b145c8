#include "encap/platform/Files.h"

#include "tests/platform/TemporaryFolder.h"
#include "tests/support/PlatformFacts.h"

#include <gtest/gtest.h>

namespace encap::platform {
namespace {

using Names = std::set<std::string>;

std::string Content(const CString& path)
{
    std::string bytes;
    return ReadWholeFile(path, bytes) ? bytes : "(not read)";
}

TEST(Files, PathsEndTheirDirectoriesAtEitherSeparator)
{
    EXPECT_EQ(WithTrailingSeparator(L"a/b"), CString(L"a/b") + PathSeparator());
    EXPECT_EQ(WithTrailingSeparator(L"a/"), L"a/");
    EXPECT_EQ(WithTrailingSeparator(L"a\\"), L"a\\");
    EXPECT_EQ(FileNamePosition(L"a\\b/c.xml"), 4U);
    EXPECT_EQ(FileNamePosition(L"a/b\\c.xml"), 4U);
    EXPECT_EQ(FileNamePosition(L"c.xml"), 0U);
    EXPECT_EQ(FileNamePosition(L"a/"), 2U);
}

TEST(Files, ContentIsWrittenReadReplacedAndDeleted)
{
    const TemporaryFolder folder;
    const CString path = folder.File(L"T\u00E4ble \U0001F600.xml");
    const std::string large(300000, '\x7F');
    for (const std::string& bytes : {std::string("a\0b\r\n", 5), large, std::string()}) {
        EXPECT_TRUE(ReplaceFileContent(path, bytes));
        EXPECT_EQ(Content(path), bytes);
    }
    EXPECT_TRUE(FileExists(path));
    EXPECT_EQ(folder.Names().size(), 1U);
    EXPECT_TRUE(DeleteFileIfPresent(path));
    EXPECT_FALSE(FileExists(path));
    EXPECT_TRUE(DeleteFileIfPresent(path));
    EXPECT_EQ(Content(path), "(not read)");
}

TEST(Files, AFailedReplacementLeavesTheOldFileWholeAndNothingElse)
{
    const TemporaryFolder folder;
    const CString old = folder.File(L"old");
    ASSERT_TRUE(ReplaceFileContent(old, "old content"));
    for (int step = 1; step <= 3; ++step) {
        SCOPED_TRACE(step);
        FailReplaceStep(step);
        EXPECT_FALSE(ReplaceFileContent(old, "new content"));
        FailReplaceStep(step);
        EXPECT_FALSE(ReplaceFileContent(folder.File(L"new"), "new content"));
        EXPECT_EQ(Content(old), "old content");
        EXPECT_EQ(folder.Names(), Names{"old"});
    }
    // A step that has failed does not fail again, and a later one counts on.
    EXPECT_TRUE(ReplaceFileContent(old, "first"));
    FailReplaceStep(4);
    EXPECT_TRUE(ReplaceFileContent(old, "second"));
    EXPECT_FALSE(ReplaceFileContent(old, "third"));
    FailReplaceStep(1);
    FailReplaceStep(0);
    EXPECT_TRUE(ReplaceFileContent(old, "fourth"));
    EXPECT_EQ(Content(old), "fourth");
}

TEST(Files, DirectoriesAreNoFiles)
{
    const TemporaryFolder folder;
    const CString directory = folder.File(L"d");
    ASSERT_TRUE(MakeDirectories(directory));
    ASSERT_TRUE(ReplaceFileContent(folder.File(L"d/kept"), "x"));
    EXPECT_FALSE(FileExists(directory));
    std::string bytes = "untouched";
    EXPECT_FALSE(ReadWholeFile(directory, bytes));
    EXPECT_EQ(bytes, "untouched");
    EXPECT_FALSE(ReplaceFileContent(directory, "x"));
    EXPECT_FALSE(DeleteFileIfPresent(directory));
    EXPECT_EQ(folder.Names(), Names{"d"});
    EXPECT_EQ(Content(folder.File(L"d/kept")), "x");
}

TEST(Files, AFileIsNoDirectory)
{
    const TemporaryFolder folder;
    const CString file = folder.File(L"f");
    ASSERT_TRUE(ReplaceFileContent(file, "x"));
    EXPECT_FALSE(ReplaceFileContent(file + L"/below", "y"));
    EXPECT_FALSE(ReplaceFileContent(folder.File(L"missing/below"), "y"));
    EXPECT_EQ(Content(file + L"/below"), "(not read)");
    EXPECT_TRUE(DeleteFileIfPresent(file + L"/below"));
    EXPECT_FALSE(MakeDirectories(file));
    EXPECT_FALSE(MakeDirectories(file + L"/below"));
    EXPECT_EQ(Content(file), "x");
}

TEST(Files, DirectoriesAreMadeWithTheirParentsBehindEitherSeparator)
{
    const TemporaryFolder folder;
    EXPECT_TRUE(MakeDirectories(folder.File(L"a\\b/c/")));
    EXPECT_TRUE(MakeDirectories(folder.File(L"a/b\\c")));
    EXPECT_TRUE(ReplaceFileContent(folder.File(L"a\\b\\c\\file"), "x"));
    EXPECT_EQ(Content(folder.File(L"a/b/c/file")), "x");
    EXPECT_EQ(folder.Names(), Names{"a"});
}

TEST(Files, NamesMayDifferInCaseWhereTheSystemSaysSo)
{
    const TemporaryFolder folder;
    ASSERT_TRUE(ReplaceFileContent(folder.File(L"Nuts.xml"), "x"));
    EXPECT_EQ(FileExists(folder.File(L"nuts.XML")), kFileNamesIgnoreCase);
    EXPECT_TRUE(ReplaceFileContent(folder.File(L"nuts.XML"), "y"));
    EXPECT_EQ(Content(folder.File(L"Nuts.xml")), kFileNamesIgnoreCase ? "y" : "x");
    EXPECT_EQ(folder.Names().size(), kFileNamesIgnoreCase ? 1U : 2U);
}

TEST(Files, PathsMayBeLong)
{
    const TemporaryFolder folder;
    CString directory = folder.File(L"");
    for (int i = 0; i < 4; ++i) {
        directory += CString(80, L'\u00E4') + L"/";
    }
    const CString path = directory + L"\U0001F600.xml";
    ASSERT_TRUE(MakeDirectories(directory));
    EXPECT_TRUE(ReplaceFileContent(path, "old"));
    EXPECT_TRUE(ReplaceFileContent(path, "new"));
    EXPECT_TRUE(FileExists(path));
    EXPECT_EQ(Content(path), "new");
    EXPECT_TRUE(DeleteFileIfPresent(path));
    EXPECT_FALSE(FileExists(path));
}

TEST(Files, PathsThatCannotBeExpressedFail)
{
    const TemporaryFolder folder;
    const CString loneSurrogate = folder.File(CString(L"s") + static_cast<wchar_t>(0xD800));
    const CString zero = folder.File(CString(L"z\0z", 3));
    for (const CString& path : {loneSurrogate, zero, CString()}) {
        std::string bytes;
        EXPECT_FALSE(FileExists(path));
        EXPECT_FALSE(ReadWholeFile(path, bytes));
        EXPECT_FALSE(ReplaceFileContent(path, "x"));
        EXPECT_FALSE(DeleteFileIfPresent(path));
        EXPECT_FALSE(MakeDirectories(path));
    }
    EXPECT_EQ(folder.Names(), Names{});
}

TEST(Files, TheTemporaryDirectoryTakesFiles)
{
    const CString directory = TemporaryDirectory();
    ASSERT_FALSE(directory.empty());
    const CString path = WithTrailingSeparator(directory) + CStringUtil::NewGuid();
    EXPECT_TRUE(ReplaceFileContent(path, "x"));
    EXPECT_TRUE(DeleteFileIfPresent(path));
}

} // namespace
} // namespace encap::platform
