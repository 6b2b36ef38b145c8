#include "encap/evaluation/ColumnDependencies.h"

#include "encap/evaluation/EvaluatorState.h"
#include "encap/table/TableState.h"

#include <algorithm>
#include <unordered_map>

namespace encap {

namespace {

// One walk over the columns of a table: each is entered once.
class Walk {
public:
    explicit Walk(const CEncapFamilyColumn& start)
        : m_mark(++TableAccess::Of(*TableAccess::Table(start)).walk)
    {
    }

    bool Enter(CEncapFamilyColumn& column)
    {
        ColumnState& state = TableAccess::Of(column);
        const bool isNew = state.walk != m_mark;
        state.walk = m_mark;
        return isNew;
    }

private:
    uint64_t m_mark;
};

bool RefreshesByItself(const ColumnState& column)
{
    return !column.custom && (column.geometry || column.hostProperty);
}

void NoteGraphChange(CEncapFamilyColumn& column)
{
    if (CEncapFamilyTable* table = TableAccess::Table(column)) {
        ++TableAccess::Of(*table).graphVersion;
    }
}

} // namespace

std::vector<CEncapFamilyColumn*> ColumnDependencies::Dependents(const CEncapFamilyColumn& column,
                                                                const CEncapFamilyColumn* stopAt)
{
    std::vector<CEncapFamilyColumn*> found;
    if (TableAccess::Table(column) == nullptr) {
        return found;
    }
    Walk walk(column);
    const CEncapFamilyColumn* current = &column;
    for (std::size_t next = 0;; ++next) {
        for (CEncapFamilyColumn* dependent : TableAccess::Dependents(*current)) {
            if (dependent != stopAt && walk.Enter(*dependent)) {
                found.push_back(dependent);
            }
        }
        if (next == found.size()) {
            return found;
        }
        current = found[next];
    }
}

std::vector<CEncapFamilyColumn*> ColumnDependencies::Closure(CEncapFamilyColumn& column)
{
    std::vector<CEncapFamilyColumn*> closure{&column};
    const std::vector<CEncapFamilyColumn*> dependents = Dependents(column, &column);
    closure.insert(closure.end(), dependents.begin(), dependents.end());
    return closure;
}

bool ColumnDependencies::Reaches(const CEncapFamilyColumn& column, const CEncapFamilyColumn& target)
{
    const std::vector<CEncapFamilyColumn*> dependents = Dependents(column);
    return std::find(dependents.begin(), dependents.end(), &target) != dependents.end();
}

std::vector<CEncapFamilyColumn*> ColumnDependencies::Path(CEncapFamilyColumn& column,
                                                          CEncapFamilyColumn& target)
{
    std::unordered_map<CEncapFamilyColumn*, CEncapFamilyColumn*> cameFrom;
    std::vector<CEncapFamilyColumn*> reached{&column};
    for (std::size_t next = 0; next < reached.size(); ++next) {
        for (CEncapFamilyColumn* dependent : TableAccess::Dependents(*reached[next])) {
            if (cameFrom.emplace(dependent, reached[next]).second) {
                reached.push_back(dependent);
            }
        }
    }
    std::vector<CEncapFamilyColumn*> path;
    if (cameFrom.count(&target) == 0) {
        return path;
    }
    CEncapFamilyColumn* step = &target;
    do {
        path.push_back(step);
        step = cameFrom.at(step);
    } while (step != &column);
    path.push_back(step);
    std::reverse(path.begin(), path.end());
    return path;
}

bool ColumnDependencies::CausesRefresh(const CEncapFamilyColumn& column)
{
    if (TableAccess::Of(column).custom) {
        return false;
    }
    if (RefreshesByItself(TableAccess::Of(column)) || TableAccess::Table(column) == nullptr) {
        return RefreshesByItself(TableAccess::Of(column));
    }
    Walk walk(column);
    std::vector<const CEncapFamilyColumn*> pending{&column};
    while (!pending.empty()) {
        const CEncapFamilyColumn& current = *pending.back();
        pending.pop_back();
        for (CEncapFamilyColumn* dependent : TableAccess::Dependents(current)) {
            const ColumnState& state = TableAccess::Of(*dependent);
            if (RefreshesByItself(state)) {
                return true;
            }
            if (!state.custom && walk.Enter(*dependent)) {
                pending.push_back(dependent);
            }
        }
    }
    return false;
}

void ColumnDependencies::SetReferences(CEncapFamilyColumn& column,
                                       const std::vector<CEncapFamilyColumn*>& references)
{
    ColumnState& state = TableAccess::Of(column);
    std::vector<CEncapFamilyColumn*> entered(references);
    // What throws (only memory can) comes before the old edges go.
    for (CEncapFamilyColumn* referenced : entered) {
        TableAccess::Dependents(*referenced).insert(&column);
    }
    state.references.swap(entered);
    for (CEncapFamilyColumn* referenced : entered) {
        if (std::find(state.references.begin(), state.references.end(), referenced) ==
            state.references.end()) {
            TableAccess::Dependents(*referenced).erase(&column);
        }
    }
    NoteGraphChange(column);
}

void ColumnDependencies::Disconnect(CEncapFamilyColumn& column)
{
    SetReferences(column, {});
    for (CEncapFamilyColumn* dependent : TableAccess::Dependents(column)) {
        std::vector<CEncapFamilyColumn*>& references = TableAccess::Of(*dependent).references;
        references.erase(std::remove(references.begin(), references.end(), &column),
                         references.end());
        TableAccess::Of(*dependent).namesUnknown = true;
    }
    TableAccess::Dependents(column).clear();
    NoteGraphChange(column);
}

} // namespace encap

