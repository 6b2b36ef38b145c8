#pragma once

#include <cstddef>
#include <string_view>

namespace encap::host {

/// White space between the parts of an expression or a unit.
[[nodiscard]] constexpr bool IsBlank(wchar_t c)
{
    return c == L' ' || (c >= L'\t' && c <= L'\r') || c == L'\u00A0';
}
[[nodiscard]] constexpr bool IsDigit(wchar_t c)
{
    return c >= L'0' && c <= L'9';
}
/// A letter, "_" or one of the signs that stand for units: degree, micro, ohm, prime.
[[nodiscard]] bool IsNameStart(wchar_t c);
/// A character inside a name: a digit too.
[[nodiscard]] inline bool IsNameCharacter(wchar_t c)
{
    return IsDigit(c) || IsNameStart(c);
}

/// A cursor over a text, and its numbers and names. Refers to the text, which must outlive it.
class Scanner {
public:
    /// acceptComma: "," is a decimal mark beside ".".
    Scanner(std::wstring_view text, bool acceptComma) : m_text(text), m_acceptComma(acceptComma) {}

    [[nodiscard]] std::size_t Position() const { return m_position; }
    void MoveTo(std::size_t position) { m_position = position; }
    void Skip(std::size_t count) { m_position += count; }
    void SkipBlanks()
    {
        while (m_position < m_text.size() && IsBlank(m_text[m_position])) {
            ++m_position;
        }
    }
    [[nodiscard]] bool AtEnd() const { return m_position >= m_text.size(); }
    /// The character at a distance; a zero past the end.
    [[nodiscard]] wchar_t Peek(std::size_t ahead = 0) const
    {
        return ahead < m_text.size() - m_position ? m_text[m_position + ahead] : L'\0';
    }
    /// From start to the cursor.
    [[nodiscard]] std::wstring_view Since(std::size_t start) const
    {
        return m_text.substr(start, m_position - start);
    }
    /// What an error names here: a whole name or number, or one character.
    [[nodiscard]] std::wstring_view TokenHere() const;

    /// The name that starts at a distance, digits at its end included; empty where none starts.
    [[nodiscard]] std::wstring_view NameAt(std::size_t ahead = 0) const;
    /// Whether "(" is the next character that is no blank, from a distance on.
    [[nodiscard]] bool CallFollows(std::size_t ahead) const;

    [[nodiscard]] bool AtNumber() const
    {
        return IsDigit(Peek()) || (IsMark(Peek()) && IsDigit(Peek(1)));
    }
    /// Reads a number without a sign, rounded to the nearest double; infinite where it is too
    /// large. REQUIRES: AtNumber().
    [[nodiscard]] double ReadNumber();

private:
    [[nodiscard]] bool IsMark(wchar_t c) const { return c == L'.' || (c == L',' && m_acceptComma); }
    [[nodiscard]] bool ExponentFollows() const;

    std::wstring_view m_text;
    std::size_t m_position = 0;
    bool m_acceptComma;
};

} // namespace encap::host
