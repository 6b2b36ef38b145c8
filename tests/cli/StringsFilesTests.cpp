#include "cli/CommandError.h"
#include "cli/FamilyFile.h"
#include "tests/cli/CliRun.h"

#include <filesystem>

namespace encap::test {
namespace {

std::string Family(const std::vector<std::string>& names)
{
    std::string text = "<F><!-- <FamilyStrings><File FullFileName='no.xml'/></FamilyStrings> -->"
                       "<?no <FamilyStrings>?><x a='>'><FamilyStrings>"
                       "<File FullFileName='nested.xml'/></FamilyStrings></x><FamilyStrings>";
    for (const std::string& name : names) {
        text += "<File FullFileName=\"" + name + "\"/>";
    }
    return text + "<File/><File FullFileName=''/></FamilyStrings><FamilyTable/></F>";
}

std::string Strings(const std::string& language)
{
    return "<S xml:lang='" + language + "'/>";
}

/// A folder with strings documents at several places and a family that names them.
class StringsFiles : public testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(folder.Native(L"sub"));
        WriteFile(folder, L"en.xml", Strings("en"));
        WriteFile(folder, L"a&b.xml", Strings("nl"));
        WriteFile(folder, L"sub/de.xml", Strings("de"));
        WriteFile(folder, L"fr.xml", Strings("fr"));
    }
    std::string Languages(const std::vector<std::string>& names,
                          const std::vector<std::string>& more = {})
    {
        std::vector<std::string> arguments = {"info", WriteFile(folder, L"f.xml", Family(names)),
                                              "--format", "json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const CliRun run(arguments);
        EXPECT_EQ(0, run.status) << run.err;
        const std::size_t start = run.out.find("\"languages\": [");
        return run.out.substr(start + 14, run.out.find(']', start) - start - 14);
    }

    TemporaryFolder folder;
};

TEST_F(StringsFiles, AreFoundBesideTheFamily)
{
    EXPECT_EQ("", Languages({}));
    EXPECT_EQ(R"("en", "de")", Languages({"en.xml", "sub/de.xml"}));
    EXPECT_EQ(R"("de", "en")", Languages({"sub\\de.xml", "./en.xml"}));
    EXPECT_EQ(R"("nl")", Languages({"a&amp;b.xml"}));
    EXPECT_EQ(R"("fr")", Languages({Utf8(folder.File(L"fr.xml"))}));
}

TEST_F(StringsFiles, MissingAbsolutePathsAreTriedByTheirLastComponent)
{
    EXPECT_EQ(R"("en")", Languages({"C:\\Library\\Pins\\en.xml"}));
    EXPECT_EQ(R"("en")", Languages({"\\\\server\\share\\en.xml"}));
    EXPECT_EQ(R"("en")", Languages({"/there/is/no/such/folder/en.xml"}));
    for (const char* name : {"de.xml", "sub/en.xml", "C:\\Library\\de.xml", "C:\\"}) {
        const CliRun run({"table", WriteFile(folder, L"f.xml", Family({name}))});
        EXPECT_EQ(3, run.status) << name;
        EXPECT_EQ(1, run.Messages()) << run.err;
    }
}

TEST_F(StringsFiles, AddedOnesComeBehindOrTakeThePlaceOfTheirLanguage)
{
    const std::string french = Utf8(folder.File(L"fr.xml"));
    const std::string german = WriteFile(folder, L"other.xml", Strings("de"));
    EXPECT_EQ(R"("en", "de", "fr")", Languages({"en.xml", "sub/de.xml"}, {"--strings", french}));
    EXPECT_EQ(R"("de", "en", "fr")",
              Languages({"sub/de.xml", "en.xml"}, {"--strings", french, "--strings", german}));
    EXPECT_EQ(R"("de", "en")", Languages({"sub/de.xml", "en.xml", "other.xml"}));

    WriteFile(folder, L"f.xml", Family({"sub/de.xml", "en.xml"}));
    cli::FamilyFileOptions options;
    options.addedStrings = {folder.File(L"other.xml")};
    const cli::FamilyFile file(folder.File(L"f.xml"), options);
    ASSERT_EQ(2U, file.Strings().size());
    EXPECT_EQ(folder.File(L"other.xml"), file.Strings()[0].path);
    EXPECT_FALSE(file.Strings()[0].isReferenced);
    EXPECT_EQ(folder.File(L"en.xml"), file.Strings()[1].path);
    EXPECT_TRUE(file.Strings()[1].isReferenced);
}

TEST_F(StringsFiles, ProblemsCanBeCollected)
{
    WriteFile(folder, L"bad.xml", "<S");
    WriteFile(folder, L"f.xml", Family({"gone.xml", "en.xml", "bad.xml"}));
    std::vector<CString> problems;
    cli::FamilyFileOptions options;
    options.stringsProblems = &problems;
    cli::FamilyFile file(folder.File(L"f.xml"), options);
    EXPECT_EQ(std::vector<CString>{L"en"}, file.Languages());
    ASSERT_EQ(2U, problems.size());
    EXPECT_NE(CString::npos, problems[0].find(L"gone.xml: there is no such file"));
    EXPECT_NE(CString::npos, problems[1].find(L"bad.xml: not a strings document"));
    EXPECT_EQ(1, file.Open(nullptr, L"en", L"", false)->GetFamStringsCount());
}

} // namespace
} // namespace encap::test
