#include "cli/TableFormats.h"

#include "cli/CellReader.h"
#include "cli/ColumnFacts.h"
#include "cli/Csv.h"
#include "cli/JsonWriter.h"
#include "cli/OpenFamily.h"
#include "cli/Results.h"
#include "cli/TextTable.h"
#include "encap/foundation/NumberText.h"

namespace encap::cli {
namespace {

bool IsShown(const CEncapFamilyColumn& column)
{
    return !column.IsHidden();
}

/// In brackets; nothing for a column without unit.
CString UnitHeading(const CEncapFamilyColumn& column)
{
    const CString unit = UnitOf(column);
    return unit.empty() || unit == L"ul" ? CString() : L"[" + unit + L"]";
}

void AddHeadings(TextTable& table, const CellReader& cells, const CString& language)
{
    table.AddColumn(TextTable::Alignment::Left, {L"Row"});
    for (const CEncapFamilyColumn* column : cells.Columns()) {
        if (!IsShown(*column)) {
            continue;
        }
        const CString title = TitleOf(*column, language);
        table.AddColumn(HoldsNumbers(*column) ? TextTable::Alignment::Right
                                              : TextTable::Alignment::Left,
                        {title.empty() ? IdOf(*column) : title, UnitHeading(*column)});
    }
}

void AppendMark(CString& value, CTableEvaluator::EvaluateResult result)
{
    if (!value.empty()) {
        value += L' ';
    }
    value += L'#' + FormatInteger(result) + L' ' + MarkOf(result);
}

void WriteHead(JsonWriter& json, const OpenFamily& opened)
{
    const CEncapFamily& family = opened.Family();
    CString text;
    json.Key(L"family");
    json.BeginObject();
    family.GetInternalName(text);
    json.Member(L"internalName", text);
    family.GetDisplayName(text);
    json.Member(L"displayName", text);
    family.GetCategoryID(text);
    json.Member(L"category", text);
    json.MemberBool(L"linked", family.IsLinked());
    json.EndObject();
    json.BreakLine(1);
    json.Member(L"language", opened.Language());
    json.Key(L"languages");
    json.BeginArray();
    for (const CString& language : opened.File().Languages()) {
        json.Text(language);
    }
    json.EndArray();
}

void WriteRow(JsonWriter& json, CellReader& cells, const std::vector<CString>& columnIds,
              std::size_t row, bool isSuppressed)
{
    json.BeginObject();
    json.Member(L"id", cells.RowIds()[row]);
    json.MemberBool(L"suppressed", isSuppressed);
    json.Key(L"cells");
    json.BeginObject();
    CString value;
    for (std::size_t column = 0; column < columnIds.size(); ++column) {
        const auto result = cells.Read(row, column, value);
        json.Key(columnIds[column]);
        json.BeginObject();
        json.Key(L"value");
        if (HasNoValue(result)) {
            json.Null();
        } else {
            json.Text(value);
        }
        json.MemberNumber(L"result", result);
        json.EndObject();
    }
    json.EndObject();
    json.EndObject();
}

std::vector<CString> IdsOf(const CellReader& cells)
{
    std::vector<CString> ids;
    for (const CEncapFamilyColumn* column : cells.Columns()) {
        ids.push_back(IdOf(*column));
    }
    return ids;
}

} // namespace

void PrintTableText(CellReader& cells, const OpenFamily& family, Results& results)
{
    TextTable table;
    AddHeadings(table, cells, family.Language());
    CString value;
    for (std::size_t row = 0; row < cells.RowIds().size(); ++row) {
        const CString& id = cells.RowIds()[row];
        const bool isSuppressed = family.Table().IsRowSuppressed(id.c_str());
        table.AddCell(isSuppressed ? id + L" (suppressed)" : id);
        for (std::size_t column = 0; column < cells.Columns().size(); ++column) {
            const auto result = cells.Read(row, column, value);
            if (result != CTableEvaluator::EvaluateOK) {
                AppendMark(value, result);
            }
            if (IsShown(*cells.Columns()[column])) {
                table.AddCell(value);
            }
        }
    }
    table.Print(results);
}

void PrintTableCsv(CellReader& cells, Results& results)
{
    AppendCsv(results.Text(), L"RowId");
    for (const CString& id : IdsOf(cells)) {
        results.Text() += ',';
        AppendCsv(results.Text(), id);
    }
    results.Text() += kCsvLineEnd;
    CString value;
    for (std::size_t row = 0; row < cells.RowIds().size(); ++row) {
        AppendCsv(results.Text(), cells.RowIds()[row]);
        for (std::size_t column = 0; column < cells.Columns().size(); ++column) {
            cells.Read(row, column, value);
            results.Text() += ',';
            AppendCsv(results.Text(), value);
        }
        results.Text() += kCsvLineEnd;
        results.Pass();
    }
}

void PrintTableJson(CellReader& cells, const OpenFamily& family, Results& results)
{
    JsonWriter json(results.Text());
    json.BeginObject();
    WriteHead(json, family);
    json.BreakLine(1);
    json.Key(L"columns");
    json.BeginArray();
    for (const CEncapFamilyColumn* column : cells.Columns()) {
        json.BreakLine(2);
        json.BeginObject();
        WriteColumnMembers(json, *column, family.Language());
        json.EndObject();
    }
    json.EndArray();
    json.BreakLine(1);
    json.Key(L"rows");
    json.BeginArray();
    const std::vector<CString> columnIds = IdsOf(cells);
    for (std::size_t row = 0; row < cells.RowIds().size(); ++row) {
        json.BreakLine(2);
        WriteRow(json, cells, columnIds, row,
                 family.Table().IsRowSuppressed(cells.RowIds()[row].c_str()));
        results.Pass();
    }
    json.EndArray();
    json.EndObject();
    results.Text() += '\n';
}

void PrintTableXml(CellReader& cells, const OpenFamily& family, Results& results)
{
    CString value;
    for (std::size_t row = 0; row < cells.RowIds().size(); ++row) {
        for (std::size_t column = 0; column < cells.Columns().size(); ++column) {
            cells.Read(row, column, value);
        }
    }
    CComBSTR xml;
    if (!family.Table().GetEvaluatedXml(xml)) {
        throw FileError(family.File().Path(), L"a row or a cell of the table has no ID");
    }
    std::wstring_view text(xml, xml.Length());
    if (text.starts_with(L"<?xml")) {
        const std::size_t end = text.find(L"?>");
        text.remove_prefix(text.find_first_not_of(L" \t\r\n", end + 2));
    }
    results.Text() += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    platform::AppendUtf8(results.Text(), text);
    if (!results.Text().ends_with('\n')) {
        results.Text() += '\n';
    }
}

} // namespace encap::cli
