#pragma once

#include "cli/check/CheckedRow.h"
#include "encap/foundation/TextFormat.h"

#include <initializer_list>
#include <memory>

namespace encap::cli {

/// Where a finding is; empty texts where a part does not apply.
struct Place {
    CString row{};
    CString column{};
    CString language{};
};

/// Takes the findings of one family in words and hands them on.
class FindingReport {
public:
    explicit FindingReport(const FindingSink& sink) : m_sink(sink) {}

    /// The parts fill the sentence of the rule.
    void Add(Rule rule, const Place& place, std::initializer_list<FormatArgument> parts) const
    {
        m_sink({rule, place.row, place.column, place.language,
                FormatText(EntryOf(rule).sentence, parts)});
    }

private:
    const FindingSink& m_sink;
};

/// The rules about one subject, with what they keep while a family is walked over. Made for one
/// family, which it refers to.
class FamilyCheck {
public:
    FamilyCheck() = default;
    FamilyCheck(const FamilyCheck&) = delete;
    FamilyCheck& operator=(const FamilyCheck&) = delete;
    virtual ~FamilyCheck() = default;

    // Called in the order of the documents: once, then for each column, then for each row.
    virtual void Begin(const FindingReport&) {}
    virtual void VisitColumn(const CheckedColumn&, const FindingReport&) {}
    virtual void VisitRow(const CheckedRow&, const FindingReport&) {}
};

using MakeFamilyCheck = std::unique_ptr<FamilyCheck> (*)(const CheckedFamily& family);

/// IDs of rows, columns and cells.
[[nodiscard]] std::unique_ptr<FamilyCheck> MakeIdCheck(const CheckedFamily& family);
/// The texts of formulas: braces, references, powers, what the host takes.
[[nodiscard]] std::unique_ptr<FamilyCheck> MakeFormulaCheck(const CheckedFamily& family);
[[nodiscard]] std::unique_ptr<FamilyCheck> MakeCycleCheck(const CheckedFamily& family);
/// Ranges of custom columns and the values chosen from them; file names of custom parts.
[[nodiscard]] std::unique_ptr<FamilyCheck> MakeRangeCheck(const CheckedFamily& family);
[[nodiscard]] std::unique_ptr<FamilyCheck> MakeCellCheck(const CheckedFamily& family);
[[nodiscard]] std::unique_ptr<FamilyCheck> MakeKeyCheck(const CheckedFamily& family);
[[nodiscard]] std::unique_ptr<FamilyCheck> MakeStringsCheck(const CheckedFamily& family);
[[nodiscard]] std::unique_ptr<FamilyCheck> MakeMappingCheck(const CheckedFamily& family);

} // namespace encap::cli
