#pragma once

#include "encap/foundation/Types.h"

#include <array>
#include <string>
#include <string_view>

// Wide texts on their way into the tree.
namespace encap {

/// Null counts as empty.
[[nodiscard]] inline std::wstring_view ViewOf(const wchar_t* text)
{
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

/// A name or a query in UTF-8; short ASCII texts stand in the object itself.
class Utf8Text {
public:
    explicit Utf8Text(std::wstring_view text);
    explicit Utf8Text(const wchar_t* text) : Utf8Text(ViewOf(text)) {}
    Utf8Text(const Utf8Text&) = delete;
    Utf8Text& operator=(const Utf8Text&) = delete;

    /// Zero-terminated.
    [[nodiscard]] std::string_view View() const { return m_view; }

private:
    std::array<char, 64> m_short;
    std::string m_long;
    std::string_view m_view;
};

/// The text in UTF-8 with U+FFFD for every character that XML 1.0 (section 2.2, Char) does not
/// allow in a document.
[[nodiscard]] std::string DocumentText(std::wstring_view text);

/// A name that XML allows for elements and attributes, with at most one prefix.
[[nodiscard]] bool IsQualifiedName(std::string_view name);
/// Letters, digits, ".", "_" and "-" after a letter (XML 1.0, section 4.3.3, EncName).
[[nodiscard]] bool IsEncodingName(std::string_view name);
/// White space only, in XML's sense; an empty text is blank.
[[nodiscard]] bool IsBlank(std::string_view text);

} // namespace encap
