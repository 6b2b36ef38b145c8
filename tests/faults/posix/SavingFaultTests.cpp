#include "encap/icons/Dib.h"
#include "encap/icons/Icons.h"
#include "encap/table/ValueCacheStore.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/support/FamilyBuilder.h"
#include "tests/support/SumProvider.h"

#include <csignal>
#include <fstream>
#include <functional>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace encap::test;
namespace platform = encap::platform;

namespace {

/// One of the library's ways to write a file, from the start to the written file.
struct Writer {
    const char* name;
    const wchar_t* file;
    std::function<bool(const TemporaryFolder&, int version)> write;
};

std::unique_ptr<CEncapFamily> FamilyIn(const TemporaryFolder& folder, int version,
                                       IEvaluatorProvider& host)
{
    FamilyBuilder builder;
    builder.Column({L"A", L"string"})
        .Row(L"r", {{L"A", CString(static_cast<std::size_t>(20'000 + version), L'v')}})
        .Beside(L"<FamilyStrings><File FullFileName='" + folder.File(L"x.xml") +
                L"'/></FamilyStrings>");
    const CString text = L"<S xml:lang='en'><T>" +
                         CString(static_cast<std::size_t>(20'000 + version), L't') + L"</T></S>";
    return builder.Open(&host, {text}, false, folder.File(L""));
}

bool WriteDocument(const TemporaryFolder& folder, int version)
{
    SumProvider host;
    return FamilyIn(folder, version, host)
        ->GetFamilyXML()
        .SaveXmlDocument(folder.File(L"family.xml").c_str(), false);
}

bool WriteStrings(const TemporaryFolder& folder, int version)
{
    SumProvider host;
    return FamilyIn(folder, version, host)->SaveFamilyStringsXMLs();
}

bool WriteCache(const TemporaryFolder& folder, int version)
{
    SumProvider host;
    const auto family = FamilyIn(folder, version, host);
    const CString value(static_cast<std::size_t>(20'000 + version), L'c');
    family->GetEncapFamilyTable()->SetValue(L"r", L"A", value.c_str(), true);
    return true; // written when the family goes; the library says nothing of it
}

bool WriteBitmap(const TemporaryFolder& folder, int version)
{
    std::vector<unsigned char> source(40 + 4 * 4, static_cast<unsigned char>(version));
    std::fill_n(source.begin(), 40, static_cast<unsigned char>(0));
    source[0] = 40;
    source[4] = source[8] = 2;
    source[12] = 1;
    source[14] = 32;
    const auto dib = CDib::Convert(source.data(), source.size(), 64, 64, 32, true);
    return CDib::WriteFile(folder.File(L"picture.bmp").c_str(), dib.data(), dib.size());
}

CString CacheName()
{
    const CString path = encap::ValueCacheStore(L"d").FilePath();
    return path.substr(platform::FileNamePosition(path));
}

const CString kCacheName = CacheName();
const Writer kWriters[] = {
    {"document", L"family.xml", WriteDocument},
    {"strings", L"FamilyStrings.en.xml", WriteStrings},
    {"cache", kCacheName.c_str(), WriteCache},
    {"bitmap", L"picture.bmp", WriteBitmap},
};

std::string ContentOf(const CString& path)
{
    std::string bytes;
    return platform::ReadWholeFile(path, bytes) ? bytes : "(not read)";
}

/// Writes a first version, then others that must fail under the fault, then one that succeeds.
void ExpectOldFileKept(const std::function<void(bool)>& setFault)
{
    for (const Writer& writer : kWriters) {
        SCOPED_TRACE(writer.name);
        const TemporaryFolder folder;
        const CString path = folder.File(writer.file);
        ASSERT_TRUE(writer.write(folder, 1));
        const std::string first = ContentOf(path);
        ASSERT_GT(first.size(), 10'000U);
        const auto names = folder.Names();
        setFault(true);
        const bool isWritten = writer.write(folder, 2);
        setFault(false);
        if (CString(writer.file) == kCacheName) {
            // Values that are older than the document would be served: better none.
            EXPECT_EQ(folder.Names().size(), 0U);
        } else {
            EXPECT_FALSE(isWritten);
            EXPECT_TRUE(ContentOf(path) == first);
            EXPECT_EQ(folder.Names(), names) << "something was left behind";
        }
        EXPECT_TRUE(writer.write(folder, 3));
        EXPECT_FALSE(ContentOf(path) == first);
    }
}

/// Runs as a user who owns nothing, where the tests run as root.
class OtherUser {
public:
    OtherUser()
    {
        if (geteuid() == 0) {
            m_changed = seteuid(65534) == 0;
        }
    }
    ~OtherUser()
    {
        if (m_changed && seteuid(0) != 0) {
            ADD_FAILURE() << "the tests go on as another user";
        }
    }
    OtherUser(const OtherUser&) = delete;
    OtherUser& operator=(const OtherUser&) = delete;

private:
    bool m_changed = false;
};

} // namespace

TEST(SavingFaults, AFailedStepLeavesNoPartOfAFile)
{
    for (int step = 1; step <= 3; ++step) {
        SCOPED_TRACE(step);
        ExpectOldFileKept([step](bool on) { platform::FailReplaceStep(on ? step : 0); });
    }
}

// As on a full disk, a write succeeds in part and fails behind it.
TEST(SavingFaults, AFullDiskLeavesNoPartOfAFile)
{
    struct rlimit old {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ExpectOldFileKept([&](bool on) {
        struct rlimit limit = old;
        limit.rlim_cur = on ? 6000 : old.rlim_cur;
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    });
    std::signal(SIGXFSZ, oldHandler);
}

TEST(SavingFaults, AFolderWithoutPermissionLeavesItsFiles)
{
    const TemporaryFolder folder;
    ASSERT_TRUE(WriteDocument(folder, 1));
    const std::string first = ContentOf(folder.File(L"family.xml"));
    std::filesystem::permissions(folder.Native(), std::filesystem::perms(0555));
    {
        const OtherUser user;
        EXPECT_FALSE(WriteDocument(folder, 2));
        EXPECT_FALSE(WriteStrings(folder, 2));
        WriteCache(folder, 2);
        EXPECT_FALSE(WriteBitmap(folder, 2));
    }
    std::filesystem::permissions(folder.Native(), std::filesystem::perms(0755));
    EXPECT_TRUE(ContentOf(folder.File(L"family.xml")) == first);
    EXPECT_EQ(folder.Names().size(), 1U);
}

TEST(SavingFaults, FilesAndFoldersThatDisappear)
{
    const TemporaryFolder folder;
    const CString directory = folder.File(L"d");
    const CString path = directory + L"/family.xml";
    ASSERT_TRUE(platform::MakeDirectories(directory));
    XMLParser document(L"<a/>");
    ASSERT_TRUE(document.SaveXmlDocument(path.c_str(), false));
    ASSERT_TRUE(platform::DeleteFileIfPresent(path));
    EXPECT_FALSE(document.LoadXmlDocument(path.c_str()));
    EXPECT_TRUE(document.GetRootNode().IsNode()) << "what was open stays open";
    EXPECT_TRUE(document.SaveXmlDocument(path.c_str(), false));
    std::filesystem::remove_all(folder.Native(L"d"));
    EXPECT_FALSE(document.SaveXmlDocument(path.c_str(), false));
    EXPECT_FALSE(document.SaveXmlDocument(L"/dev/full", false));
    EXPECT_EQ(folder.Names().size(), 0U);

    SumProvider host;
    const auto family =
        FamilyBuilder().Column({L"A", L"string"}).Row(L"r").Open(&host, {}, false, directory);
    EXPECT_EQ(CellText(*family, L"r", L"A"), L"") << "a cache folder that is gone is no fault";
}
