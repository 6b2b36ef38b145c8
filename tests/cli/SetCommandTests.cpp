#include "tests/cli/EditedFamily.h"

namespace encap::test {
namespace {

using Arguments = std::vector<std::string>;

TEST(SetCommand, DryRunPrintsWhatWouldChangeAndWritesNothing)
{
    const EditedFamily family;
    const auto before = family.Files();
    EXPECT_EQ("edit.xml\n"
              "  @Manufacturer: \"old \"firm\"\" -> \"new\"\n"
              "  FamilyTable/Columns/Column[V]/@ColumnwideValue: \"{A}*{D}\" -> \"{A}*{L}\"\n"
              "  FamilyTable/Rows/Row[r1]/Cell[D]: \"3\" -> \"{L}/2\"\n"
              "  FamilyTable/Rows/Row[r1]/Cell[TXT]: added at position 4 \"x\"\n"
              "  FamilyTable/Rows/Row[r2]/Cell[A]: removed \"{D}*3mm\"\n"
              "  ParameterMap/FamilyParametersMap: added at position 2 with ParamsToTemplate\n"
              "strings/de.xml\n"
              "  DisplayName: \"\xC3\x84nderungen\" -> \"Neu\"\n"
              "  Table/ColumnStrings[TXT]/Rows/CellString[r1]: added at position 2 \"x\"\n",
              family.Output({"set",
                             "FAMILY",
                             "--cell",
                             "r1",
                             "d={L}/2",
                             "--cell",
                             "R2",
                             "A=",
                             "--cell",
                             "r1",
                             "TXT=x",
                             "--language",
                             "DE",
                             "--formula",
                             "V={A}*{L}",
                             "--property",
                             "MANUFACTURER=new",
                             "--property",
                             "displayName=Neu",
                             "--dry-run"}));
    EXPECT_EQ("nothing would change\n",
              family.Output({"set", "FAMILY", "--cell", "r1", "D=3", "--dry-run"}));
    EXPECT_EQ(before, family.Files());
}

TEST(SetCommand, InPlaceChangesTheEditedPlacesAndNothingElse)
{
    const EditedFamily family;
    auto expected = family.Files();
    const CliRun run = family.Run({"set", "FAMILY", "--cell", "r2", "D=5.5", "--cell", "r1",
                                   "TXT=a<b", "--language", "de", "--in-place"});
    EXPECT_EQ(0, run.status) << run.err;
    std::string& text = expected["edit.xml"];
    text = Replaced(text, "<![CDATA[4.5]]>", "5.5");
    text = Replaced(text, ">20</Cell>", ">20</Cell><Cell ColumnId=\"TXT\">a&lt;b</Cell>");
    std::string& strings = expected["strings/de.xml"];
    strings = Replaced(strings, "</CellString>",
                       "</CellString><CellString RowId=\"r1\">a&lt;b</CellString>");
    EXPECT_EQ(expected, family.Files());
}

TEST(SetCommand, OutputGoesBesideTheNewFamily)
{
    const EditedFamily family;
    const auto before = family.Files();
    std::filesystem::create_directories(family.Folder().Native(L"new"));
    for (const CString name : {L"new/copy.xml", L"copy.xml"}) {
        const Arguments arguments = {"set", "FAMILY", "--cell",         "r1",
                                     "D=7", "-o",     family.File(name)};
        EXPECT_EQ("", family.Output(arguments));
        for (const char* language : {"en", "de"}) {
            EXPECT_EQ(
                Replaced(Replaced(family.Table(family.Path(), language), " 3\r", " 7\r"),
                         "r1,{D},,3,20,60,180,3", "X"),
                Replaced(family.Table(family.File(name), language), "r1,{D},,7,20,140,980,7", "X"))
                << language;
        }
    }
    const auto after = family.Files();
    for (const auto& [name, bytes] : before) {
        EXPECT_EQ(bytes, after.at(name)) << name;
    }
    EXPECT_EQ(before.at("strings/de.xml"), after.at("new/de.xml"));
    EXPECT_NE(std::string::npos, after.at("new/copy.xml").find("<File FullFileName=\"de.xml\" />"));
    EXPECT_EQ(1U, after.count("copy.FamilyStrings.en.xml"));
    EXPECT_EQ(1U, after.count("de.xml"));
}

TEST(SetCommand, RefusalsNameTheFaultAndChangeNothing)
{
    const EditedFamily family;
    const auto before = family.Files();
    const struct {
        Arguments edit;
        int status;
        const char* part;
    } cases[] = {
        {{"--formula", "V={A}*{DD}"},
         1,
         "result 5, it refers to a column that there is not: there is no column \"DD\"; similar: "
         "D;"},
        {{"--formula", "V={QQQQ}"}, 1, "there are RID, STATUS, D, L, A, V, N, TXT"},
        {{"--formula", "V={A}*{D"},
         1,
         "result 2, its braces do not pair up: the \"{\" at character 5"},
        {{"--formula", "V=1}"}, 1, "the \"}\" at character 2 has no partner"},
        {{"--formula", "A={V}/{L}"}, 1, "result 1, its value depends on itself: A -> V -> A;"},
        {{"--formula", "D={V}/{L}/{L}"}, 1, ": D -> V -> D;"},
        {{"--formula", "V={A}*{L}", "--formula", "D={V}"}, 1, ": D -> V -> A -> D;"},
        {{"--formula", "L={V}"},
         1,
         "column V is of the type double, a formula of the type integer cannot refer to it"},
        {{"--formula", "L={L}"}, 1, ": L -> L;"},
        {{"--formula", "V=sine({D})"},
         1,
         "asked to compute \"sine(1.1)\" in mm3: \"sine\" is not a known function (at character "
         "1)"},
        {{"--formula", "N=3"}, 1, "result 4, its range is not valid"},
        {{"--cell", "r1", "D=wide"}, 1, "row r1, column D does not take the value \"wide\""},
        {{"--cell", "r1", "D={"}, 1, "the \"{\" at character 1 has no partner"},
        {{"--cell", "r1", "TXT={none}"}, 1, "there is no column \"none\""},
        {{"--cell", "r1", "N=21"}, 1, "it is none of the column's range [1;{L};1;{D}/1mm]"},
        {{"--cell", "r1", "N=1.5"}, 1, "range"},
        {{"--cell", "r1", "TXT= "}, 1, "blanks only"},
        {{"--cell", "r9", "D=1"}, 2, "there is no row \"r9\""},
        {{"--cell", "r1", "DIA=1"}, 2, "there is no column \"DIA\"; similar: D"},
        {{"--cell", "r1", "D"}, 2, "takes a name, \"=\" and a text, not 'D'"},
        {{"--property", "colour=red"}, 2, "there is no property 'colour'"},
        {{"--language", "fr", "--cell", "r1", "D=1"}, 2, "there are en, de"},
        {{}, 2, "nothing is to be set"},
    };
    for (const auto& [edit, status, part] : cases) {
        SCOPED_TRACE(part);
        // One that is right stands before each.
        Arguments arguments = {"set", "FAMILY", "--in-place"};
        if (!edit.empty()) {
            arguments.insert(arguments.end(), {"--property", "standard=S"});
        }
        arguments.insert(arguments.end(), edit.begin(), edit.end());
        ExpectRefusal(family.Run(arguments), status, part);
        EXPECT_EQ(before, family.Files());
    }
}

TEST(SetCommand, ItMustBeSaidWhereTheResultGoes)
{
    const EditedFamily family;
    const Arguments edits[] = {{"set", "FAMILY", "--cell", "r1", "D=1"},
                               {"row", "add", "FAMILY"},
                               {"column", "add", "FAMILY", "X"}};
    for (Arguments arguments : edits) {
        ExpectRefusal(family.Run(arguments), 2, "one of --dry-run, --in-place and -o");
        arguments.insert(arguments.end(), {"-o", family.File(L"strings/de.xml")});
        ExpectRefusal(family.Run(arguments), 2, "names a file that is read");
        arguments.emplace_back("--in-place");
        ExpectRefusal(family.Run(arguments), 2, "exclude each other");
    }
}

TEST(SetCommand, CellsWithoutAValueAreSavedAndTold)
{
    const EditedFamily family;
    const CliRun run = family.Run({"set", "FAMILY", "--cell", "r1", "D={V}/{L}/{L}", "--in-place"});
    EXPECT_EQ(1, run.status);
    EXPECT_NE(std::string::npos, run.err.find("row r1, column D: result 1"));
    EXPECT_NE(std::string::npos, family.Files()["edit.xml"].find(">{V}/{L}/{L}<"));
}

TEST(SetCommand, FailedWritesLeaveEveryFileWhole)
{
    const EditedFamily family;
    const auto before = family.Files();
    const Arguments arguments = {"set", "FAMILY", "--cell", "r1", "TXT=x", "--language", "de"};
    Arguments inPlace = arguments;
    inPlace.emplace_back("--in-place");
    for (int step = 1; step <= 6; ++step) {
        platform::FailReplaceStep(step);
        ExpectRefusal(family.Run(inPlace), 3, "the file cannot be written; nothing was changed");
        platform::FailReplaceStep(0);
        EXPECT_EQ(before, family.Files()) << step;
    }
    for (const CString output : {L"edit.xml/copy.xml", L"no/such/copy.xml", L"strings"}) {
        Arguments aside = arguments;
        aside.insert(aside.end(), {"-o", family.File(output)});
        ExpectRefusal(family.Run(aside), 3, "the file cannot be written; nothing was changed");
        EXPECT_EQ(before, family.Files());
    }
}

std::string Utf16(const std::string& utf8)
{
    std::string bytes = "\xFF\xFE";
    for (const char16_t unit : platform::WideToUtf16(platform::Utf8ToWide(utf8))) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

TEST(SetCommand, FilesKeepTheirEncodingAndTheirForm)
{
    const std::string body = "<F>\r\n<FamilyTable><Columns><Column ColumnId='T'/></Columns>\r\n"
                             "<Rows><Row RowId='1'><Cell ColumnId='T'>OLD</Cell></Row></Rows>"
                             "</FamilyTable></F>";
    const struct {
        const char* what;
        std::string before;
        std::string after;
    } cases[] = {
        {"no declaration", body, Replaced(body, "OLD", "\xC3\xA4")},
        {"a mark", "\xEF\xBB\xBF" + body, "\xEF\xBB\xBF" + Replaced(body, "OLD", "\xC3\xA4")},
        {"UTF-16", Utf16("<?xml version='1.0' encoding='UTF-16'?>" + body),
         Utf16("<?xml version='1.0' encoding='UTF-16'?>" + Replaced(body, "OLD", "\xC3\xA4"))},
        {"ASCII",
         "<?xml version=\"1.0\" encoding=\"us-ascii\"?>\n<F><FamilyTable><Columns>"
         "<Column ColumnId=\"T\"/></Columns><Rows><Row RowId=\"1\"/></Rows></FamilyTable></F>",
         "<?xml version=\"1.0\" encoding=\"us-ascii\"?>\n<F><FamilyTable><Columns>"
         "<Column ColumnId=\"T\"/></Columns><Rows><Row RowId=\"1\"><Cell ColumnId=\"T\">&#228;"
         "</Cell></Row></Rows></FamilyTable></F>\n"},
        {"Latin-1",
         "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<F a=\"\xFC\"><FamilyTable>"
         "<Columns><Column ColumnId=\"T\"/></Columns><Rows><Row RowId=\"1\"/></Rows>"
         "</FamilyTable></F>",
         "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<F a=\"\xFC\"><FamilyTable>"
         "<Columns><Column ColumnId=\"T\"/></Columns><Rows><Row RowId=\"1\"><Cell ColumnId=\"T\">"
         "\xE4</Cell></Row></Rows></FamilyTable></F>\n"},
    };
    const TemporaryFolder folder;
    for (const auto& [what, before, after] : cases) {
        SCOPED_TRACE(what);
        const std::string path = WriteFile(folder, L"f.xml", before);
        const CliRun run({"set", path, "--cell", "1", "T=\xC3\xA4", "--in-place"});
        EXPECT_EQ(0, run.status) << run.err;
        EXPECT_EQ(after, ReadFile(path));
    }
}

} // namespace
} // namespace encap::test
