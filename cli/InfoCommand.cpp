#include "cli/InfoCommand.h"

#include "cli/ColumnFacts.h"
#include "cli/JsonWriter.h"
#include "cli/MappingReport.h"
#include "cli/OpenFamily.h"
#include "cli/Options.h"
#include "cli/Results.h"
#include "cli/TextTable.h"
#include "encap/foundation/NumberText.h"
#include "encap/table/FamilyTable.h"

namespace encap::cli {
namespace {

enum Format : int { kText, kJson };

class InfoCommand : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    CString m_path;
    FamilyOptions m_family;
    int m_format = kText;
    bool m_withMapping = false;
    CString m_output;
};

struct Property {
    const wchar_t* label;
    const wchar_t* key;
    void (CEncapFamily::*read)(CString&) const;
};

constexpr Property kProperties[] = {
    {L"Internal name", L"internalName", &CEncapFamily::GetInternalName},
    {L"Display name", L"displayName", &CEncapFamily::GetDisplayName},
    {L"Description", L"description", &CEncapFamily::GetDescription},
    {L"Category", L"category", &CEncapFamily::GetCategoryID},
    {L"Standard", L"standard", &CEncapFamily::GetStandard},
    {L"Standards organization", L"standardsOrganization", &CEncapFamily::GetStandardOrg},
    {L"Standard revision", L"standardRevision", &CEncapFamily::GetStandardRevision},
    {L"Manufacturer", L"manufacturer", &CEncapFamily::GetManufacturer},
    {L"Family revision", L"familyRevision", &CEncapFamily::GetFamilyRevision},
    {L"Revision identifier", L"revisionId", &CEncapFamily::GetRevisionID},
    {L"Library", L"library", &CEncapFamily::GetLibInterName},
    {L"Parent library", L"parentLibrary", &CEncapFamily::GetParenLibName},
    {L"Parent family", L"parentFamily", &CEncapFamily::GetParentFamilyName},
    {L"Folder", L"folderName", &CEncapFamily::GetFolderName},
    {L"Thumbnail", L"thumbnail", &CEncapFamily::GetThumbnailPath},
    {L"Health status", L"healthStatus", &CEncapFamily::GetHealthStatus},
    {L"Edit status", L"editStatus", &CEncapFamily::GetEditStatus},
};

struct Counts {
    explicit Counts(const CEncapFamilyTable& table);

