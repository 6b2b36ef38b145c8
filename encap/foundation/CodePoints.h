#pragma once

// Characters in wide text, whose units are UTF-16 or UTF-32 by platform. Templates over the unit,
// so that each platform's form can be tested on every platform.
namespace encap {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;
inline constexpr char32_t kLastCodePoint = 0x10FFFF;

constexpr bool IsHighSurrogate(char32_t value)
{
    return value >= 0xD800 && value <= 0xDBFF;
}

constexpr bool IsLowSurrogate(char32_t value)
{
    return value >= 0xDC00 && value <= 0xDFFF;
}

constexpr bool IsSurrogate(char32_t value)
{
    return value >= 0xD800 && value <= 0xDFFF;
}

/// Reads one character and moves past it: the two units of a surrogate pair join, any other unit
/// comes out as it is (a lone surrogate too). REQUIRES: position != end.
template <class Unit>
char32_t NextCodePoint(const Unit*& position, const Unit* end)
{
    const auto first = static_cast<char32_t>(*position++);
    if (!IsHighSurrogate(first) || position == end) {
        return first;
    }
    const auto second = static_cast<char32_t>(*position);
    if (!IsLowSurrogate(second)) {
        return first;
    }
    ++position;
    return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

/// Writes one character as one or, in 16-bit units outside the first plane, two units and returns
/// the position behind it. REQUIRES: room for them; in 16-bit units codePoint <= kLastCodePoint.
template <class Unit>
Unit* WriteCodePoint(Unit* out, char32_t codePoint)
{
    if constexpr (sizeof(Unit) == 2) {
        if (codePoint >= 0x10000) {
            *out++ = static_cast<Unit>(0xD800 + ((codePoint - 0x10000) >> 10));
            *out++ = static_cast<Unit>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
            return out;
        }
    }
    *out++ = static_cast<Unit>(codePoint);
    return out;
}

} // namespace encap
