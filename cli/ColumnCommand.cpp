#include "cli/ColumnCommand.h"

#include "cli/ColumnFacts.h"
#include "cli/ColumnReferences.h"
#include "cli/FamilyEdit.h"
#include "cli/FormulaFault.h"
#include "cli/Options.h"
#include "cli/Positions.h"
#include "encap/table/FamilyTable.h"

#include <algorithm>
#include <limits>

namespace encap::cli {
namespace {

enum Action : int { kAdd, kDelete, kCopy, kMove, kRename };

class ColumnCommand : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    void CheckArguments() const;
    void Carry(FamilyEdit& edit) const;
    void Add(FamilyEdit& edit) const;
    void Delete(FamilyEdit& edit) const;
    void Copy(FamilyEdit& edit) const;
    void Move(FamilyEdit& edit) const;
    [[nodiscard]] int NewIndex(FamilyEdit& edit) const;

    int m_action = -1;
    CString m_path;
    std::optional<CString> m_id;
    std::optional<CString> m_newId;
    int m_type = -1;
    std::optional<CString> m_unit;
    std::optional<CString> m_title;
    std::optional<CString> m_formula;
    bool m_isCustom = false;
    bool m_isHidden = false;
    bool m_isForced = false;
    int m_at = 0;
    int m_to = 0;
    EditOptions m_edit;
};

void ColumnCommand::Declare(Options& options)
{
    constexpr int kMost = std::numeric_limits<int>::max();
    options.Choice(m_action, "ACTION", {"add", "delete", "copy", "move", "rename"},
                   "add, delete, copy, move or rename");
    options.Argument(m_path, "FAMILY.xml", "The family document");
    options.Text(m_id, "ID", "", "The column's ID");
    options.Text(m_newId, "NEW", "", "copy, rename: the new ID");
    options.Choice(m_type, "--type", {"string", "double", "integer", "boolean"},
                   "add: what the column holds (default: string)");
    options.Text(m_unit, "--unit", "UNIT", "add: the unit of its numbers");
    options.Text(m_title, "--title", "TEXT", "add, copy: the title (default: the ID)");
    options.Text(m_formula, "--formula", "TEXT", "add: the formula, of a custom column the range");
    options.Flag(m_isCustom, "--custom", "add: the user chooses its value");
    options.Flag(m_isHidden, "--hidden", "add: it is not shown");
    options.Number(m_at, "--at", "POSITION", 1, kMost,
                   "add, copy: the new column's position, the first being 1 (default: the last)");
    options.Number(m_to, "--to", "POSITION", 1, kMost,
                   "move: the column's new position, the first being 1");
    options.Flag(m_isForced, "--force", "delete: even where formulas refer to the column");
    m_edit.Declare(options);
    options.Footer("Positions count from 1. rename changes every reference to the column with it, "
                   "and is refused\nwhen the value of a cell in any language would change.");
}

void ColumnCommand::CheckArguments() const
{
    if (m_action < 0) {
        throw UsageError(L"an action is missing: add, delete, copy, move or rename");
    }
    constexpr const wchar_t* kNames[] = {L"column add", L"column delete", L"column copy",
                                         L"column move", L"column rename"};
    const CString action = kNames[m_action];
    const bool isAdd = m_action == kAdd;
    const bool isCopy = m_action == kCopy;
    RequireArgument(true, m_id.has_value(), L"ID", action);
    RequireArgument(isCopy || m_action == kRename, m_newId.has_value(), L"NEW", action);
    AllowArgument(m_type >= 0, isAdd, L"--type", action);
    AllowArgument(m_unit.has_value(), isAdd, L"--unit", action);
    AllowArgument(m_title.has_value(), isAdd || isCopy, L"--title", action);
    AllowArgument(m_formula.has_value(), isAdd, L"--formula", action);
    AllowArgument(m_isCustom, isAdd, L"--custom", action);
    AllowArgument(m_isHidden, isAdd, L"--hidden", action);
    AllowArgument(m_at != 0, isAdd || isCopy, L"--at", action);
    RequireArgument(m_action == kMove, m_to != 0, L"--to", action);
    AllowArgument(m_isForced, m_action == kDelete, L"--force", action);
    m_edit.Check();
}

ExitStatus ColumnCommand::Run(Console& console)
{
    CheckArguments();
    FamilyEdit edit(m_path, m_edit);
    Carry(edit);
    edit.Finish(console);
    return ExitStatus::Done;
}

void ColumnCommand::Carry(FamilyEdit& edit) const
{
    switch (m_action) {
    case kAdd: Add(edit); break;
    case kDelete: Delete(edit); break;
    case kCopy: Copy(edit); break;
    case kMove: Move(edit); break;
    default: RenameColumn(edit, IdOf(edit.Column(*m_id)), *m_newId);
    }
}

int ColumnCommand::NewIndex(FamilyEdit& edit) const
{
    const uint64_t count = edit.Table().GetColumnsCount();
    return m_at == 0 ? static_cast<int>(count) : IndexOfPosition(m_at, count + 1, L"--at");
}

void ColumnCommand::Add(FamilyEdit& edit) const
{
    CheckNewColumnId(edit, *m_id);
    if (CString known;
        m_unit && edit.Opened().Provider().GetDatabaseUnit(m_unit->c_str(), known) < 0) {
        throw RefusedEdit(edit.Opened(), L"there is no unit \"" + *m_unit + L'"');
    }
    CEncapFamilyColumn* const column = edit.Table().InsertNewColumn(NewIndex(edit), m_id->c_str());
    if (column == nullptr) {
        throw RefusedEdit(edit.Opened(), L"the column cannot be added");
    }
    column->SetDataType(static_cast<DataTypes::ColumnDataType>(std::max(m_type, 0)));
    if (m_unit) {
        column->SetUnitType(m_unit->c_str());
    }
    if (m_title) {
        column->SetTitle(m_title->c_str());
    }
    column->SetIsHidden(m_isHidden);
    column->SetIsCustom(m_isCustom);
    if (m_formula) {
        SetCheckedFormula(edit.Opened(), *column, *m_formula);
    }
}

void ColumnCommand::Delete(FamilyEdit& edit) const
{
    const CString id = IdOf(edit.Column(*m_id));
    CString list;
    for (const CString& user : UsersOf(edit, id)) {
        list += (list.empty() ? L"" : L"; ") + user;
    }
    if (!list.empty() && !m_isForced) {
        constexpr std::size_t kMost = 200;
        throw RefusedEdit(edit.Opened(),
                          L"formulas refer to the column " + id + L": " +
                              (list.size() > kMost ? list.substr(0, kMost) + L"..." : list));
    }
    edit.Table().DeleteColumn(edit.Table().GetFamilyColumnIndexByID(id.c_str()));
}

void ColumnCommand::Copy(FamilyEdit& edit) const
{
    CheckNewColumnId(edit, *m_newId);
    CEncapFamilyColumn* const column = edit.Table().DuplicateColumn(
        NewIndex(edit), IdOf(edit.Column(*m_id)).c_str(), m_newId->c_str());
    if (column == nullptr) {
        throw RefusedEdit(edit.Opened(), L"the column cannot be copied");
    }
    column->SetTitle(m_title.value_or(*m_newId).c_str());
}

void ColumnCommand::Move(FamilyEdit& edit) const
{
    const CString id = IdOf(edit.Column(*m_id));
    int index = IndexOfPosition(m_to, edit.Table().GetColumnsCount(), L"--to");
    edit.Table().ChangeColumnIndex(id.c_str(), index);
}

} // namespace

std::unique_ptr<Command> MakeColumnCommand()
{
    return std::make_unique<ColumnCommand>();
}

} // namespace encap::cli
