#include "cli/TocReport.h"

#include "cli/JsonWriter.h"
#include "cli/NodeReads.h"
#include "cli/Results.h"
#include "cli/TextTable.h"
#include "cli/TocFile.h"
#include "encap/foundation/NumberText.h"
#include "encap/toc/TocCategory.h"

namespace encap::cli {
namespace {

constexpr std::size_t kIndent = 2;

/// An attribute that is shown: its name in the document, in JSON and as text.
struct ShownAttribute {
    const wchar_t* attribute;
    const wchar_t* key;
    const wchar_t* label;
};

constexpr ShownAttribute kFamilyAttributes[] = {
    {L"InternalName", L"internalName", L"Internal name"},
    {L"DisplayName", L"displayName", L"Display name"},
    {L"Description", L"description", L"Description"},
    {L"Standard", L"standard", L"Standard"},
    {L"StandardsOrg", L"standardsOrganization", L"Standards organization"},
    {L"Manufacturer", L"manufacturer", L"Manufacturer"},
    {L"FolderName", L"folderName", L"Folder"},
    {L"RevisionId", L"revisionId", L"Revision identifier"},
    {L"Library", L"library", L"Library"},
    {L"LastModifiedTime", L"lastModifiedTime", L"Last modified"},
    {L"FromSource", L"sourceLibrary", L"Source library"},
    {L"SourceMoniker", L"sourceFamily", L"Source family"},
    {L"SourceRevisionId", L"sourceRevisionId", L"Source revision"},
    {L"SrcActive", L"sourceActive", L"Source active"},
};

constexpr ShownAttribute kCategoryAttributes[] = {
    {L"InternalName", L"internalName", L""},
    {L"DisplayName", L"displayName", L""},
    {L"RevisionId", L"revisionId", L""},
    {L"Library", L"library", L""},
    {L"Domain", L"domain", L""},
};

/// Rows of the table "Name, Standard, Families, Internal name".
class TocTable {
public:
    TocTable()
    {
        m_table.AddColumn(TextTable::Alignment::Left, {L"Name"});
        m_table.AddColumn(TextTable::Alignment::Left, {L"Standard"});
        m_table.AddColumn(TextTable::Alignment::Right, {L"Families"});
        m_table.AddColumn(TextTable::Alignment::Left, {L"Internal name"});
    }

    void AddBranch(const TocBranch& branch, std::size_t depth);
    void AddFamilies(const std::vector<TocReference>& families, std::size_t depth);
    void AddGroup(const CString& name, std::size_t families, const CString& internalName,
                  std::size_t depth);
    void Print(Results& results) const { m_table.Print(results); }

private:
    void AddName(const CString& name, std::size_t depth)
    {
        m_table.AddCell(CString(depth * kIndent, L' ') + name);
    }

