#include "cli/RowCommand.h"

#include "cli/Console.h"
#include "cli/FamilyEdit.h"
#include "cli/FormulaFault.h"
#include "cli/Options.h"
#include "cli/Positions.h"
#include "encap/table/FamilyTable.h"
#include "encap/xml/QueryLiteral.h"
#include "encap/xml/XMLNodeArray.h"

#include <limits>

namespace encap::cli {
namespace {

enum Action : int { kAdd, kDelete, kCopy, kMove };

class RowCommand : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    void CheckArguments() const;
    [[nodiscard]] CString Add(FamilyEdit& edit) const;
    [[nodiscard]] CString Copy(FamilyEdit& edit) const;
    void CheckNewId(FamilyEdit& edit) const;

    int m_action = -1;
    CString m_path;
    std::optional<CString> m_row;
    std::optional<CString> m_id;
    int m_at = 0;
    int m_to = 0;
    EditOptions m_edit;
};

void RowCommand::Declare(Options& options)
{
    constexpr int kMost = std::numeric_limits<int>::max();
    options.Choice(m_action, "ACTION", {"add", "delete", "copy", "move"},
                   "add, delete, copy or move");
    options.Argument(m_path, "FAMILY.xml", "The family document");
    options.Text(m_row, "ROW", "", "The ID of the row that is deleted, copied or moved");
    options.Text(m_id, "--id", "ID", "add, copy: the new row's ID (default: a new GUID)");
    options.Number(m_at, "--at", "POSITION", 1, kMost,
                   "add, copy: the new row's position, the first being 1 (default: the last)");
    options.Number(m_to, "--to", "POSITION", 1, kMost,
                   "move: the row's new position, the first being 1");
    m_edit.Declare(options);
    options.Footer("Positions count from 1. add and copy print the new row's ID.");
}

void RowCommand::CheckArguments() const
{
    if (m_action < 0) {
        throw UsageError(L"an action is missing: add, delete, copy or move");
    }
    constexpr const wchar_t* kNames[] = {L"row add", L"row delete", L"row copy", L"row move"};
    const CString action = kNames[m_action];
    const bool isNew = m_action == kAdd || m_action == kCopy;
    RequireArgument(m_action != kAdd, m_row.has_value(), L"ROW", action);
    AllowArgument(m_id.has_value(), isNew, L"--id", action);
    AllowArgument(m_at != 0, isNew, L"--at", action);
    RequireArgument(m_action == kMove, m_to != 0, L"--to", action);
    m_edit.Check();
}

ExitStatus RowCommand::Run(Console& console)
{
    CheckArguments();
    FamilyEdit edit(m_path, m_edit);
    CEncapFamilyTable& table = edit.Table();
    CString newId;
    switch (m_action) {
    case kAdd: newId = Add(edit); break;
    case kCopy: newId = Copy(edit); break;
    case kDelete:
        table.DeleteRow(table.GetFamilyRowIndexByID(edit.RowId(m_row.value_or(L"")).c_str()));
        break;
    default: {
        const CString id = edit.RowId(m_row.value_or(L""));
        int index = IndexOfPosition(m_to, table.GetRowsCount(), L"--to");
        table.ChangeRowIndex(id.c_str(), index);
    }
    }
    edit.Finish(console);
    if (!newId.empty() && !m_edit.isDryRun) {
        console.Write(platform::WideToUtf8(newId) + '\n');
    }
    return ExitStatus::Done;
}

void RowCommand::CheckNewId(FamilyEdit& edit) const
{
    if (!m_id) {
        return;
    }
    if (m_id->find_first_not_of(L" \t\r\n") == CString::npos) {
        throw UsageError(L"--id: a row's ID is no empty text");
    }
    if (edit.Table().GetFamilyRowByID(m_id->c_str()) != nullptr) {
        throw RefusedEdit(edit.Opened(), L"there is a row \"" + *m_id + L"\" already");
    }
}

CString RowCommand::Add(FamilyEdit& edit) const
{
    CheckNewId(edit);
    const uint64_t count = edit.Table().GetRowsCount();
    const int index =
        m_at == 0 ? static_cast<int>(count) : IndexOfPosition(m_at, count + 1, L"--at");
    CString id;
    if (CEncapFamilyRow* row = edit.Table().InsertNewRow(index, m_id.value_or(L""))) {
        row->GetRowID(id);
    }
    return id;
}

/// The new ID goes into the documents, behind the table's back: the table is not used any more.
void ChangeRowId(FamilyEdit& edit, CEncapFamilyRow& row, const CString& from, const CString& to)
{
    XMLNode cell;
    if (row.GetXMLNode().GetChildNode(L"Cell[@ColumnId=\"RID\"]", cell)) {
        cell.SetNodeText(to);
    }
    row.SetRowID(to.c_str());
    const CString query =
        L"Table/ColumnStrings/Rows/CellString[@RowId=" + QueryLiteral(from) + L']';
    for (std::size_t i = 1; i < edit.Documents().size(); ++i) {
        XMLNodeArray texts;
        edit.Documents()[i].Document().GetRootNode().SelectChildNodes(query.c_str(), texts);
        for (XMLNode& text : texts) {
            text.SetProperty(L"RowId", to);
        }
    }
}

CString RowCommand::Copy(FamilyEdit& edit) const
{
    CheckNewId(edit);
    CEncapFamilyTable& table = edit.Table();
    const CString source = edit.RowId(m_row.value_or(L""));
    int index = IndexOfPosition(m_at == 0 ? 1 : m_at, table.GetRowsCount() + 1, L"--at");
    CEncapFamilyRow* const row = table.CopyRow(source);
    CString id;
    if (row == nullptr) {
        return id;
    }
    row->GetRowID(id);
    if (m_at != 0) {
        table.ChangeRowIndex(id.c_str(), index);
    }
    if (m_id) {
        ChangeRowId(edit, *row, id, *m_id);
        id = *m_id;
    }
    return id;
}

} // namespace

std::unique_ptr<Command> MakeRowCommand()
{
    return std::make_unique<RowCommand>();
}

} // namespace encap::cli
