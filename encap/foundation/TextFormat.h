#pragma once

#include "encap/foundation/Types.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace encap {

/// One argument of FormatText: a text or a whole number.
class FormatArgument {
public:
    FormatArgument(const wchar_t* text) : m_text(text != nullptr ? text : L"") {}
    FormatArgument(const CString& text) : m_text(text) {}
    FormatArgument(std::wstring_view text) : m_text(text) {}
    FormatArgument(int32_t number) : m_number(number), m_isNumber(true) {}

    [[nodiscard]] bool IsNumber() const { return m_isNumber; }
    [[nodiscard]] std::wstring_view Text() const { return m_text; }
    [[nodiscard]] int32_t Number() const { return m_number; }

private:
    std::wstring_view m_text;
    int32_t m_number = 0;
    bool m_isNumber = false;
};

/// Fills %s, %d and %X of the library's format strings from the arguments in order; %% gives "%".
/// Wide text is taken as it is on every platform. A missing argument gives nothing; a text stands
/// for %d and %X too, a number for %s in decimal; any other "%" stays.
[[nodiscard]] CString FormatText(std::wstring_view format,
                                 std::initializer_list<FormatArgument> arguments);

/// The library's one white space: the six characters that are white space in the "C" locale. The
/// same on every platform and in every locale; other blanks of Unicode are text.
inline constexpr std::wstring_view kWhiteSpace = L" \t\n\v\f\r";

/// Whether one of two characters stands in the text.
[[nodiscard]] inline bool HoldsEither(std::wstring_view text, wchar_t one, wchar_t other)
{
    return std::any_of(text.begin(), text.end(),
                       [=](wchar_t character) { return character == one || character == other; });
}

/// The text without white space (kWhiteSpace) at both ends.
[[nodiscard]] std::wstring_view TrimView(std::wstring_view text);

} // namespace encap
