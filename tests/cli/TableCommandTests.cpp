#include "encap/platform/Locale.h"
#include "tests/cli/CliRun.h"

#include <filesystem>

namespace encap::test {
namespace {

std::string Pins()
{
    return TestData("pins/pins.xml");
}

std::string Faults()
{
    return TestData("faults.xml");
}

TEST(TableCommand, PrintsEveryFormInEveryLanguage)
{
    for (const char* language : {"en", "de"}) {
        for (const char* format : {"text", "csv", "json", "xml"}) {
            SCOPED_TRACE(std::string(language) + " " + format);
            const CliRun run({"table", Pins(), "--format", format, "--language", language});
            EXPECT_EQ(0, run.status);
            EXPECT_EQ("", run.err);
            ExpectGolden(std::string("pins/") + language + ".table." + format, run.out);
        }
    }
}

TEST(TableCommand, FirstLanguageAndTextAreTheDefaultAndTagsIgnoreCase)
{
    EXPECT_EQ(ReadFile(TestData("pins/en.table.text")), CliRun({"table", Pins()}).out);
    EXPECT_EQ(ReadFile(TestData("pins/de.table.csv")),
              CliRun({"table", "--language=DE", "--format=csv", Pins()}).out);
}

TEST(TableCommand, CellsThatFailAreMarkedAndTold)
{
    const struct {
        const char* format;
        const char* golden;
    } cases[] = {{"text", "faults.table.text"},
                 {"csv", "faults.table.csv"},
                 {"json", "faults.table.json"},
                 {"xml", "faults.table.xml"}};
    for (const auto& [format, golden] : cases) {
        SCOPED_TRACE(format);
        const CliRun run({"table", Faults(), "--format", format});
        EXPECT_EQ(1, run.status);
        ExpectGolden(golden, run.out);
        ExpectGolden("faults.messages", Replaced(run.err, Faults(), "faults.xml"));
    }
}

TEST(TableCommand, UnknownLanguageNamesThoseThereAre)
{
    ExpectRefusal(CliRun({"table", Pins(), "--language", "fr"}), 2, "there are en, de");
    ExpectRefusal(CliRun({"table", Faults(), "--language", "en"}), 2, "no strings documents");
    EXPECT_EQ(1, CliRun({"table", Faults(), "--language", ""}).status);
}

TEST(TableCommand, OutputFileIsReplacedAsAWhole)
{
    const TemporaryFolder folder;
    const std::string path = WriteFile(folder, L"out.csv", "old");
    const std::vector<std::string> arguments = {"table", Pins(), "--format", "csv", "-o", path};
    const CliRun run(arguments);
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(ReadFile(TestData("pins/en.table.csv")), ReadFile(path));

    platform::FailReplaceStep(1);
    ExpectRefusal(CliRun({"table", Pins(), "-o", path}), 3, "cannot be written");
    platform::FailReplaceStep(0);
    EXPECT_EQ(ReadFile(TestData("pins/en.table.csv")), ReadFile(path));
    ExpectRefusal(CliRun({"table", Pins(), "-o", Utf8(folder.File(L"no/such/folder.csv"))}), 3,
                  "folder.csv: the file cannot be written");
}

TEST(TableCommand, OutputIsNeverAFileThatIsRead)
{
    const TemporaryFolder folder;
    const std::string text = ReadFile(Faults());
    const std::string family = WriteFile(folder, L"family.xml", text);
    const std::string strings = WriteFile(folder, L"de.xml", "<S xml:lang='de'/>");
    for (const char* command : {"table", "info"}) {
        for (const std::string& output : {family, strings}) {
            ExpectRefusal(CliRun({command, family, "--strings", strings, "-o", output}), 2,
                          "-o names a file that is read");
        }
    }
    ExpectRefusal(CliRun({"check", family, "-o", family}), 2, "-o names a file that is read");
    EXPECT_EQ(text, ReadFile(family));
}

TEST(TableCommand, MaterialsAreNamedFromTheirTable)
{
    const TemporaryFolder folder;
    const std::string good = WriteFile(folder, L"good.csv", "key,name\r\n1.0503,\"C45, steel\"\n");
    const std::string bad = WriteFile(folder, L"bad.csv", "1.0503\n");
    const std::string notText = WriteFile(folder, L"not-text.csv", "1.0503,\xFF\n");
    const CliRun named({"table", Pins(), "--format", "csv", "--materials", good});
    EXPECT_EQ(0, named.status);
    EXPECT_NE(std::string::npos, named.out.find(",\"C45, steel\","));
    ExpectRefusal(CliRun({"table", Pins(), "--materials", bad}), 3, "not a material table");
    ExpectRefusal(CliRun({"table", Pins(), "--materials", notText}), 3, "byte 8 (line 1)");
}

TEST(TableCommand, DecimalsFollowTheUserOnlyWhenAsked)
{
    const platform::ScopedUserLocale german(L',', 1031);
    const CliRun plain({"table", Pins(), "--format", "csv"});
    const CliRun local({"table", Pins(), "--format", "csv", "--localize-decimals"});
    EXPECT_NE(std::string::npos, plain.out.find(",565.487,"));
    EXPECT_NE(std::string::npos, local.out.find(",\"565,487\","));
    EXPECT_EQ(0, local.status);
}

std::size_t FolderCount(const TemporaryFolder& folder)
{
    return folder.Names().size();
}

TEST(TableCommand, CacheHasAFolderForEachStateOfAFamily)
{
    const TemporaryFolder folder;
    const TemporaryFolder family;
    const std::string cache = Utf8(folder.File(L"cache"));
    const auto cacheFolders = [&] {
        const std::filesystem::path root = folder.Native(L"cache");
        return std::distance(std::filesystem::directory_iterator(root), {});
    };
    std::string text = ReadFile(Faults());
    const std::string path = WriteFile(family, L"f.xml", text);
    const std::vector<std::string> arguments = {"table", path, "--format", "csv", "--cache", cache};

    const CliRun first(arguments);
    EXPECT_EQ(1, cacheFolders());
    const CliRun second(arguments);
    EXPECT_EQ(1, cacheFolders());
    EXPECT_EQ(first.out, second.out);
    EXPECT_EQ(first.err, second.err);

    WriteFile(family, L"f.xml", Replaced(text, ">3<", ">4<"));
    const CliRun changed(arguments);
    EXPECT_EQ(2, cacheFolders());
    EXPECT_NE(std::string::npos, changed.out.find("r1,4,0.8,"));
    {
        const platform::ScopedUserLocale german(L',', 1031);
        std::vector<std::string> localized = arguments;
        localized.emplace_back("--localize-decimals");
        EXPECT_NE(std::string::npos, CliRun(localized).out.find("\"0,8\""));
        EXPECT_EQ(3, cacheFolders());
    }
    const std::string strings = WriteFile(family, L"en.xml", "<S xml:lang='en'/>");
    CliRun({"table", path, "--cache", cache, "--strings", strings});
    EXPECT_EQ(4, cacheFolders());

    const std::string file = WriteFile(family, L"a-file", "");
    ExpectRefusal(CliRun({"table", path, "--cache", file}), 3, "the cache folder cannot be made");
    EXPECT_EQ(3U, FolderCount(family));
}

TEST(TableCommand, TableWithoutRowsOrColumnsIsPrinted)
{
    const TemporaryFolder folder;
    const std::string path = WriteFile(folder, L"f.xml", "<F><FamilyTable/></F>");
    EXPECT_EQ("RowId\r\n", CliRun({"table", path, "--format", "csv"}).out);
    EXPECT_EQ("Row\n---\n", CliRun({"table", path}).out);
    const CliRun json({"table", path, "--format", "json"});
    EXPECT_NE(std::string::npos, json.out.find("\"columns\": [],\n \"rows\": []}"));
    EXPECT_EQ(0, json.status);
}

TEST(TableCommand, RowWithoutIdHasNoEvaluatedDocument)
{
    const TemporaryFolder folder;
    const std::string path =
        WriteFile(folder, L"f.xml", "<F><FamilyTable><Rows><Row/></Rows></FamilyTable></F>");
    ExpectRefusal(CliRun({"table", path, "--format", "xml"}), 3, "has no ID");
}

} // namespace
} // namespace encap::test
