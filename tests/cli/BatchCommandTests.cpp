#include "cli/FileSearch.h"
#include "cli/Progress.h"
#include "tests/cli/LibraryFolder.h"

#include <set>

namespace encap::test {
namespace {

std::vector<std::string> LinesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// The files of the records, in their order.
std::vector<std::string> FilesOf(const std::string& records)
{
    std::vector<std::string> files;
    for (const std::string& line : LinesOf(records)) {
        const std::size_t begin = std::string("{\"file\": \"").size();
        files.push_back(line.substr(begin, line.find('"', begin) - begin));
    }
    return files;
}

CliRun Batch(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), {"batch", "--no-times"});
    return CliRun(arguments);
}

TEST(BatchCommand, PrintsALineForEachFamilyHoweverBadAndSumsUp)
{
    LibraryFolder library;
    library.AddFamily("good", {"3", "4"});
    library.AddFamily("bad", {"3", "x", "y"},
                      "<Column ColumnId='E' ValueType='double' UnitType='mm' "
                      "ColumnwideValue='{D}*2'/>");
    library.AddFile("cut/cut.xml", "<Family><FamilyTable><Columns>");
    library.AddFile("good/FamilyStrings.de.xml", "<Strings xml:lang='de'/>");
    library.AddFile("other.xml", "<Project/>");
    const CliRun run = Batch({library.Path()});
    EXPECT_EQ(3, run.status);
    ExpectGolden("batch.ndjson", library.Short(run.out));
    EXPECT_EQ(
        "encap: bad/bad.xml: 4 cells have no value; the first: row r2, column D: result 3, it "
        "cannot be computed: \"x\"; asked to compute \"x\" in mm: \"x\" is not a known name (at "
        "character 1)\n"
        "encap: cut/cut.xml: not a family document: it is not well-formed XML; an XML editor "
        "shows the place\n"
        "encap: 3 families, 5 members, 8 cells; 4 cells have no value in 1 family, 1 family was "
        "not opened\n",
        library.Short(run.err));
    EXPECT_EQ(1, Batch({library.Path("bad"), library.Path("good")}).status);
    EXPECT_EQ(0, Batch({library.Path("good")}).status);
}

TEST(BatchCommand, EqualRunsPrintEqualBytesWhateverTheJobs)
{
    const CliRun one = Batch({ENCAP_SAMPLES, "--jobs", "1"});
    const CliRun three = Batch({ENCAP_SAMPLES, "--jobs=3"});
    EXPECT_EQ(0, one.status);
    EXPECT_EQ(21U, LinesOf(one.out).size());
    EXPECT_EQ(one.out, three.out);
    EXPECT_EQ(one.err, three.err);
    const CliRun timed({"batch", std::string(ENCAP_SAMPLES) + "/families/gears"});
    EXPECT_NE(std::string::npos, timed.out.find("\"failure\": null, \"microseconds\": "));
    EXPECT_NE(std::string::npos, timed.err.find(" families/s, ")) << timed.err;
}

TEST(BatchCommand, FoldersPatternsAndTablesOfContentsGiveTheSameFamilies)
{
    const std::string samples = ENCAP_SAMPLES;
    const std::vector<std::string> files = FilesOf(Batch({samples}).out);
    EXPECT_EQ(files, FilesOf(Batch({samples + "/toc.xml"}).out));
    EXPECT_EQ(files, FilesOf(Batch({samples + "/families/*/*/*.xml"}).out));
    EXPECT_EQ(files, FilesOf(Batch({samples + "/**/*.xml", samples + "/families"}).out));
    EXPECT_TRUE(std::is_sorted(files.begin(), files.end()));
    std::vector<std::string> sharded(files.size());
    for (const std::size_t shard : {1U, 2U, 3U, 4U}) {
        const CliRun run = Batch({samples + "/toc.xml", "--shard", std::to_string(shard) + "/4"});
        std::size_t place = shard - 1;
        for (const std::string& file : FilesOf(run.out)) {
            ASSERT_LT(place, sharded.size());
            sharded[place] = file;
            place += 4;
        }
    }
    EXPECT_EQ(files, sharded);
    EXPECT_EQ("", Batch({samples + "/families/keys", "--shard", "2/2"}).out);
}

TEST(BatchCommand, FindsTheFamiliesOfATableOfContentsByName)
{
    LibraryFolder library;
    library.AddFamily("far/moved", {"1"});
    library.AddFamily("b", {"1"});
    library.AddFile("copies/b.xml", ReadFile(library.Path("b/b.xml")));
    library.AddFile("cut.xml", "<Family>");
    const std::string toc = library.AddFile(
        "tables/toc.xml",
        "<TableOfContents><Families><F InternalName='id-far/moved' FolderName='elsewhere'/>"
        "<F InternalName='id-b' FolderName='copies'/><F InternalName='gone' DisplayName='Gone'/>"
        "<F InternalName=''/></Families></TableOfContents>");
    const CliRun run = Batch({toc, "--library", library.Path()});
    EXPECT_EQ(3, run.status);
    EXPECT_EQ((std::vector<std::string>{"copies/b.xml", "far/moved/far/moved.xml"}), [&] {
        auto files = FilesOf(library.Short(run.out));
        files.resize(2);
        return files;
    }());
    EXPECT_NE(std::string::npos,
              library.Short(run.out).find(
                  R"({"file": null, "internalName": "gone", "language": null, "rows": 0)"))
        << run.out;
    EXPECT_NE(std::string::npos,
              run.err.find("there is no document of the family \"gone\" (Gone) below "));
    EXPECT_NE(std::string::npos, run.err.find("there is no document of the family \"\" ()"));
    // The first by path, whichever were looked into before.
    library.AddFile("copies/z.xml", "<F InternalName='id-a'><FamilyTable/></F>");
    const std::string other = library.AddFile(
        "tables/other.xml", "<TableOfContents><Families><F InternalName='id-b'/>"
                            "<F InternalName='id-a' FolderName='copies'/></Families>"
                            "</TableOfContents>");
    EXPECT_EQ((std::vector<std::string>{"b/b.xml", "copies/z.xml"}),
              FilesOf(library.Short(Batch({other, "--library", library.Path()}).out)));
}

