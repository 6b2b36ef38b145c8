#pragma once

#include <string_view>

namespace encap {

/// The text itself, or an empty text for null.
[[nodiscard]] inline const wchar_t* TextOrEmpty(const wchar_t* text)
{
    return text != nullptr ? text : L"";
}

/// A view of the text; an empty one for null.
[[nodiscard]] inline std::wstring_view ViewOrEmpty(const wchar_t* text)
{
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

} // namespace encap
