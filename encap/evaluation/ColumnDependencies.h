#pragma once

#include "encap/evaluation/TableEvaluator.h"

#include <vector>

class CEncapFamilyColumn;
class CEncapFamilyTable;

namespace encap {

/// The edges between a column and the columns its formula refers to, kept on both ends. Walks visit
/// a column once and use no recursion: sets may be deep, wide and, in a damaged document, cyclic.
class ColumnDependencies {
public:
    /// The column and everything that depends on it, the column first.
    [[nodiscard]] static std::vector<CEncapFamilyColumn*> Closure(CEncapFamilyColumn& column);
    /// Everything that depends on the column, through at least one edge; branches end at stopAt,
    /// which is not entered (null: nowhere). The column itself is part of it when it is on a cycle.
    [[nodiscard]] static std::vector<CEncapFamilyColumn*>
    Dependents(const CEncapFamilyColumn& column, const CEncapFamilyColumn* stopAt = nullptr);
    /// Whether target depends on the column, through at least one edge.
    [[nodiscard]] static bool Reaches(const CEncapFamilyColumn& column,
                                      const CEncapFamilyColumn& target);
    /// The columns from the column along its dependents to target, both included; empty when
    /// target does not depend on it.
    [[nodiscard]] static std::vector<CEncapFamilyColumn*> Path(CEncapFamilyColumn& column,
                                                               CEncapFamilyColumn& target);
    [[nodiscard]] static bool CausesRefresh(const CEncapFamilyColumn& column);

    /// Makes the columns exactly those that the column's formula refers to.
    static void SetReferences(CEncapFamilyColumn& column,
                              const std::vector<CEncapFamilyColumn*>& references);
    /// Takes every edge of a column away, in both directions.
    static void Disconnect(CEncapFamilyColumn& column);
};

} // namespace encap
