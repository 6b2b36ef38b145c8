#pragma once

#include "encap/family/Family.h"
#include "encap/table/FamilyTable.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/support/SumProvider.h"
#include "tests/support/TableModel.h"
#include "tests/table/ModelComparison.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

namespace encap::test {

/// The documents of a family as they would be saved.
struct Saved {
    CString family;
    Texts strings;
    bool operator==(const Saved&) const = default;
};

Saved Save(CEncapFamily& family);

/// One random sequence of edits, on a family and its model alike.
class EditSequence {
public:
    explicit EditSequence(uint32_t seed);
    /// Every choice is a number that next gives.
    explicit EditSequence(std::function<uint32_t()> next);

    /// One edit and every comparison; the differences, empty when there are none.
    CString Step();
    const CString& Log() const { return m_log; }

private:
    bool Chance(int of) { return Below(of) == 0; }
    int Below(int limit);
    CString OneOf(const Texts& texts);
    int RowCount() const { return static_cast<int>(m_model.rows.size()); }
    int ColumnCount() const { return static_cast<int>(m_model.columns.size()); }
    TableModel::Row& AnyRow() { return TableModel::At(m_model.rows, Below(RowCount())); }
    TableModel::Column& AnyColumn()
    {
        return TableModel::At(m_model.columns, Below(ColumnCount()));
    }
    /// A column whose cells and formulas are the user's.
    TableModel::Column& UserColumn()
    {
        return TableModel::At(m_model.columns, 2 + Below(ColumnCount() - 2));
    }
    CString AnyLanguage() { return OneOf(kLanguages); }
    int AnyIndex(int count) { return Below(count + 3) - 1; }
    /// Mostly as it is, sometimes in the other case.
    CString Spelled(CString id);
    CString Term(bool number);
    CString Formula(const TableModel::Column& column);
    CString CellText(const TableModel::Column& column);
    CEncapFamilyTable& Table() { return *m_family->GetEncapFamilyTable(); }
    CEncapFamilyColumn& Live(const TableModel::Column& column);

    std::unique_ptr<CEncapFamily> Family(const CString& folder);
    void Open();

    void Log(const CString& text) { m_log += text + L"\n"; }

    /// True when nothing may have changed.
    bool Edit();

    bool InsertRow();
    bool DeleteRow();
    bool CopyRow();
    bool PasteRow();
    /// A text is served as it was set until it is cleared, the empty one too.
    void ForgetEmptyCells(const TableModel::Row& row);
    bool MoveItem();
    bool InsertColumn();
    bool DuplicateColumn();
    bool DeleteColumn();
    bool SetAttribute();
    bool SetStatus();
    bool Reopen();
    bool Undo();
    bool SetLocalized();
    bool SetFamilyThings();
    bool SetFormula();
    bool SetValue();
    /// Edits that must leave everything as it was, the checks of formulas among them.
    bool Refused();

    std::function<uint32_t()> m_next;
    SumProvider m_host;
    TableModel m_model;
    std::unique_ptr<TemporaryFolder> m_folder;
    std::unique_ptr<CEncapFamily> m_family;
    Saved m_saved;
    std::pair<Saved, TableModel> m_undo;
    CString m_log;
};

} // namespace encap::test
