#pragma once

#include <cstdint>
#include <string_view>

namespace encap::host {

/// The words of the expression language. None is any other name.
enum class Word : uint8_t {
    None,
    And,
    Or,
    Not,
    Pi,
    E,
    If,
    Abs,
    Sqrt,
    Cbrt,
    Exp,
    Ln,
    Log,
    Sin,
    Cos,
    Tan,
    Asin,
    Acos,
    Atan,
    Sinh,
    Cosh,
    Tanh,
    Floor,
    Ceil,
    Round,
    Trunc,
    Sign,
    Pow,
    Atan2,
    Mod,
    Hypot,
    Min,
    Max,
};

/// How many arguments a function takes.
struct Arity {
    int least = 0;
    int most = 0; ///< INT_MAX: any number
};

/// The word that a name is, without regard to case.
[[nodiscard]] Word FindWord(std::wstring_view name);
/// 0 to 0 for the constants; not meant for the operators.
[[nodiscard]] Arity ArityOf(Word word);

/// Whether a name can never be a unit's. All words but "min", the minute where it is not called.
[[nodiscard]] inline bool IsReservedName(std::wstring_view name)
{
    return FindWord(name) != Word::None && name != L"min";
}

[[nodiscard]] constexpr bool IsOperatorWord(Word word)
{
    return word == Word::And || word == Word::Or || word == Word::Not;
}
[[nodiscard]] constexpr bool IsConstant(Word word)
{
    return word == Word::Pi || word == Word::E;
}
[[nodiscard]] constexpr bool IsFunction(Word word)
{
    return word >= Word::If;
}

} // namespace encap::host
