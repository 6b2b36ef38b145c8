#include "encap/host/Words.h"

#include <algorithm>
#include <array>
#include <climits>

namespace encap::host {

namespace {

constexpr std::size_t kLongestWord = 5;

struct WordRow {
    std::wstring_view name; // lower case
    Word word;
    Arity arity;
};

constexpr Arity kOne{1, 1};
constexpr Arity kTwo{2, 2};
constexpr Arity kTwoOrMore{2, INT_MAX};

constexpr WordRow kWords[] = {
    {L"and", Word::And, {}},
    {L"or", Word::Or, {}},
    {L"not", Word::Not, {}},
    {L"pi", Word::Pi, {}},
    {L"e", Word::E, {}},
    {L"if", Word::If, {3, 3}},
    {L"abs", Word::Abs, kOne},
    {L"sqrt", Word::Sqrt, kOne},
    {L"cbrt", Word::Cbrt, kOne},
    {L"exp", Word::Exp, kOne},
    {L"ln", Word::Ln, kOne},
    {L"log", Word::Log, kOne},
    {L"sin", Word::Sin, kOne},
    {L"cos", Word::Cos, kOne},
    {L"tan", Word::Tan, kOne},
    {L"asin", Word::Asin, kOne},
    {L"acos", Word::Acos, kOne},
    {L"atan", Word::Atan, kOne},
    {L"sinh", Word::Sinh, kOne},
    {L"cosh", Word::Cosh, kOne},
    {L"tanh", Word::Tanh, kOne},
    {L"floor", Word::Floor, kOne},
    {L"ceil", Word::Ceil, kOne},
    {L"round", Word::Round, kOne},
    {L"trunc", Word::Trunc, kOne},
    {L"sign", Word::Sign, kOne},
    {L"pow", Word::Pow, kTwo},
    {L"atan2", Word::Atan2, kTwo},
    {L"mod", Word::Mod, kTwo},
    {L"hypot", Word::Hypot, kTwo},
    {L"min", Word::Min, kTwoOrMore},
    {L"max", Word::Max, kTwoOrMore},
};

// The name's characters in one number, so that a look-up compares numbers.
constexpr uint64_t KeyOf(std::wstring_view name)
{
    uint64_t key = 0;
    for (const auto unit : name) {
        const auto code = static_cast<char32_t>(unit);
        if (code >= 0x80) {
            return 0;
        }
        key = key << 8 | (code >= 'A' && code <= 'Z' ? code + ('a' - 'A') : code);
    }
    return key;
}

struct KeyedWord {
    uint64_t key;
    Word word;
};

consteval auto SortedKeys()
{
    std::array<KeyedWord, std::size(kWords)> keys{};
    std::transform(std::begin(kWords), std::end(kWords), keys.begin(), [](const WordRow& row) {
        return KeyedWord{KeyOf(row.name), row.word};
    });
    std::sort(keys.begin(), keys.end(),
              [](const KeyedWord& a, const KeyedWord& b) { return a.key < b.key; });
    return keys;
}

constexpr auto kKeys = SortedKeys();

} // namespace

Word FindWord(std::wstring_view name)
{
    if (name.empty() || name.size() > kLongestWord) {
        return Word::None;
    }
    const uint64_t key = KeyOf(name);
    const auto* const found =
        std::lower_bound(kKeys.begin(), kKeys.end(), key,
                         [](const KeyedWord& row, uint64_t wanted) { return row.key < wanted; });
    return found != kKeys.end() && found->key == key ? found->word : Word::None;
}

Arity ArityOf(Word word)
{
    const auto* const row = std::find_if(std::begin(kWords), std::end(kWords) - 1,
                                         [word](const WordRow& each) { return each.word == word; });
    return row->arity;
}

} // namespace encap::host