using encap::ColumnDependencies;
using encap::ColumnState;
using encap::TableAccess;

CTableEvaluator::EvaluateResult CEncapFamilyTable::BuildColumnsDependency()
{
    const auto count = static_cast<int>(m_state->columns.Count());
    for (int index = 0; index < count; ++index) {
        CEncapFamilyColumn* column = m_state->columns.At(index);
        const CString& formula = TableAccess::Of(*column).formula;
        if (formula.empty()) {
            continue;
        }
        const EvaluateResult result = UpdateColumnsDependency(column, formula.c_str());
        TableAccess::Of(*column).namesUnknown = result == CTableEvaluator::EvaluateUnknownColumn;
        if (result != CTableEvaluator::EvaluateOK) {
            m_state->dependenciesIncomplete = true;
            return result;
        }
    }
    return CTableEvaluator::EvaluateOK;
}

CTableEvaluator::EvaluateResult
CEncapFamilyTable::UpdateColumnsDependency(CEncapFamilyColumn* column, const wchar_t* formula)
{
    std::set<CEncapFamilyColumn*> references;
    const EvaluateResult result =
        TableAccess::Evaluator(*this).expressions.CollectReferences(formula, references);
    if (result == CTableEvaluator::EvaluateOK) {
        ColumnDependencies::SetReferences(*column, {references.begin(), references.end()});
    }
    return result;
}

void CEncapFamilyTable::RemoveColumnDependencies(CEncapFamilyColumn* column)
{
    ColumnDependencies::SetReferences(*column, {});
}

const std::set<CEncapFamilyColumn*>& CEncapFamilyColumn::GetDependantColumns() const
{
    return m_dependents;
}

std::set<CEncapFamilyColumn*>&
CEncapFamilyColumn::GetAllDependentColumns(std::set<CEncapFamilyColumn*>& result,
                                           CEncapFamilyColumn* stopAt)
{
    const CEncapFamilyColumn* end = stopAt != nullptr ? stopAt : this;
    const std::vector<CEncapFamilyColumn*> dependents = ColumnDependencies::Dependents(*this, end);
    result.insert(dependents.begin(), dependents.end());
    result.insert(this);
    return result;
}

CTableEvaluator::EvaluateResult
CEncapFamilyColumn::CheckCircularDependency(CEncapFamilyColumn* target) const
{
    const CEncapFamilyColumn& end = target != nullptr ? *target : *this;
    return ColumnDependencies::Reaches(*this, end) ? CTableEvaluator::EvaluateCircularReference
                                                   : CTableEvaluator::EvaluateOK;
}

bool CEncapFamilyColumn::IsReferencedByOther() const
{
    return !m_dependents.empty();
}

bool CEncapFamilyColumn::IsReferencedDirectlyBy(CEncapFamilyColumn* column) const
{
    return column != nullptr && m_dependents.count(column) > 0;
}

bool CEncapFamilyColumn::IsReferencedBy(CEncapFamilyColumn* column) const
{
    return column != nullptr && ColumnDependencies::Reaches(*this, *column);
}

bool CEncapFamilyColumn::ChangeInColumnCausesRefresh() const
{
    if (m_table == nullptr) {
        return ColumnDependencies::CausesRefresh(*this);
    }
    ColumnState& state = *m_state;
    const uint64_t version = TableAccess::Of(*m_table).graphVersion;
    if (state.refreshVersion != version) {
        state.causesRefresh = ColumnDependencies::CausesRefresh(*this);
        state.refreshVersion = version;
    }
    return state.causesRefresh;
}
