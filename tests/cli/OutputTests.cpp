#include "cli/Console.h"
#include "cli/DisplayText.h"
#include "cli/JsonWriter.h"
#include "cli/Results.h"
#include "cli/TextTable.h"
#include "tests/cli/CliRun.h"

namespace encap::test {
namespace {

TEST(DisplayText, CountsColumnsAndStaysOnOneLine)
{
    const struct {
        const wchar_t* text;
        std::size_t columns;
        const char* shown;
    } cases[] = {
        {L"", 0, ""},
        {L"M8 x 20", 7, "M8 x 20"},
        {L"Gr\xF6\xDF"
         L"e",
         5,
         "Gr\xC3\xB6\xC3\x9F"
         "e"},
        {L"\u76F4\u5F84", 4, "\xE7\x9B\xB4\xE5\xBE\x84"},
        {L"e\u0301a\u200B", 2,
         "e\xCC\x81"
         "a\xE2\x80\x8B"},
        {L"a\tb\nc", 5,
         "a\xE2\x90\x89"
         "b\xE2\x90\x8A"
         "c"},
        {L"\x1B[31m\x7F", 6, "\xE2\x90\x9B[31m\xE2\x90\xA1"},
        {L"\x85\u2028", 2, "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {L"\U0001F600", 2, "\xF0\x9F\x98\x80"},
    };
    for (const auto& [text, columns, shown] : cases) {
        std::string out;
        EXPECT_EQ(columns, cli::AppendForDisplay(out, text)) << shown;
        EXPECT_EQ(shown, out);
    }
}

TEST(TextTable, AlignsByWidth)
{
    std::ostringstream out;
    std::ostringstream err;
    cli::Console console(out, err);
    cli::Results results(console, L"");
    cli::TextTable table;
    table.AddColumn(cli::TextTable::Alignment::Left, {L"Name"});
    table.AddColumn(cli::TextTable::Alignment::Right, {L"D", L"[mm]", L""});
    table.AddColumn(cli::TextTable::Alignment::Left, {L"\u76F4"});
    for (const wchar_t* cell : {L"\u76F4\u5F84\u5F84", L"1", L"", L"b", L"12.25", L"z"}) {
        table.AddCell(cell);
    }
    table.Print(results);
    results.Finish();
    EXPECT_EQ("Name        D  \xE7\x9B\xB4\n"
              "         [mm]\n"
              "------  -----  --\n"
              "\xE7\x9B\xB4\xE5\xBE\x84\xE5\xBE\x84      1\n"
              "b       12.25  z\n",
              out.str());
}

TEST(JsonWriter, SeparatesAndEscapes)
{
    std::string out;
    cli::JsonWriter json(out);
    json.BeginObject();
    json.Member(L"a\"b", L"\\ \x01\n\x7F \u76F4");
    json.BreakLine(1);
    json.MemberNumber(L"n", -9007199254740993);
    json.MemberBool(L"t", true);
    json.Key(L"empty");
    json.BeginArray();
    json.EndArray();
    json.Key(L"list");
    json.BeginArray();
    json.Null();
    json.BreakLine(2);
    json.BeginObject();
    json.EndObject();
    json.Text(CString(1, static_cast<wchar_t>(0xD800)));
    json.EndArray();
    json.EndObject();
    EXPECT_EQ("{\"a\\\"b\": \"\\\\ \\u0001\\n\x7F \xE7\x9B\xB4\",\n"
              " \"n\": -9007199254740993, \"t\": true, \"empty\": [], \"list\": [null,\n"
              "  {}, \"\xEF\xBF\xBD\"]}",
              out);
}

} // namespace
} // namespace encap::test
