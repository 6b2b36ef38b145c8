#pragma once

#include "encap/foundation/Types.h"

#include <string_view>

// The one definition of "without regard to case" in the library: the simple, culture-neutral
// lower-case mapping of each character, the same on every platform and in every locale.
namespace encap {

/// The lower-case form of one character (ASCII fast path). On platforms with a 16-bit wchar_t a
/// surrogate unit maps to itself; whole texts fold pairs correctly.
[[nodiscard]] wchar_t FoldCase(wchar_t character);
/// The text with every character lower-cased.
[[nodiscard]] CString FoldCase(std::wstring_view text);
[[nodiscard]] bool EqualNoCase(std::wstring_view left, std::wstring_view right);
/// Negative, 0 or positive: the order of the folded texts, character by character.
[[nodiscard]] int CompareNoCase(std::wstring_view left, std::wstring_view right);
/// Equal for texts that are EqualNoCase.
[[nodiscard]] std::size_t HashNoCase(std::wstring_view text);

/// A Unicode letter or decimal digit, the same in every locale.
[[nodiscard]] bool IsLetter(wchar_t character);
[[nodiscard]] bool IsDecimalDigit(wchar_t character);

} // namespace encap
