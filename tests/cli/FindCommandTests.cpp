#include "tests/cli/LibraryFolder.h"

namespace encap::test {
namespace {

constexpr const char* kText = "<Column ColumnId='GRADE' ValueType='string' "
                              "ColumnwideValue='\"8.8 \" &amp; {D}'/>";
constexpr const char* kLength = "<Column ColumnId='L' ValueType='double' UnitType='in' "
                                "ColumnwideValue='{D}*10'/>"
                                "<Column ColumnId='OK' ValueType='boolean' "
                                "ColumnwideValue='true'/>";

/// The rows that a CSV run found, as "family:row".
std::string RowsOf(const CliRun& run)
{
    std::string rows;
    std::istringstream in(run.out);
    std::string line;
    std::getline(in, line);
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string file;
        std::string family;
        std::string row;
        std::getline(fields, file, ',');
        std::getline(fields, family, ',');
        std::getline(fields, row, ',');
        rows += (rows.empty() ? "" : " ") + family + ":" + row;
    }
    return rows;
}

TEST(FindCommand, FindsMembersByConditionsWithUnits)
{
    LibraryFolder library;
    library.AddFamily("bolt", {"6", "8", "10"}, std::string(kText) + kLength);
    library.AddFamily("pin", {"8", "12.7"}, kText);
    library.AddFamily("plate", {"8"});
    const struct {
        const char* condition;
        const char* rows;
    } cases[] = {
        {"{D} >= 8mm", "bolt:r2 bolt:r3 pin:r1 pin:r2 plate:r1"},
        {"{ d }>=0.8cm and {D} < 0.5in", "bolt:r2 bolt:r3 pin:r1 plate:r1"},
        {"{D} == 0.5in", "pin:r2"},
        {"{D} > 6mm and {L} > 3.2in", "bolt:r3"},
        {"{L}-{D} > 3in", "bolt:r3"},
        {R"({GRADE} == "8.8 8")", "bolt:r2 pin:r1"},
        {R"("8.8 8" != { Grade } and not {D} > 9mm)", "bolt:r1"},
        {R"(({GRADE} == "8.8 6" or {GRADE} == "8.8 12.7"))", "bolt:r1 pin:r2"},
        {R"(if({GRADE}=="8.8 8"; 1; {D} > 12mm))", "bolt:r2 pin:r1 pin:r2"},
        {R"({OK} == "true" and {D} < 7mm)", "bolt:r1"},
        {R"({GRADE} == "a ""quoted"" {D} text")", ""},
        {"{NONE} > 1", ""},
    };
    for (const auto& each : cases) {
        const CliRun run({"find", library.Path(), each.condition, "--format", "csv"});
        EXPECT_EQ(0, run.status) << each.condition << '\n' << run.err;
        EXPECT_EQ(each.rows, RowsOf(run)) << each.condition;
    }
}

TEST(FindCommand, TellsWhereItCannotTell)
{
    LibraryFolder library;
    library.AddFamily("bolt", {"6", "x", "10"}, kText);
    library.AddFamily("pin", {"7"});
    const CliRun run({"find", library.Path(), "{D} > 6mm"});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ("Family  Row  Designation      D\n"
              "------  ---  -----------  -----\n"
              "bolt    r3                10 mm\n"
              "pin     r1                 7 mm\n",
              run.out);
    EXPECT_EQ(
        "encap: bolt/bolt.xml: row r2, column D: result 3, it cannot be computed: \"x\"; asked "
        "to compute \"x\" in mm: \"x\" is not a known name (at character 1)\n"
        "encap: 2 members in 2 families; of 2 families, 2 have the columns\n",
        library.Short(run.err));
    const CliRun units({"find", library.Path("pin"), "{D} > 6kg"});
    EXPECT_EQ(1, units.status);
    EXPECT_EQ(
        "encap: pin/pin.xml: row r1: asked to compute \"7mm > 6kg\" in ul: \">\" cannot combine "
        "cm and kg (at character 5)\n"
        "encap: 0 members in 0 families; of 1 family, 1 has the columns\n",
        library.Short(units.err));
    const CliRun noNumber({"find", library.Path(), "{GRADE} > 6"});
    EXPECT_EQ(1, noNumber.status);
    EXPECT_NE(std::string::npos, noNumber.err.find("the column GRADE holds texts"));
    const CliRun noText({"find", library.Path("pin"), "{D} == \"6\""});
    EXPECT_EQ(1, noText.status);
    EXPECT_NE(std::string::npos, noText.err.find("the column D holds numbers"));
    EXPECT_EQ(3, CliRun({"find", library.Path("pin"), library.Path("none.xml"), "{D}>0"}).status);
}

TEST(FindCommand, RefusesWhatIsNoCondition)
{
    LibraryFolder library;
    const std::string path = library.AddFamily("pin", {"7"}, kText);
    const struct {
        const char* condition;
        const char* reason;
    } cases[] = {
        {"D > 6mm", "names no column"},
        {"{D > 6mm", "the \"{\" has no \"}\" behind it (at character 1)"},
        {"{D} > 6}", "the \"}\" has no \"{\" before it (at character 8)"},
        {"{ } > 6", "the braces name no column (at character 1)"},
        {"{D} >> 6", "asked to compute \"1 >> 6\" in ul"},
        {"{D} > 6furlongz", "\"furlongz\" is not a known unit"},
        {"{GRADE} == \"8.8", "the quoted text has no end (at character 12)"},
        {"{GRADE} < \"8.8\"",
         "a quoted text is compared, by == or !=, with a column (at character 11)"},
        {"{GRADE} == \"a\" == \"b\"", "beside a comparison of texts"},
        {"2*{GRADE} == \"a\"", "beside a comparison of texts"},
        {"{GRADE} == \"a\" + 1", "beside a comparison of texts"},
        {"band {GRADE} == \"a\"", "beside a comparison of texts"},
    };
    for (const auto& each : cases) {
        ExpectRefusal(CliRun({"find", path, each.condition}), 2, each.reason);
    }
    ExpectRefusal(CliRun({"find", path}), 2, "a path and a condition are asked for");
}

// Only a family's units bring the end of the first to light.
TEST(FindCommand, TellsOnceInAFamilyWhatItsMembersCannotAnswer)
{
    LibraryFolder library;
    const std::string path = library.AddFamily("pin", {"", "7", "8", ""}, kText);
    const struct {
        const char* condition;
        const char* told;
        const char* rows;
    } cases[] = {
        {"{D} > 6mm and {D} <",
         "asked to compute \"1mm > 6mm and 1mm <\" in ul: the text ends where a number, a "
         "function or \"(\" is expected (at character 20)",
         ""},
        {"{D} > 7mm", "2 members cannot be judged; the first: row r1, column D: the cell is empty",
         "pin:r3"},
        {"({D}-7mm)/({D}-7mm) > 0",
         "3 members cannot be judged; the first: row r1, column D: the cell is empty", "pin:r3"},
    };
    for (const auto& each : cases) {
        const CliRun run({"find", path, each.condition, "--format", "csv"});
        EXPECT_EQ(1, run.status);
        EXPECT_EQ(each.rows, RowsOf(run));
        EXPECT_EQ(2, run.Messages()) << run.err;
        EXPECT_EQ("encap: pin/pin.xml: " + std::string(each.told),
                  library.Short(run.err.substr(0, run.err.find('\n'))));
    }
}

TEST(FindCommand, NamesFamilyRowDesignationAndColumns)
{
    const std::string bolts = std::string(ENCAP_SAMPLES) + "/families/bolts";
    const CliRun json({"find", bolts, "{D} == 8mm and {l} == 60mm", "--format", "json"});
    EXPECT_EQ(0, json.status);
    EXPECT_EQ(
        "{\"file\": \"/iso-4017/iso-4017.xml\", \"internalName\": "
        "\"3e2141cf-7b6a-5ad6-b7c2-7feaaf6d1489\", \"family\": \"Hexagon head screw, fully "
        "threaded\", \"row\": \"M8x60\", \"suppressed\": false, \"designation\": \"ISO 4017 - "
        "M8 x 60\", \"columns\": {\"D\": {\"value\": \"8\", \"unit\": \"mm\"}, \"l\": "
        "{\"value\": \"60\", \"unit\": \"mm\"}}}\n",
        Replaced(json.out, bolts, ""));
    // Without a designation of its own a member is called by its key; the language is that asked
    // for.
    const CliRun text({"find", std::string(ENCAP_SAMPLES) + "/families/gears", "{REST} > 5.8mm",
                       "--language", "de"});
    EXPECT_EQ("Family      Row       Designation        REST\n"
              "----------  --------  -----------  ----------\n"
              "Zahnstange  m2.5-250  2.5, 250     6.52662 mm\n",
              text.out.substr(0, text.out.find("Zahnstange  m4")));
    EXPECT_EQ(0, CliRun({"find", std::string(ENCAP_SAMPLES) + "/toc.xml", "{S} > 30mm", "--jobs",
                         "2", "--shard", "2/3"})
                     .status);
}

} // namespace
} // namespace encap::test
