#include "cli/SetCommand.h"

#include "cli/CellReader.h"
#include "cli/ColumnFacts.h"
#include "cli/FamilyEdit.h"
#include "cli/FormulaFault.h"
#include "cli/Options.h"
#include "encap/foundation/CaseFolding.h"

#include <algorithm>

namespace encap::cli {
namespace {

class SetCommand : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    using Cell = std::pair<CString, CString>; ///< IDs of a row and a column

    void SetProperties(FamilyEdit& edit) const;
    void SetProperty(FamilyEdit& edit, const CString& name, const CString& text) const;
    void SetFormulas(FamilyEdit& edit, std::vector<Cell>& touched) const;
    void SetCells(FamilyEdit& edit, std::vector<Cell>& touched) const;

    CString m_path;
    std::vector<Cell> m_cells; // of a row and "COLUMN=VALUE"
    std::vector<CString> m_formulas;
    std::vector<CString> m_properties;
    EditOptions m_edit;
};

struct Property {
    const wchar_t* name;
    FamilyPropType type; ///< where it has one that can be set
    void (CEncapFamily::*write)(const wchar_t*);
    const wchar_t* localized; ///< its element in strings documents
};

// The names are those of encap info --format json.
constexpr Property kProperties[] = {
    {L"displayName", FamilyPropDisplayName, nullptr, L"DisplayName"},
    {L"description", FamilyPropDescription, nullptr, L"Description"},
    {L"standard", FamilyPropStandard, nullptr, nullptr},
    {L"standardsOrganization", FamilyPropStandardsOrg, nullptr, nullptr},
    {L"standardRevision", FamilyPropStandardRevision, nullptr, nullptr},
    {L"manufacturer", FamilyPropManufacturer, nullptr, nullptr},
    {L"familyRevision", FamilyPropFamilyRevision, nullptr, nullptr},
    {L"folderName", FamilyPropFolderName, nullptr, nullptr},
    {L"revisionId", FamilyPropRevisionID, nullptr, nullptr},
    {L"thumbnail", FamilyPropThumbnailPath, nullptr, nullptr},
    {L"internalName", {}, &CEncapFamily::SetInternalName, nullptr},
    {L"library", {}, &CEncapFamily::SetLibInterName, nullptr},
    {L"healthStatus", {}, &CEncapFamily::SetHealthStatus, nullptr},
};

const Property& FindProperty(const CString& name)
{
    const auto* const found =
        std::find_if(std::begin(kProperties), std::end(kProperties),
                     [&](const Property& property) { return EqualNoCase(property.name, name); });
    if (found != std::end(kProperties)) {
        return *found;
    }
    CString names;
    for (const Property& property : kProperties) {
        names += (names.empty() ? L"" : L", ") + CString(property.name);
    }
    throw UsageError(L"there is no property '" + name + L"' that can be set: there are " + names);
}

void SetCommand::Declare(Options& options)
{
    options.Argument(m_path, "FAMILY.xml", "The family document");
    options.Pairs(m_cells, "--cell", "ROW COLUMN=VALUE",
                  "A cell of the row with this ID: a value, or a formula in a numeric column and "
                  "wherever columns stand in braces; nothing behind the \"=\" clears the cell");
    options.Texts(m_formulas, "--formula", "COLUMN=TEXT",
                  "The formula of a column, or of a custom column the range; nothing behind the "
                  "\"=\" takes it away");
    options.Texts(m_properties, "--property", "NAME=TEXT",
                  "A property of the family, as encap info --format json names it");
    m_edit.Declare(options);
    options.Footer("Properties are set first, then formulas, then cells; all of them or none. A "
                   "cell or a column that has no\nvalue afterwards is told on standard error; it "
                   "is saved all the same, and the exit status is 1.\nWith --language, "
                   "displayName and description are set in that language only.");
}

ExitStatus SetCommand::Run(Console& console)
{
    m_edit.Check();
    if (m_cells.empty() && m_formulas.empty() && m_properties.empty()) {
        throw UsageError(L"nothing is to be set: --cell, --formula or --property is missing");
    }
    FamilyEdit edit(m_path, m_edit);
    std::vector<Cell> touched;
    SetProperties(edit);
    SetFormulas(edit, touched);
    SetCells(edit, touched);
    edit.Finish(console);

    FailureReport failures(edit.Opened(), console);
    for (const auto& [row, column] : touched) {
        CEncapFamilyColumn& cellColumn = edit.Column(column);
        CString value;
        edit.Opened().Provider().Forget();
        const auto result =
            cellColumn.GetValue(row.c_str(), edit.Opened().Language().c_str(), value);
        if (result != CTableEvaluator::EvaluateOK) {
            failures.Tell(row, cellColumn, result);
        }
    }
    return failures.Status();
}

void SetCommand::SetProperties(FamilyEdit& edit) const
{
    for (const CString& argument : m_properties) {
        const auto [name, text] = SplitAssignment(argument, L"--property");
        SetProperty(edit, name, text);
    }
}

void SetCommand::SetProperty(FamilyEdit& edit, const CString& name, const CString& text) const
{
    const Property& property = FindProperty(name);
    if (property.write != nullptr) {
        (edit.Family().*property.write)(text.c_str());
        return;
    }
    XMLParser strings;
    if (property.localized == nullptr || !m_edit.family.language ||
        !edit.Family().GetStringsFamilyXML(0, strings)) {
        edit.Family().SetFamilyProperty(property.type, text.c_str());
        return;
    }
    // The family's first language is the one asked for.
    strings.GetRootNode().GetOrAddNode(property.localized).SetNodeText(text);
    edit.Table().BumpAllMemberRevisions(nullptr);
}

void SetCommand::SetFormulas(FamilyEdit& edit, std::vector<Cell>& touched) const
{
    for (const CString& argument : m_formulas) {
        const auto [id, formula] = SplitAssignment(argument, L"--formula");
        CEncapFamilyColumn& column = edit.Column(id);
        SetCheckedFormula(edit.Opened(), column, formula);
        for (const CString& row : edit.Table().GetAllRowIDs()) {
            if (!formula.empty()) {
                touched.emplace_back(row, IdOf(column));
            }
        }
    }
}

void SetCommand::SetCells(FamilyEdit& edit, std::vector<Cell>& touched) const
{
    for (const auto& [rowArgument, assignment] : m_cells) {
        const auto [id, value] = SplitAssignment(assignment, L"--cell ROW");
        CEncapFamilyColumn& column = edit.Column(id);
        const CString row = edit.RowId(rowArgument);
        CheckCellText(edit.Opened(), row, column, value);
        if (column.IsStatusColumn()) {
            edit.Table().SetStatusColValue(edit.Table().GetFamilyRowIndexByID(row.c_str()),
                                           value.c_str());
        } else {
            column.SetValue(row.c_str(), edit.Opened().Language().c_str(), value.c_str(), true);
        }
        // The text was cached as it stands; it is to be evaluated.
        column.ClearCachedValue(row.c_str());
        if (!value.empty()) {
            touched.emplace_back(row, IdOf(column));
        }
    }
}

} // namespace

std::unique_ptr<Command> MakeSetCommand()
{
    return std::make_unique<SetCommand>();
}

} // namespace encap::cli
