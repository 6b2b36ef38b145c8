#pragma once

#include "encap/foundation/Types.h"

#include <optional>
#include <string_view>

// Numbers as text, independent of the process locale. "." is the decimal mark everywhere.
namespace encap {

/// What the standard wide-text-to-double conversion reads at the start of a text.
struct LeadingNumber {
    double value = 0.0;
    std::size_t consumed = 0; ///< characters read, leading white space included; 0: no number
};

/// Reads as wcstod does in the "C" locale (white space, sign, decimal or hexadecimal digits,
/// exponent, "inf", "nan").
[[nodiscard]] LeadingNumber ReadLeadingNumber(std::wstring_view text);

/// A whole text of white space, optional sign and decimal digits, and white space; anything else,
/// or a value outside int32_t, gives nothing.
[[nodiscard]] std::optional<int32_t> ReadInteger(std::wstring_view text);

/// As "%.12f".
[[nodiscard]] CString FormatFixed12(double value);
/// As "%.<digits>g" with digits significant digits ("%g" is 6), which are brought into 1 to 17.
[[nodiscard]] CString FormatGeneral(double value, int digits);
/// Appends instead of returning, for hot paths.
void AppendGeneral(CString& out, double value, int digits);
[[nodiscard]] CString FormatInteger(int64_t value);
/// As "%X".
[[nodiscard]] CString FormatHexadecimal(uint32_t value);

} // namespace encap
