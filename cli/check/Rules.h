#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace encap::cli {

enum class Severity : int32_t { Warning = 0, Error = 1 };

/// What a family can have wrong, by the place in Rules().
enum class Rule : int32_t {
    StringsMissing,
    StringsIncomplete,
    StringsUnknown,
    IdDuplicate,
    IdMissing,
    FormulaSyntax,
    FormulaRefused,
    ReferenceUnknown,
    ReferenceCycle,
    UnitPower,
    RangeParts,
    RangeValue,
    CustomFileName,
    MappingBroken,
    CellUnknownColumn,
    ExpressionOverride,
    CellFails,
    CellUnitless,
    KeyDuplicate,
    CacheDiffers,
};

/// One line of the table of rules. IDs are permanent: results are compared by them over years.
struct RuleEntry {
    Rule rule;
    const wchar_t* id;
    Severity severity;
    const wchar_t* summary;  ///< what the rule finds
    const wchar_t* sentence; ///< what a finding says, for FormatText
    const wchar_t* remedy;   ///< what to do
};

/// Every rule, in the order of Rule.
[[nodiscard]] std::span<const RuleEntry> Rules();
[[nodiscard]] const RuleEntry& EntryOf(Rule rule);
/// Null when no rule has the ID.
[[nodiscard]] const RuleEntry* FindRule(std::wstring_view id);
/// "warning" or "error".
[[nodiscard]] const wchar_t* WordOf(Severity severity);

} // namespace encap::cli
