#pragma once

#include "encap/evaluation/TableEvaluator.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/DataTypes.h"
#include "encap/foundation/Types.h"

#include <string_view>

namespace encap {

/// No text that evaluation builds grows past this many characters: formulas that multiply texts
/// end with a failure, not with the memory.
inline constexpr std::size_t kLongestExpression = 1U << 20U;
/// Values longer than this are handed out and not kept in the cache.
inline constexpr std::size_t kLongestCachedValue = 64U << 10U;

inline constexpr const wchar_t* kUnitless = vocabulary::kUnitless.wide;
/// The host's database length unit, which free-standing expressions are answered in.
inline constexpr const wchar_t* kDatabaseLength = L"cm";

/// The digits of numbers that are handed back to the host for conversion.
inline constexpr int kHostDigits = 6;

/// Real and integer columns, whose expressions the host computes.
[[nodiscard]] constexpr bool IsNumericType(DataTypes::ColumnDataType type)
{
    return type == DataTypes::ColumnDataTypeReal || type == DataTypes::ColumnDataTypeInteger;
}

/// Whether a result comes with a value.
[[nodiscard]] constexpr bool HasValue(CTableEvaluator::EvaluateResult result)
{
    return result == CTableEvaluator::EvaluateOK ||
           result == CTableEvaluator::EvaluateUnitlessFallback;
}

/// The unit, or "ul" for an empty one.
[[nodiscard]] CString UnitOrUnitless(const CString& unit);

/// Appends a referenced value to a numeric expression: a number with its column's unit ("ul" for an
/// empty one) directly behind it, any other text as it stands. Whether it is a number.
bool AppendReferencedValue(CString& expression, const CString& value, const CString& unit);

/// Joins a text expression at its "&": pieces are trimmed, doubled quote characters become one,
/// single ones go. A text whose first piece is empty stays as it is.
void JoinTextPieces(std::wstring_view expression, CString& joined);

/// The number text with its "." (where it has none, its ",") replaced by the separator.
[[nodiscard]] CString WithSeparator(CString number, wchar_t separator);

/// A computed number as a value: eight significant digits, with the separator ("." when 0).
void AssignNumberValue(double number, wchar_t separator, CString& text);

} // namespace encap
