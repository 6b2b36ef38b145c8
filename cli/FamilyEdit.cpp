#include "cli/FamilyEdit.h"

#include "cli/ColumnFacts.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/DisplayText.h"
#include "cli/FileBatch.h"
#include "cli/FormulaFault.h"
#include "cli/Options.h"
#include "cli/Paths.h"
#include "encap/foundation/StringUtil.h"
#include "encap/table/FamilyTable.h"
#include "encap/xml/XMLNodeArray.h"

#include <algorithm>

namespace encap::cli {
namespace {

CString LanguageOf(const XMLParser& strings)
{
    CString language;
    strings.GetRootNode().GetProperty(L"xml:lang", language);
    return language;
}

/// The family's strings document of a language; empty when there is none.
XMLParser StringsOf(const CEncapFamily& family, const CString& language)
{
    XMLParser strings;
    for (int i = 0; i < family.GetFamStringsCount(); ++i) {
        if (family.GetStringsFamilyXML(i, strings) && LanguageOf(strings) == language) {
            return strings;
        }
    }
    return {};
}

} // namespace

void EditOptions::Declare(Options& options)
{
    family.Declare(options);
    options.Flag(isDryRun, "--dry-run", "Print what would change, and write no file");
    options.Flag(isInPlace, "--in-place",
                 "Save every document that changed to the file that it was read from");
    options.Text(output, "-o,--output", "FILE",
                 "Write the family to this file and its strings documents beside it; the files "
                 "read stay as they are");
}

void EditOptions::Check() const
{
    if (isInPlace && !output.empty()) {
        throw UsageError(L"--in-place and -o exclude each other");
    }
    if (!isDryRun && !isInPlace && output.empty()) {
        throw UsageError(L"one of --dry-run, --in-place and -o FILE is required");
    }
}

FamilyEdit::FamilyEdit(const CString& path, const EditOptions& options)
    : m_options(options), m_family(path, options.family, m_host)
{
    m_documents.emplace_back(path, Family().GetFamilyXML());
    for (const StringsFile& strings : m_family.File().Strings()) {
        m_documents.emplace_back(strings.path, StringsOf(Family(), strings.language));
    }
    for (const EditedDocument& document : m_documents) {
        if (!options.output.empty() && IsSameFile(options.output, document.Path())) {
            throw UsageError(options.output +
                             L": -o names a file that is read; --in-place replaces it");
        }
    }
}

CEncapFamilyColumn& FamilyEdit::Column(const CString& id)
{
    CEncapFamilyColumn* const column = Table().GetFamilyColumnByID(id.c_str());
    if (column == nullptr) {
        throw UsageError(m_family.File().Path() + L": there is no column \"" + id + L"\"; " +
                         SuggestColumns(m_family, id));
    }
    return *column;
}

CString FamilyEdit::RowId(const CString& id)
{
    const int index = Table().GetFamilyRowIndexByID(id.c_str());
    if (index < 0) {
        throw UsageError(m_family.File().Path() + L": there is no row \"" + id + L'"');
    }
    return Table().GetRowIDByIndex(index);
}

void FamilyEdit::Finish(Console& console)
{
    if (m_options.isDryRun) {
        PrintChanges(console);
    } else if (m_options.isInPlace) {
        SaveInPlace();
    } else {
        SaveAside();
    }
}

void FamilyEdit::PrintChanges(Console& console) const
{
    std::string out;
    for (const EditedDocument& document : m_documents) {
        const std::vector<CString> changes = document.Changes();
        if (changes.empty()) {
            continue;
        }
        AppendForDisplay(out, document.Path());
        out += '\n';
        for (const CString& change : changes) {
            out += "  ";
            AppendForDisplay(out, change);
            out += '\n';
        }
    }
    console.Write(out.empty() ? "nothing would change\n" : out);
}

void FamilyEdit::SaveInPlace() const
{
    FileBatch files;
    for (const EditedDocument& document : m_documents) {
        if (document.IsChanged()) {
            files.Add(document.Path(), document.NewBytes());
        }
    }
    files.Write();
}

void FamilyEdit::SaveAside()
{
    FileBatch files;
    std::vector<CString> names;
    for (std::size_t i = 1; i < m_documents.size(); ++i) {
        names.push_back(NameAside(i, names));
        files.Add(FolderOf(m_options.output) + names.back(), m_documents[i].NewBytes());
    }
    SetReferences(names);
    files.Add(m_options.output, m_documents.front().NewBytes());
    files.Write();
}

/// The name that the strings document has, unless that would be one of the files read or another
/// one's name; then one of its language behind the name of the new family.
CString FamilyEdit::NameAside(std::size_t index, const std::vector<CString>& taken) const
{
    CString name = FileNameOf(m_documents[index].Path());
    const CString path = FolderOf(m_options.output) + name;
    const bool isRead =
        std::any_of(m_documents.begin(), m_documents.end(),
                    [&](const EditedDocument& other) { return IsSameFile(other.Path(), path); });
    const bool isTaken =
        path == m_options.output || std::find(taken.begin(), taken.end(), name) != taken.end();
    if (!isRead && !isTaken) {
        return name;
    }
    const CString output = FileNameOf(m_options.output);
    CString own = output.substr(0, output.rfind(L'.')) + L".FamilyStrings." +
                  m_family.File().Strings()[index - 1].language + L".xml";
    CStringUtil::LegalizeForFileName(own);
    return own;
}

/// The family's references to its strings documents, in their order.
void FamilyEdit::SetReferences(const std::vector<CString>& names)
{
    XMLNode root = Family().GetFamilyXML().GetRootNode();
    XMLNode strings;
    if (!root.GetChildNode(L"FamilyStrings", strings) && names.empty()) {
        return;
    }
    strings = root.GetOrAddNode(L"FamilyStrings");
    XMLNodeArray files;
    strings.SelectChildNodes(L"File", files);
    for (std::size_t i = 0; i < std::max(names.size(), files.size()); ++i) {
        if (i >= names.size()) {
            files[i].RemoveThisNode(true);
            continue;
        }
        XMLNode file = i < files.size() ? files[i] : strings.AddNode(L"File");
        file.SetProperty(L"FullFileName", names[i]);
    }
}

std::pair<CString, CString> SplitAssignment(const CString& argument, const CString& option)
{
    const std::size_t equals = argument.find(L'=');
    if (equals == CString::npos || equals == 0) {
        throw UsageError(option + L" takes a name, \"=\" and a text, not '" + argument + L'\'');
    }
    return {argument.substr(0, equals), argument.substr(equals + 1)};
}

} // namespace encap::cli
