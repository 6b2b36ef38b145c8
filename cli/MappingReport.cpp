#include "cli/MappingReport.h"

#include "cli/DisplayText.h"
#include "cli/JsonWriter.h"
#include "cli/MappingFacts.h"
#include "cli/OpenFamily.h"
#include "cli/Results.h"
#include "cli/TextTable.h"

#include <algorithm>
#include <unordered_map>

namespace encap::cli {
namespace {

constexpr const wchar_t* kProblem = L"Problem";
using Mnemonics = std::unordered_map<CString, CString>;

/// A table below a line that names it. The column for problems is there when one has been entered.
class Section {
public:
    Section(CString title, std::vector<CString> headings)
        : m_title(std::move(title)), m_headings(std::move(headings))
    {
    }

    /// REQUIRES: as many cells as headings.
    void AddRow(std::vector<CString> cells, const CString& problem)
    {
        m_hasProblems = m_hasProblems || !problem.empty();
        cells.push_back(problem);
        m_rows.push_back(std::move(cells));
    }
    void Print(Results& results) const;

private:
    CString m_title;
    std::vector<CString> m_headings;
    std::vector<std::vector<CString>> m_rows;
    bool m_hasProblems = false;
};

void Section::Print(Results& results) const
{
    results.Text() += '\n';
    AppendForDisplay(results.Text(), m_title);
    if (m_rows.empty()) {
        results.Text() += ": none\n";
        return;
    }
    results.Text() += '\n';
    TextTable table;
    for (const CString& heading : m_headings) {
        table.AddColumn(TextTable::Alignment::Left, {heading});
    }
    if (m_hasProblems) {
        table.AddColumn(TextTable::Alignment::Left, {kProblem});
    }
    for (const std::vector<CString>& row : m_rows) {
        for (std::size_t i = 0; i < m_headings.size() + (m_hasProblems ? 1 : 0); ++i) {
            table.AddCell(row[i]);
        }
    }
    table.Print(results);
}

CString Shown(const OptionalText& text)
{
    return text.value_or(CString());
}

CString Joined(const CString& left, const CString& right)
{
    return left + (left.empty() || right.empty() ? L"" : L"; ") + right;
}

void PrintDrivingColumns(const MappingFacts& facts, Results& results)
{
    Section section(
        L"Template parameters that columns drive",
        {L"Column", L"Template", L"Id", L"Object type", L"Reference key", L"Sub-object"});
    for (const ColumnMapping& column : facts.columns) {
        for (const DrivenParameter& driven : column.drives) {
            section.AddRow({Shown(column.id), Shown(driven.templateName), Shown(driven.parameterId),
                            Shown(driven.object.objectType), Shown(driven.object.referenceKey),
                            Shown(driven.object.subObjectId)},
                           Joined(column.problem, driven.problem));
        }
        if (column.drives.empty() && column.supplies.empty() && !column.problem.empty()) {
            section.AddRow({Shown(column.id), {}, {}, {}, {}, {}}, column.problem);
        }
    }
    section.Print(results);
}

void PrintSupplyingColumns(const MappingFacts& facts, Results& results)
{
    Section section(L"Category parameters that columns supply",
                    {L"Column", L"Mnemonic", L"Category parameter", L"Category"});
    for (const ColumnMapping& column : facts.columns) {
        for (const CategoryParameter& parameter : column.supplies) {
            section.AddRow({Shown(column.id), Shown(parameter.mnemonic), Shown(parameter.id),
                            Shown(parameter.category)},
                           Joined(column.problem, parameter.problem));
        }
    }
    section.Print(results);
}

CString DriversOf(const TemplateParameter& parameter, const Mnemonics& mnemonics)
{
    CString drivers;
    const auto add = [&drivers](const CString& text) {
        drivers += (drivers.empty() ? L"" : L", ") + text;
    };
    for (const CString& column : parameter.columns) {
        add(L"column " + column);
    }
    for (const CString& constant : parameter.constants) {
        const auto mnemonic = mnemonics.find(constant);
        add(L"constant " + (mnemonic != mnemonics.end() ? mnemonic->second : constant));
    }
    return drivers;
}

void AddParameters(Section& section, const std::vector<TemplateParameter>& parameters,
                   const CString& indent, const Mnemonics& mnemonics)
{
    for (const TemplateParameter& parameter : parameters) {
        section.AddRow({indent + Shown(parameter.id), Shown(parameter.object.objectType),
                        Shown(parameter.object.referenceKey), Shown(parameter.object.subObjectId),
                        Shown(parameter.valueType), Shown(parameter.unit),
                        DriversOf(parameter, mnemonics)},
                       parameter.problem);
        AddParameters(section, parameter.parameters, indent + L"  ", mnemonics);
    }
}

CString TitleOf(const TemplateFacts& facts)
{
    CString title = L"Template " + (facts.name ? L"\"" + *facts.name + L"\"" : L"without a name");
    title += facts.fileName ? L" (" + *facts.fileName + L")" : L" (no file)";
    if (facts.name && !facts.problem.empty()) {
        title += L", passed over: " + facts.problem;
    }
    return title + L", parameters";
}

void PrintTemplates(const MappingFacts& facts, Results& results)
{
    Mnemonics mnemonics;
    for (const ConstantMapping& constant : facts.constants) {
        if (constant.parameter.id && constant.parameter.mnemonic) {
            mnemonics.emplace(*constant.parameter.id, *constant.parameter.mnemonic);
        }
    }
    if (facts.templates.empty()) {
        results.Text() += "\nTemplates: none\n";
    }
    for (const TemplateFacts& one : facts.templates) {
        Section section(TitleOf(one), {L"Id", L"Object type", L"Reference key", L"Sub-object",
                                       L"Type", L"Unit", L"Driven by"});
        AddParameters(section, one.parameters, {}, mnemonics);
        section.Print(results);
    }
}

/// The constant's own value first, then a row a language, then a row a parameter that it drives but
/// the first, which stands in the first row.
void AddConstant(Section& section, const ConstantMapping& constant)
{
    const CategoryParameter& parameter = constant.parameter;
    std::vector<std::vector<CString>> rows;
    rows.push_back({Shown(parameter.mnemonic), Shown(parameter.id), {}, Shown(constant.value)});
    for (const auto& [language, value] : constant.localizedValues) {
        const bool isRead = constant.isLocalized;
        rows.push_back({{}, {}, language + (isRead ? L"" : L" (not read)"), value});
    }
    std::vector<CString> problems(std::max(rows.size(), constant.drives.size()));
    problems.front() = parameter.problem;
    for (std::size_t i = 0; i < problems.size(); ++i) {
        if (i == rows.size()) {
            rows.push_back({{}, {}, {}, {}});
        }
        CString target;
        if (i < constant.drives.size()) {
            const DrivenParameter& driven = constant.drives[i];
            target = Shown(driven.templateName) + L" " + Shown(driven.parameterId);
            problems[i] = Joined(problems[i], driven.problem);
        }
        rows[i].push_back(target);
        section.AddRow(rows[i], problems[i]);
    }
}

void PrintConstants(const MappingFacts& facts, Results& results)
{
    Section section(
        L"Constants of category parameters",
        {L"Mnemonic", L"Category parameter", L"Language", L"Value", L"Drives parameter"});
    for (const ConstantMapping& constant : facts.constants) {
        AddConstant(section, constant);
    }
    section.Print(results);
}

void WriteMember(JsonWriter& json, const wchar_t* name, const OptionalText& text)
{
    json.Key(name);
    if (text) {
        json.Text(*text);
    } else {
        json.Null();
    }
}

void WriteProblem(JsonWriter& json, const CString& problem)
{
    WriteMember(json, L"problem", problem.empty() ? std::nullopt : OptionalText(problem));
}

void WriteObject(JsonWriter& json, const ModelObject& object)
{
    WriteMember(json, L"objectType", object.objectType);
    WriteMember(json, L"objectReferenceKey", object.referenceKey);
    WriteMember(json, L"subObjectId", object.subObjectId);
}

void WriteDriven(JsonWriter& json, const std::vector<DrivenParameter>& drives)
{
    json.Key(L"drives");
    json.BeginArray();
    for (const DrivenParameter& driven : drives) {
        json.BeginObject();
        WriteMember(json, L"template", driven.templateName);
        WriteMember(json, L"parameterId", driven.parameterId);
        WriteObject(json, driven.object);
        WriteProblem(json, driven.problem);
        json.EndObject();
    }
    json.EndArray();
}

void WriteCategoryParameter(JsonWriter& json, const CategoryParameter& parameter)
{
    WriteMember(json, L"id", parameter.id);
    WriteMember(json, L"category", parameter.category);
    WriteMember(json, L"mnemonic", parameter.mnemonic);
    WriteProblem(json, parameter.problem);
}

void WriteColumn(JsonWriter& json, const ColumnMapping& column)
{
    json.BeginObject();
    WriteMember(json, L"id", column.id);
    WriteDriven(json, column.drives);
    json.Key(L"supplies");
    json.BeginArray();
    for (const CategoryParameter& parameter : column.supplies) {
        json.BeginObject();
        WriteCategoryParameter(json, parameter);
        json.EndObject();
    }
    json.EndArray();
    WriteProblem(json, column.problem);
    json.EndObject();
}

void WriteTexts(JsonWriter& json, const wchar_t* name, const std::vector<CString>& texts)
{
    json.Key(name);
    json.BeginArray();
    for (const CString& text : texts) {
        json.Text(text);
    }
    json.EndArray();
}

void WriteParameters(JsonWriter& json, const std::vector<TemplateParameter>& parameters, int indent)
{
    json.Key(L"parameters");
    json.BeginArray();
    for (const TemplateParameter& parameter : parameters) {
        json.BreakLine(indent);
        json.BeginObject();
        WriteMember(json, L"id", parameter.id);
        WriteObject(json, parameter.object);
        WriteMember(json, L"type", parameter.valueType);
        WriteMember(json, L"unit", parameter.unit);
        WriteTexts(json, L"columns", parameter.columns);
        WriteTexts(json, L"constants", parameter.constants);
        WriteProblem(json, parameter.problem);
        WriteParameters(json, parameter.parameters, indent + 1);
        json.EndObject();
    }
    json.EndArray();
}

void WriteTemplate(JsonWriter& json, const TemplateFacts& facts, int indent)
{
    json.BeginObject();
    WriteMember(json, L"name", facts.name);
    WriteMember(json, L"fileName", facts.fileName);
    WriteProblem(json, facts.problem);
    WriteParameters(json, facts.parameters, indent);
    json.EndObject();
}

void WriteConstant(JsonWriter& json, const ConstantMapping& constant)
{
    json.BeginObject();
    WriteCategoryParameter(json, constant.parameter);
    json.MemberBool(L"localized", constant.isLocalized);
    WriteMember(json, L"value", constant.value);
    json.Key(L"localizedValues");
    json.BeginArray();
    for (const auto& [language, value] : constant.localizedValues) {
        json.BeginObject();
        json.Member(L"language", language);
        json.Member(L"value", value);
        json.EndObject();
    }
    json.EndArray();
    WriteDriven(json, constant.drives);
    json.EndObject();
}

/// An array with an item a line.
template <class Item, class Write>
void WriteLines(JsonWriter& json, const wchar_t* name, const std::vector<Item>& items, Write write)
{
    json.BreakLine(2);
    json.Key(name);
    json.BeginArray();
    for (const Item& item : items) {
        json.BreakLine(3);
        write(json, item);
    }
    json.EndArray();
}

} // namespace

void PrintMapping(const OpenFamily& opened, Results& results)
{
    const MappingFacts facts = ReadMapping(opened.Family());
    PrintDrivingColumns(facts, results);
    PrintSupplyingColumns(facts, results);
    PrintTemplates(facts, results);
    PrintConstants(facts, results);
}

void WriteMapping(JsonWriter& json, const OpenFamily& opened)
{
    const MappingFacts facts = ReadMapping(opened.Family());
    json.BeginObject();
    WriteLines(json, L"columns", facts.columns, WriteColumn);
    WriteLines(json, L"templates", facts.templates,
               [](JsonWriter& out, const TemplateFacts& one) { WriteTemplate(out, one, 4); });
    WriteLines(json, L"constants", facts.constants, WriteConstant);
    json.EndObject();
}

} // namespace encap::cli
