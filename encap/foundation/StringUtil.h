#pragma once

#include "encap/foundation/Types.h"

#include <string_view>

/// Stateless helpers on the library's wide texts: splitting, recognising numbers and logical
/// values, decimal marks, file names and new identifiers. Static members only; safe to call from
/// any thread. Nothing here reports errors: bad input gives the answer that is documented with the
/// operation. White space is what encap::TrimView removes.
class ENCAP_API CStringUtil {
public:
    // Pieces of a text.

    /// Appends the pieces of the source between the occurrences of the whole separator text,
    /// untrimmed; emptyValue stands in for an empty piece, the one behind a closing separator
    /// included ("a;;b;" has four). An empty source or separator appends nothing.
    static void Split(const CString& source, const CString& separator, CStringArray& list,
                      const CString& emptyValue);
    /// Cuts the source at any of the delimiter characters and appends, for each piece that holds
    /// the bracket text, what stands before its first occurrence, trimmed, when that is not empty.
    /// False when source, delimiters or bracket are empty or the list is null.
    static bool ExtractByBracket(const CString& source, const CString& delimiters,
                                 const CString& bracket, CStringArray* list);
    /// Joins a text written with the concatenation symbol "&": each piece is trimmed and loses a
    /// double quote at each end when it begins and ends with one. "&" in quotes separates too.
    [[nodiscard]] static CString TranslateStringSymbol(const CString& text);

    // Numbers and logical values. A null pointer counts as an empty text.

    /// The standard text-to-double conversion consumes the whole text; true for an empty text.
    [[nodiscard]] static bool IsNumberStr(const CString& text);
    /// A plain decimal number with "." or "," as its mark; white space is not allowed. An empty or
    /// null text counts as numeric, as does a number that ends in "e" or in its sign ("1e", "1e+").
    [[nodiscard]] static bool IsNumericValue(const wchar_t* text);
    [[nodiscard]] static bool IsNumericValue(std::wstring_view text);
    /// The number at the start of the text, as the standard conversion reads it in the "C" locale;
    /// 0 when there is none.
    [[nodiscard]] static double ToDouble(const wchar_t* text);
    [[nodiscard]] static double ToDouble(std::wstring_view text);
    /// The fraction of the value lies strictly within the tolerance on both sides of 0. Never true
    /// outside the range of int32_t, nor for NaN.
    [[nodiscard]] static bool IsIntegerValue(double value, double tolerance);
    /// One of TRUE, FALSE, T, F, YES, NO, Y, N, 1 and 0, in any case and with white space around.
    [[nodiscard]] static bool IsLogicalValue(const wchar_t* text);
    /// Removes closing zeros, then closing points; always true. For numbers that were written with
    /// decimals: "100" becomes "1".
    static bool TrimDoubleString(CString& text);

    // Decimal marks.

    /// The decimal separator of the user's locale, read at each call.
    [[nodiscard]] static wchar_t GetDecimalSeparator();
    /// Turns each "," of a numeric text into "." in place and returns the text; other texts stay.
    static CString ReplaceDecimalPointOfCell(CString& text);
    /// The expression with its decimal marks outside braces as "." (toPoint), else as the user's
    /// separator. Column references in braces are left alone.
    [[nodiscard]] static CString ReplaceDecimalPointOfColumnExpression(const CString& expression,
                                                                       bool toPoint);

    // Names.

    /// A new random identifier: 36 characters, lower case, no braces; empty when the system has no
    /// randomness to give.
    [[nodiscard]] static CString NewGuid();
    /// Replaces each of ? \ / < > : * | " by "_", then trims; always true.
    static bool LegalizeForFileName(CString& text);
};