    TextTable m_table;
};

void TocTable::AddGroup(const CString& name, std::size_t families, const CString& internalName,
                        std::size_t depth)
{
    AddName(name, depth);
    m_table.AddCell(L"");
    m_table.AddCell(FormatInteger(static_cast<int64_t>(families)));
    m_table.AddCell(internalName);
}

void TocTable::AddFamilies(const std::vector<TocReference>& families, std::size_t depth)
{
    for (const TocReference& family : families) {
        const bool isListed = family.entry.IsNode();
        AddName(isListed ? TitleOf(family.entry) : L"(not listed)", depth);
        m_table.AddCell(PropertyOf(family.entry, L"Standard"));
        m_table.AddCell(L"");
        m_table.AddCell(family.internalName);
    }
}

void TocTable::AddBranch(const TocBranch& branch, std::size_t depth)
{
    std::set<CString> names;
    CollectFamilies(branch, names);
    AddGroup(TitleOf(branch.category) + (branch.isHidden ? L" (hidden)" : L""), names.size(),
             InternalNameOf(branch.category), depth);
    AddFamilies(branch.families, depth + 1);
    for (const TocBranch& inner : branch.branches) {
        AddBranch(inner, depth + 1);
    }
}

template <std::size_t N>
void WriteAttributes(JsonWriter& json, const XMLNode& entry, const ShownAttribute (&shown)[N])
{
    for (const ShownAttribute& each : shown) {
        CString value;
        json.Key(each.key);
        if (entry.GetProperty(each.attribute, value)) {
            json.Text(value);
        } else {
            json.Null();
        }
    }
}

/// The keys of a family that is not listed are all null but its name.
void WriteReference(JsonWriter& json, const TocReference& family)
{
    json.BeginObject();
    if (family.entry.IsNode()) {
        WriteAttributes(json, family.entry, kFamilyAttributes);
    } else {
        json.Member(L"internalName", family.internalName);
    }
    json.MemberBool(L"listed", family.entry.IsNode());
    json.EndObject();
}

void WriteReferences(JsonWriter& json, const std::vector<TocReference>& families, int indent)
{
    json.BeginArray();
    for (const TocReference& family : families) {
        json.BreakLine(indent);
        WriteReference(json, family);
    }
    json.EndArray();
}

void WriteBranch(JsonWriter& json, const TocBranch& branch, int indent)
{
    json.BeginObject();
    WriteAttributes(json, branch.category, kCategoryAttributes);
    json.MemberBool(L"hidden", branch.isHidden);
    json.MemberBool(L"specialAuthoring", CTocCategory(branch.category).SpecialAuthoring());
    json.BreakLine(indent + 1);
    json.Key(L"families");
    WriteReferences(json, branch.families, indent + 2);
    json.BreakLine(indent + 1);
    json.Key(L"categories");
    json.BeginArray();
    for (const TocBranch& inner : branch.branches) {
        json.BreakLine(indent + 2);
        WriteBranch(json, inner, indent + 2);
    }
    json.EndArray();
    json.EndObject();
}

CString Joined(const std::vector<CString>& names)
{
    CString joined;
    for (const CString& name : names) {
        joined += (joined.empty() ? L"" : L" / ") + name;
    }
    return joined;
}

void AddProperties(TextTable& table, const ShownFamily& family)
{
    for (const ShownAttribute& each : kFamilyAttributes) {
        const CString value = PropertyOf(family.entry, each.attribute);
        if (!value.empty()) {
            table.AddCell(each.label);
            table.AddCell(value);
        }
    }
    const wchar_t* label = L"Categories";
    for (const std::vector<CString>& path : family.categories) {
        table.AddCell(label);
        table.AddCell(Joined(path));
        label = L"";
    }
}

void WriteFamily(JsonWriter& json, const ShownFamily& family)
{
    json.BeginObject();
    WriteAttributes(json, family.entry, kFamilyAttributes);
    json.BreakLine(3);
    json.Key(L"categories");
    json.BeginArray();
    for (const std::vector<CString>& path : family.categories) {
        json.BeginArray();
        for (const CString& name : path) {
            json.Text(name);
        }
        json.EndArray();
    }
    json.EndArray();
    json.EndObject();
}

} // namespace

void PrintTocText(const ShownToc& toc, Results& results)
{
    TocTable table;
    for (const TocBranch& branch : toc.branches) {
        table.AddBranch(branch, 0);
    }
    if (!toc.withoutCategory.empty()) {
        table.AddGroup(L"(in no category)", toc.withoutCategory.size(), {}, 0);
        table.AddFamilies(toc.withoutCategory, 1);
    }
    table.Print(results);
}

void PrintTocJson(const CString& path, const ShownToc& toc, Results& results)
{
    JsonWriter json(results.Text());
    json.BeginObject();
    json.Member(L"file", path);
    json.BreakLine(1);
    json.Key(L"categories");
    json.BeginArray();
    for (const TocBranch& branch : toc.branches) {
        json.BreakLine(2);
        WriteBranch(json, branch, 2);
    }
    json.EndArray();
    json.BreakLine(1);
    json.Key(L"familiesWithoutCategory");
    WriteReferences(json, toc.withoutCategory, 2);
    json.EndObject();
    results.Text() += '\n';
}

void PrintFamiliesText(const std::vector<ShownFamily>& families, Results& results)
{
    for (const ShownFamily& family : families) {
        if (&family != &families.front()) {
            results.Text() += '\n';
        }
        TextTable table;
        table.AddColumn(TextTable::Alignment::Left, {});
        table.AddColumn(TextTable::Alignment::Left, {});
        AddProperties(table, family);
        table.Print(results);
    }
}

void PrintFamiliesJson(const CString& path, const std::vector<ShownFamily>& families,
                       Results& results)
{
    JsonWriter json(results.Text());
    json.BeginObject();
    json.Member(L"file", path);
    json.BreakLine(1);
    json.Key(L"families");
    json.BeginArray();
    for (const ShownFamily& family : families) {
        json.BreakLine(2);
        WriteFamily(json, family);
    }
    json.EndArray();
    json.EndObject();
    results.Text() += '\n';
}

} // namespace encap::cli
