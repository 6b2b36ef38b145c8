#include "tests/cli/EditedFamily.h"

namespace encap::test {
namespace {

using Arguments = std::vector<std::string>;

TEST(RowCommand, EditsTheDocumentAsItIsLaidOut)
{
    const EditedFamily family;
    const std::string before = family.Files()["edit.xml"];
    EXPECT_EQ("r0\n",
              family.Output({"row", "add", "FAMILY", "--id", "r0", "--at", "1", "--in-place"}));
    EXPECT_EQ("r3\n", family.Output({"row", "copy", "FAMILY", "r2", "--id", "r3", "--in-place",
                                     "--language", "de"}));
    std::string expected =
        Replaced(before, "<!-- the first -->\n",
                 "<!-- the first -->\n"
                 "\t\t\t<Row RowId=\"r0\"><Cell ColumnId=\"RID\">r0</Cell></Row>\n");
    const std::string rowEnd = "<Cell ColumnId=\"A\">{D}*3mm</Cell></Row>\n";
    expected = Replaced(expected, rowEnd,
                        rowEnd + "\t\t\t<Row RowId=\"r3\"><Cell ColumnId=\"RID\">r3</Cell>"
                                 "<Cell ColumnId=\"D\">4.5</Cell><Cell ColumnId=\"L\">30</Cell>"
                                 "<Cell ColumnId=\"A\">13.5</Cell></Row>\n");
    EXPECT_EQ(expected, family.Files()["edit.xml"]);
    EXPECT_EQ("edit.xml\n  FamilyTable/Rows/Row[r3]: moved from position 4 to 1\n",
              family.Output({"row", "move", "FAMILY", "R3", "--to", "1", "--dry-run"}));
    EXPECT_EQ("", family.Output({"row", "move", "FAMILY", "r0", "--to", "4", "--in-place"}));
    EXPECT_EQ("", family.Output({"row", "delete", "FAMILY", "r0", "--in-place"}));
    EXPECT_EQ("", family.Output({"row", "delete", "FAMILY", "r3", "--in-place"}));
    EXPECT_EQ(before, family.Files()["edit.xml"]);
}

TEST(ColumnCommand, EditsAreListed)
{
    const EditedFamily family;
    const struct {
        Arguments arguments;
        std::string lines;
    } cases[] = {
        {{"add", "FAMILY", "W", "--type", "double", "--unit", "mm", "--title", "Width", "--formula",
          "{D}*2", "--at", "5"},
         "edit.xml\n  FamilyTable/Columns/Column[W]: added at position 5 Title=\"Width\" "
         "KeyWeight=\"0\" Hidden=\"false\" ValueType=\"double\" UnitType=\"mm\" "
         "ColumnwideValue=\"{D}*2\"\n"},
        {{"copy", "FAMILY", "a", "AA", "--at", "1"},
         "edit.xml\n  FamilyTable/Columns/Column[AA]: added at position 1 ValueType=\"double\" "
         "UnitType=\"mm2\" ColumnwideValue=\"{ d }*{L}\" KeyWeight=\"0\" Hidden=\"false\" "
         "Title=\"AA\"\n  FamilyTable/Rows/Row[r2]/Cell[AA]: added at position 5 \"{D}*3mm\"\n"},
        {{"move", "FAMILY", "L", "--to", "8"},
         "edit.xml\n  FamilyTable/Columns/Column[L]: moved from position 4 to 8\n"},
        {{"delete", "FAMILY", "L", "--force"},
         "edit.xml\n  FamilyTable/Columns/Column[L]: removed Title=\"Length\" "
         "ValueType=\"integer\" UnitType=\"mm\"\n"
         "  FamilyTable/Rows/Row[r1]/Cell[L]: removed \"20\"\n"
         "  FamilyTable/Rows/Row[r2]/Cell[L]: removed \"30\"\n"},
    };
    for (const auto& [arguments, lines] : cases) {
        SCOPED_TRACE(arguments.front());
        Arguments all = {"column"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        all.emplace_back("--dry-run");
        EXPECT_EQ(lines, family.Output(all));
    }
}

TEST(RowAndColumnCommands, RefusalsChangeNothing)
{
    const EditedFamily family;
    const auto before = family.Files();
    const struct {
        Arguments arguments;
        int status;
        const char* part;
    } cases[] = {
        {{"row"}, 2, "FAMILY.xml is required"},
        {{"row", "grow", "FAMILY"}, 2, "'grow' is none of add, delete, copy, move"},
        {{"row", "add", "FAMILY", "--id", "R1"}, 1, "there is a row \"R1\" already"},
        {{"row", "add", "FAMILY", "--at", "4"}, 2, "there is no position 4, the last one is 3"},
        {{"row", "add", "FAMILY", "--at", "0"}, 2, "'0' is no whole number"},
        {{"row", "move", "FAMILY", "r1", "--to", "3"}, 2, "the last one is 2"},
        {{"row", "move", "FAMILY", "r1"}, 2, "'row move' needs --to"},
        {{"row", "delete", "FAMILY"}, 2, "'row delete' needs ROW"},
        {{"row", "delete", "FAMILY", "r9"}, 2, "there is no row \"r9\""},
        {{"column", "add", "FAMILY", "l"}, 1, "there is a column \"l\" already"},
        {{"column", "add", "FAMILY", "1X"}, 1, "\"1X\" is no column ID"},
        {{"column", "add", "FAMILY", "X", "--unit", "smoot"}, 1, "there is no unit \"smoot\""},
        {{"column", "add", "FAMILY", "X", "--formula", "{X}"}, 1, ": X -> X;"},
        {{"column", "move", "FAMILY", "D", "--at", "1"}, 2, "'column move' takes no --at"},
        {{"column", "delete", "FAMILY", "L"},
         1,
         "formulas refer to the column L: column A; column N;"},
        {{"column", "delete", "FAMILY", "D"},
         1,
         "row r2, column A; column TXT in de; row r2, column TXT"},
        {{"column", "rename", "FAMILY", "D"}, 2, "'column rename' needs NEW"},
        {{"column", "rename", "FAMILY", "D", "l"}, 1, "there is a column \"l\" already"},
        {{"column", "rename", "FAMILY", "D", "a b"}, 1, "is no column ID"},
        {{"column", "rename", "FAMILY", "RID", "ROW"}, 1, "RID has a fixed meaning"},
        {{"column", "rename", "FAMILY", "D", "Status"}, 1, "Status has a fixed meaning"},
    };
    for (const auto& [arguments, status, part] : cases) {
        SCOPED_TRACE(part);
        Arguments all = arguments;
        all.emplace_back("--in-place");
        ExpectRefusal(family.Run(all), status, part);
        EXPECT_EQ(before, family.Files());
    }
}

TEST(ColumnRename, EveryReferenceFollowsAndNoValueChanges)
{
    const EditedFamily family;
    auto expected = family.Files();
    std::map<std::string, std::string> values;
    for (const char* language : {"en", "de"}) {
        values[language] = family.Table(family.Path(), language);
    }
    EXPECT_EQ("", family.Output({"column", "rename", "FAMILY", "d", "DIA", "--in-place"}));
    for (auto& [name, text] : expected) {
        for (const auto& [from, to] : {std::pair("{D}", "{DIA}"), std::pair("{ d }", "{ DIA }"),
                                       std::pair("\"D\"", "\"DIA\""), std::pair("'D'", "'DIA'"),
                                       std::pair(">{DIA}</Cell><Cell ColumnId=\"DIA\"",
                                                 ">{D}</Cell><Cell ColumnId=\"DIA\"")}) {
            text = Replaced(text, from, to);
        }
    }
    EXPECT_EQ(expected, family.Files());
    for (const auto& [language, table] : values) {
        EXPECT_EQ(Replaced(table, ",D,", ",DIA,"), family.Table(family.Path(), language));
    }
    // There and back gives every byte; the references written in lower case come back as the ID.
    EXPECT_EQ("", family.Output({"column", "rename", "FAMILY", "DIA", "dia", "--in-place"}));
    EXPECT_EQ("", family.Output({"column", "rename", "FAMILY", "dia", "DIA", "--in-place"}));
    EXPECT_EQ(expected, family.Files());
}

// The new name is one that formulas, cells or strings use although there is no such column.
TEST(ColumnRename, RefusedWhereItWouldChangeMeanings)
{
    const struct {
        const char* from;
        const char* to;
        const char* part;
    } cases[] = {
        {"{A}*{D}", "{A}*{X}", "would change values: row r1, column V"},
        {"<Cell ColumnId=\"L\">30<", "<Cell ColumnId=\"x\">3</Cell><Cell ColumnId=\"L\">30<",
         "of a column X that the table does not have"},
        {"TableColumn=\"TXT\"", "TableColumn=\"X\"", "of a column X"},
    };
    for (const auto& [from, to, part] : cases) {
        const EditedFamily family;
        WriteFile(family.Folder(), L"edit.xml", Replaced(family.Files()["edit.xml"], from, to));
        const auto before = family.Files();
        ExpectRefusal(family.Run({"column", "rename", "FAMILY", "D", "X", "--in-place"}), 1, part);
        EXPECT_EQ(before, family.Files());
    }
}

} // namespace
} // namespace encap::test