TEST(BatchCommand, ChecksInsteadOfEvaluating)
{
    const std::string data = TestData("");
    const CliRun run = Batch({data + "faults.xml", data + "pins/pins.xml", "--check"});
    EXPECT_EQ(1, run.status);
    EXPECT_NE(std::string::npos, run.out.find("\"cell-fails\": 8")) << run.out;
    EXPECT_EQ(std::string::npos, run.out.find("\"results\""));
    EXPECT_NE(std::string::npos, run.err.find(" errors, ")) << run.err;
    // Warnings only.
    const CliRun warned = Batch({data + "pins/pins.xml", "--check"});
    EXPECT_EQ(0, warned.status);
    EXPECT_EQ(1, warned.Messages()) << warned.err;
    EXPECT_EQ(1, Batch({data + "pins/pins.xml", "--check", "--fail-on", "warning"}).status);
}

TEST(BatchCommand, RefusesWhatItCannotDo)
{
    LibraryFolder library;
    const std::string path = library.AddFamily("a", {"1"});
    for (const char* shard : {"0/2", "3/2", "1", "a/2", "/", "1/2/3"}) {
        ExpectRefusal(Batch({path, "--shard", shard}), 2, "is not I/N");
    }
    ExpectRefusal(Batch({path, "--jobs", "0"}), 2, "'0' is no whole number from 1 to 1024");
    ExpectRefusal(Batch({path, "--materials", library.Path("none.csv")}), 3, "no such file");
    ExpectRefusal(Batch({path, "-o", library.Path("none/out")}), 3, "there is no folder ");
    library.AddFile("empty/readme.txt", "");
    ExpectRefusal(Batch({library.Path("empty")}), 3, "there is no family document here");
    ExpectRefusal(Batch({library.Path("*/no*.xml")}), 3, "there is no family document here");
    EXPECT_EQ(3, Batch({path, library.Path("gone.xml")}).status);
    const CliRun unfit = Batch({path, library.Path("*/no*.xml")});
    EXPECT_EQ(3, unfit.status);
    EXPECT_NE(std::string::npos, unfit.err.find("*/no*.xml: nothing fits this pattern"));
    const std::string read = ReadFile(path);
    ExpectRefusal(Batch({library.Path(), "-o", path}), 2, "a/a.xml: -o names a file that is read");
    ExpectRefusal(CliRun({"find", path, "{D} > 0mm", "-o", path}), 2, "-o names a file that");
    EXPECT_EQ(read, ReadFile(path));
    const CliRun noLanguage = Batch({path, "--language", "de"});
    EXPECT_EQ(3, noLanguage.status);
    EXPECT_NE(std::string::npos, noLanguage.err.find("no strings in the language 'de'"));
}

TEST(FileSearch, PatternsMatchNames)
{
    const struct {
        const wchar_t* pattern;
        const wchar_t* name;
        bool matches;
    } cases[] = {
        {L"*.xml", L"a.xml", true},
        {L"*.xml", L".xml", true},
        {L"a*b*c", L"aXbYbZc", true},
        {L"a*b*c", L"aXbYcZ", false},
        {L"a?c", L"abc", true},
        {L"a?c", L"ac", false},
        {L"*", L"", true},
        {L"", L"a", false},
        {L"**a", L"bca", true},
        {L"iso-[4]*", L"iso-4", false},
        {L"*a*a*a*b", L"aaaaaaaaaaaaaaaaaaaaaaaa", false},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(each.matches, cli::MatchesPattern(each.name, each.pattern))
            << Utf8(each.pattern) << ' ' << Utf8(each.name);
    }
}

TEST(Progress, TellsRateAndTimeLeft)
{
    EXPECT_EQ("0 of 2000 families", cli::ProgressText(0, 2000, 5.0, "families"));
    EXPECT_EQ("500 of 2000 families, 50/s, 30 s left",
              cli::ProgressText(500, 2000, 10.0, "families"));
    EXPECT_EQ("1 of 2000 families, 0.0167/s, 33 h 19 min left",
              cli::ProgressText(1, 2000, 60.0, "families"));
    EXPECT_EQ("3 min 20 s", cli::DurationText(199.5));
    EXPECT_EQ("0.034 s", cli::SecondsText(0.034));
    EXPECT_EQ("123457", cli::RateText(1234567, 10.0));
}

} // namespace
} // namespace encap::test
