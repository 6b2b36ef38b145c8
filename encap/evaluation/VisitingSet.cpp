#include "encap/evaluation/VisitingSet.h"

#include "encap/table/TableState.h"

#include <algorithm>

namespace encap {

bool VisitingSet::Holds(std::wstring_view rowId, const CEncapFamilyColumn& column) const
{
    // The column counts its visits, so that the search is needed for a column on the chain only.
    if (TableAccess::Of(column).visiting == 0) {
        return false;
    }
    return std::any_of(m_cells.begin(), m_cells.end(), [&](const Cell& cell) {
        return cell.column == &column && cell.rowId == rowId;
    });
}

void VisitingSet::Add(std::wstring_view rowId, CEncapFamilyColumn& column)
{
    m_cells.push_back({rowId, &column});
    ++TableAccess::Of(column).visiting;
}

void VisitingSet::Remove(std::wstring_view rowId, CEncapFamilyColumn& column)
{
    --TableAccess::Of(column).visiting;
    const Cell& newest = m_cells.back();
    if (newest.column == &column && newest.rowId.data() == rowId.data()) {
        m_cells.pop_back();
        return;
    }
    const auto found = std::find_if(m_cells.rbegin(), m_cells.rend(), [&](const Cell& cell) {
        return cell.column == &column && cell.rowId == rowId;
    });
    m_cells.erase(std::next(found).base());
}

} // namespace encap

CCircularDependencyChecker::CCircularDependencyChecker(std::wstring_view rowId,
                                                       CEncapFamilyColumn& column,
                                                       encap::VisitingSet& visiting)
    : m_visiting(visiting), m_alreadyVisiting(visiting.Holds(rowId, column)), m_rowId(rowId),
      m_column(column)
{
    if (!m_alreadyVisiting) {
        m_visiting.Add(rowId, column);
    }
}

CCircularDependencyChecker::~CCircularDependencyChecker()
{
    if (!m_alreadyVisiting) {
        m_visiting.Remove(m_rowId, m_column);
    }
}
