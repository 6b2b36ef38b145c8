#pragma once

#include "encap/foundation/Types.h"

#include <string_view>
#include <vector>

class CEncapFamilyColumn;

namespace encap {

/// The cells that are being evaluated, on the current chain of nested evaluations.
class VisitingSet {
public:
    [[nodiscard]] bool Holds(std::wstring_view rowId, const CEncapFamilyColumn& column) const;
    void Add(std::wstring_view rowId, CEncapFamilyColumn& column);
    /// REQUIRES: Holds(rowId, column).
    void Remove(std::wstring_view rowId, CEncapFamilyColumn& column);
    [[nodiscard]] bool IsEmpty() const { return m_cells.empty(); }

private:
    struct Cell {
        std::wstring_view rowId;
        CEncapFamilyColumn* column;
    };

    std::vector<Cell> m_cells; ///< the newest last
};

} // namespace encap

/// Guards the evaluation of one cell against recursion: enters the cell in the visiting set and
/// takes it out again when it goes. The row ID must outlive the guard.
class CCircularDependencyChecker {
public:
    CCircularDependencyChecker(std::wstring_view rowId, CEncapFamilyColumn& column,
                               encap::VisitingSet& visiting);
    CCircularDependencyChecker(const CCircularDependencyChecker&) = delete;
    CCircularDependencyChecker& operator=(const CCircularDependencyChecker&) = delete;
    virtual ~CCircularDependencyChecker();

    /// The cell was in the set already: its evaluation would never end.
    [[nodiscard]] bool IsAlreadyVisiting() const { return m_alreadyVisiting; }

private:
    encap::VisitingSet& m_visiting;
    bool m_alreadyVisiting;
    std::wstring_view m_rowId;
    CEncapFamilyColumn& m_column;
};
