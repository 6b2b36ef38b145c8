#pragma once

#include "encap/foundation/CodePoints.h"

#include <string_view>

namespace encap {

/// The lower-case form of a character. A lower-case form on the other side of U+FFFF is not taken,
/// so that folding keeps the number of units of a text in UTF-16 too.
[[nodiscard]] char32_t FoldCodePoint(char32_t codePoint);

/// Reads a text character by character in lower case. In 16-bit units the pairs join, in 32-bit
/// units each unit is a character of its own. Refers to the text.
template <class Unit>
class FoldedCharacters {
public:
    explicit FoldedCharacters(std::basic_string_view<Unit> text)
        : m_position(text.data()), m_end(text.data() + text.size())
    {
    }

    [[nodiscard]] bool AtEnd() const { return m_position == m_end; }
    /// REQUIRES: not at the end.
    char32_t Next()
    {
        if constexpr (sizeof(Unit) == 2) {
            return FoldCodePoint(NextCodePoint(m_position, m_end));
        } else {
            return FoldCodePoint(static_cast<char32_t>(*m_position++));
        }
    }

private:
    const Unit* m_position;
    const Unit* m_end;
};

} // namespace encap