    std::size_t rows = 0;
    std::size_t suppressedRows = 0;
    std::size_t columns = 0;
    std::size_t formulaColumns = 0;
    std::size_t hiddenColumns = 0;
    std::size_t customColumns = 0;
    std::size_t keyColumns = 0;
};

Counts::Counts(const CEncapFamilyTable& table)
    : rows(table.GetAllRowIDs().size()), columns(table.GetAllColumnIDs().size())
{
    for (const CString& id : table.GetAllRowIDs()) {
        suppressedRows += table.IsRowSuppressed(id.c_str()) ? 1 : 0;
    }
    for (const CEncapFamilyColumn* column : ColumnsOf(table)) {
        formulaColumns += column->IsExpressionColumn() ? 1 : 0;
        hiddenColumns += column->IsHidden() ? 1 : 0;
        customColumns += column->IsCustom() ? 1 : 0;
        keyColumns += column->IsKeyColumn() ? 1 : 0;
    }
}

CString Joined(const std::vector<CString>& texts)
{
    CString joined;
    for (const CString& text : texts) {
        joined += (joined.empty() ? L"" : L", ") + text;
    }
    return joined;
}

/// "12", with the parts of it that are not 0 behind: "12, 2 suppressed".
CString CountText(std::size_t all,
                  std::initializer_list<std::pair<std::size_t, const wchar_t*>> parts)
{
    CString text = FormatInteger(static_cast<int64_t>(all));
    for (const auto& [count, name] : parts) {
        if (count > 0) {
            text += L", " + FormatInteger(static_cast<int64_t>(count)) + L' ' + name;
        }
    }
    return text;
}

CString LinkText(const CEncapFamily& family)
{
    if (!family.IsLinked()) {
        return L"no";
    }
    CString library;
    CString source;
    family.GetCopyFrom(library);
    family.GetSourceMoniker(source);
    return L"to " + source + L" of " + library + (family.IsSrcActive() ? L"" : L" (not active)");
}

void PrintFacts(const OpenFamily& opened, Results& results)
{
    const CEncapFamily& family = opened.Family();
    const Counts counts(opened.Table());
    TextTable facts;
    facts.AddColumn(TextTable::Alignment::Left, {});
    facts.AddColumn(TextTable::Alignment::Left, {});
    const auto add = [&facts](const wchar_t* label, const CString& value) {
        facts.AddCell(label);
        facts.AddCell(value);
    };
    CString value;
    for (const Property& property : kProperties) {
        (family.*property.read)(value);
        if (!value.empty()) {
            add(property.label, value);
        }
    }
    add(L"Kind", family.IsFeature() ? L"feature" : L"part");
    add(L"Languages",
        opened.File().Strings().empty() ? L"none" : Joined(opened.File().Languages()));
    add(L"Linked", LinkText(family));
    add(L"Rows", CountText(counts.rows, {{counts.suppressedRows, L"suppressed"}}));
    add(L"Columns", CountText(counts.columns, {{counts.formulaColumns, L"with a formula"},
                                               {counts.keyColumns, L"in the key"},
                                               {counts.customColumns, L"custom"},
                                               {counts.hiddenColumns, L"hidden"}}));
    facts.Print(results);
}

CString RolesOf(const CEncapFamilyColumn& column)
{
    std::vector<CString> roles;
    const auto add = [&roles](bool holds, const wchar_t* name) {
        if (holds) {
            roles.emplace_back(name);
        }
    };
    add(column.IsHidden(), L"hidden");
    add(column.IsCustom(), L"custom");
    add(column.IsLocalized(), L"localized");
    add(column.IsStatusColumn(), L"status");
    add(column.GetColumnType() == CEncapFamilyColumn::ColumnTypeFileName, L"file name");
    add(column.IsMaterial(), L"material");
    add(column.GetColumnType() > CEncapFamilyColumn::ColumnTypeMaterial, L"restricted");
    return Joined(roles);
}

void PrintColumns(const OpenFamily& opened, Results& results)
{
    TextTable table;
    for (const wchar_t* heading : {L"Column", L"Title", L"Type", L"Unit"}) {
        table.AddColumn(TextTable::Alignment::Left, {heading});
    }
    table.AddColumn(TextTable::Alignment::Right, {L"Key"});
    table.AddColumn(TextTable::Alignment::Left, {L"Flags"});
    table.AddColumn(TextTable::Alignment::Left, {L"Formula"});
    for (const CEncapFamilyColumn* column : ColumnsOf(opened.Table())) {
        table.AddCell(IdOf(*column));
        table.AddCell(TitleOf(*column, opened.Language()));
        table.AddCell(TypeWordOf(*column));
        table.AddCell(UnitOf(*column));
        table.AddCell(column->IsKeyColumn() ? FormatInteger(column->GetKeyWeight()) : CString());
        table.AddCell(RolesOf(*column));
        table.AddCell(FormulaOf(*column));
    }
    table.Print(results);
}

void WriteProperties(JsonWriter& json, const CEncapFamily& family)
{
    CString value;
    for (const Property& property : kProperties) {
        (family.*property.read)(value);
        json.BreakLine(1);
        json.Member(property.key, value);
    }
    json.BreakLine(1);
    json.MemberBool(L"feature", family.IsFeature());
    json.BreakLine(1);
    json.MemberBool(L"linked", family.IsLinked());
    json.BreakLine(1);
    json.Key(L"source");
    if (!family.IsLinked()) {
        json.Null();
        return;
    }
    json.BeginObject();
    family.GetCopyFrom(value);
    json.Member(L"library", value);
    family.GetSourceMoniker(value);
    json.Member(L"family", value);
    json.MemberBool(L"active", family.IsSrcActive());
    json.EndObject();
}

void WriteLanguages(JsonWriter& json, const OpenFamily& opened)
{
    json.BreakLine(1);
    json.Member(L"language", opened.Language());
    json.BreakLine(1);
    json.Key(L"languages");
    json.BeginArray();
    for (const CString& language : opened.File().Languages()) {
        json.Text(language);
    }
    json.EndArray();
}

void WriteCounts(JsonWriter& json, const CEncapFamilyTable& table)
{
    const Counts counts(table);
    const auto write = [&json](const wchar_t* name, std::size_t count) {
        json.MemberNumber(name, static_cast<int64_t>(count));
    };
    json.BreakLine(1);
    json.Key(L"counts");
    json.BeginObject();
    write(L"rows", counts.rows);
    write(L"suppressedRows", counts.suppressedRows);
    write(L"columns", counts.columns);
    write(L"formulaColumns", counts.formulaColumns);
    write(L"keyColumns", counts.keyColumns);
    write(L"customColumns", counts.customColumns);
    write(L"hiddenColumns", counts.hiddenColumns);
    json.EndObject();
}

void PrintJson(const OpenFamily& opened, bool withMapping, Results& results)
{
    JsonWriter json(results.Text());
    json.BeginObject();
    json.Member(L"file", opened.File().Path());
    WriteProperties(json, opened.Family());
    WriteLanguages(json, opened);
    WriteCounts(json, opened.Table());
    json.BreakLine(1);
    json.Key(L"columns");
    json.BeginArray();
    for (const CEncapFamilyColumn* column : ColumnsOf(opened.Table())) {
        json.BreakLine(2);
        json.BeginObject();
        WriteColumnMembers(json, *column, opened.Language());
        json.EndObject();
    }
    json.EndArray();
    if (withMapping) {
        json.BreakLine(1);
        json.Key(L"mapping");
        WriteMapping(json, opened);
    }
    json.EndObject();
    results.Text() += '\n';
}

void InfoCommand::Declare(Options& options)
{
    options.Argument(m_path, "FAMILY.xml", "The family document");
    options.Choice(m_format, "--format", {"text", "json"}, "What to print (default: text)");
    options.Flag(m_withMapping, "--mapping",
                 "Also what the columns drive and supply, the templates and the constants");
    m_family.Declare(options);
    options.Text(m_output, "-o,--output", "FILE", "Write to this file instead of standard output");
}

ExitStatus InfoCommand::Run(Console& console)
{
    FamilyHost host;
    const OpenFamily family(m_path, m_family, host);
    family.File().RequireNotRead(m_output);
    Results results(console, m_output);
    if (m_format == kJson) {
        PrintJson(family, m_withMapping, results);
    } else {
        PrintFacts(family, results);
        results.Text() += '\n';
        PrintColumns(family, results);
        if (m_withMapping) {
            PrintMapping(family, results);
        }
    }
    results.Finish();
    return ExitStatus::Done;
}

} // namespace

std::unique_ptr<Command> MakeInfoCommand()
{
    return std::make_unique<InfoCommand>();
}

} // namespace encap::cli
