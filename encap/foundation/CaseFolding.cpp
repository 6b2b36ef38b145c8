#include "encap/foundation/CaseFolding.h"

#include "encap/foundation/FoldedCharacters.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>

#include <utf8proc.h>

namespace encap {
namespace {

constexpr char32_t kFirstNonAscii = 0x80;
constexpr std::size_t kBlock = 8;
constexpr uint64_t kEachByte = 0x0101010101010101U;
constexpr uint64_t kHashFactor = 0x9E3779B97F4A7C15U;

constexpr char32_t FoldAscii(char32_t character)
{
    return character >= U'A' && character <= U'Z' ? character + (U'a' - U'A') : character;
}

template <class Unit>
constexpr bool IsAscii(Unit character)
{
    return static_cast<char32_t>(character) < kFirstNonAscii;
}

/// Eight units as the bytes of a word, or false when one of them is not ASCII. The bytes stand in
/// whatever order is quick: a hash only needs it to be always the same.
bool PackBlock(const wchar_t* units, uint64_t& packed)
{
    constexpr std::size_t kPerLoad = sizeof(uint64_t) / sizeof(wchar_t);
    constexpr uint64_t kNonAsciiBits =
        sizeof(wchar_t) == 2 ? 0xFF80FF80FF80FF80U : 0xFFFFFF80FFFFFF80U;
    uint64_t all = 0;
    packed = 0;
    for (std::size_t i = 0; i < kBlock / kPerLoad; ++i) {
        uint64_t load = 0;
        std::memcpy(&load, units + i * kPerLoad, sizeof load);
        all |= load;
        packed |= load << (8 * i);
    }
    return (all & kNonAsciiBits) == 0;
}

/// Lower-cases eight ASCII characters at once: the high bit of a byte of the two sums tells whether
/// the character is at or past "A", and past "Z"; no sum reaches the next byte.
constexpr uint64_t FoldAsciiBytes(uint64_t bytes)
{
    const uint64_t fromA = bytes + kEachByte * (0x80 - 'A');
    const uint64_t pastZ = bytes + kEachByte * (0x80 - 'Z' - 1);
    return bytes | ((fromA & ~pastZ & (kEachByte * 0x80)) >> 2);
}

constexpr uint64_t Mix(uint64_t hash, uint64_t word)
{
    hash = (hash ^ word) * kHashFactor;
    return hash ^ (hash >> 32);
}

/// Up to seven folded ASCII characters at the end of a text.
bool PackTail(const wchar_t* units, std::size_t count, uint64_t& packed)
{
    packed = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (!IsAscii(units[i])) {
            return false;
        }
        packed = (packed << 8) | FoldAscii(static_cast<char32_t>(units[i]));
    }
    return true;
}

/// Characters beyond ASCII may fold into ASCII (the Kelvin sign is "k"), so blocks are judged and
/// packed by what they hold after folding, which makes the hash a function of the folded text.
uint64_t HashFoldedBlock(uint64_t hash, const wchar_t* units, std::size_t count)
{
    uint64_t packed = 0;
    if (count == kBlock ? PackBlock(units, packed) : PackTail(units, count, packed)) {
        return Mix(hash, packed);
    }
    for (std::size_t i = 0; i < count; ++i) {
        hash = Mix(hash, static_cast<char32_t>(units[i]));
    }
    return hash;
}

uint64_t HashFolded(uint64_t hash, std::wstring_view text)
{
    // One unit more than a block: a pair may begin with a block's last unit.
    std::array<wchar_t, kBlock + 1> units{};
    std::size_t count = 0;
    for (FoldedCharacters<wchar_t> characters(text); !characters.AtEnd();) {
        const wchar_t* const behind = WriteCodePoint(units.data() + count, characters.Next());
        count = static_cast<std::size_t>(behind - units.data());
        if (count >= kBlock) {
            hash = HashFoldedBlock(hash, units.data(), kBlock);
            units[0] = units[kBlock];
            count -= kBlock;
        }
    }
    return count > 0 ? HashFoldedBlock(hash, units.data(), count) : hash;
}

bool EqualFolded(std::wstring_view left, std::wstring_view right)
{
    FoldedCharacters<wchar_t> leftCharacters(left);
    FoldedCharacters<wchar_t> rightCharacters(right);
    while (!leftCharacters.AtEnd() && !rightCharacters.AtEnd()) {
        if (leftCharacters.Next() != rightCharacters.Next()) {
            return false;
        }
    }
    return leftCharacters.AtEnd() && rightCharacters.AtEnd();
}

} // namespace

char32_t FoldCodePoint(char32_t codePoint)
{
    if (codePoint < kFirstNonAscii) {
        return FoldAscii(codePoint);
    }
    if (codePoint > kLastCodePoint) {
        return codePoint;
    }
    const auto folded =
        static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(codePoint)));
    return (folded > 0xFFFF) == (codePoint > 0xFFFF) ? folded : codePoint;
}

wchar_t FoldCase(wchar_t character)
{
    return static_cast<wchar_t>(FoldCodePoint(static_cast<char32_t>(character)));
}

CString FoldCase(std::wstring_view text)
{
    CString result(text.size(), L'\0');
    // Folding keeps the number of units, so each character lands where it was read.
    wchar_t* out = result.data();
    for (FoldedCharacters<wchar_t> characters(text); !characters.AtEnd();) {
        out = WriteCodePoint(out, characters.Next());
    }
    return result;
}

bool EqualNoCase(std::wstring_view left, std::wstring_view right)
{
    if (left.size() != right.size()) {
        return false;
    }
    if (left == right) {
        return true;
    }
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (left[i] == right[i]) {
            continue;
        }
        if (!IsAscii(left[i]) || !IsAscii(right[i])) {
            return EqualFolded(left, right);
        }
        if (FoldAscii(static_cast<char32_t>(left[i])) !=
            FoldAscii(static_cast<char32_t>(right[i]))) {
            return false;
        }
    }
    return true;
}

int CompareNoCase(std::wstring_view left, std::wstring_view right)
{
    FoldedCharacters<wchar_t> leftCharacters(left);
    FoldedCharacters<wchar_t> rightCharacters(right);
    while (!leftCharacters.AtEnd() && !rightCharacters.AtEnd()) {
        const char32_t leftCharacter = leftCharacters.Next();
        const char32_t rightCharacter = rightCharacters.Next();
        if (leftCharacter != rightCharacter) {
            return leftCharacter < rightCharacter ? -1 : 1;
        }
    }
    return static_cast<int>(!leftCharacters.AtEnd()) - static_cast<int>(!rightCharacters.AtEnd());
}

std::size_t HashNoCase(std::wstring_view text)
{
    uint64_t hash = text.size() * kHashFactor;
    std::size_t position = 0;
    for (; position + kBlock <= text.size(); position += kBlock) {
        uint64_t packed = 0;
        if (!PackBlock(text.data() + position, packed)) {
            break;
        }
        hash = Mix(hash, FoldAsciiBytes(packed));
    }
    const std::wstring_view rest = text.substr(position);
    uint64_t packed = 0;
    if (rest.size() < kBlock && PackTail(rest.data(), rest.size(), packed)) {
        hash = rest.empty() ? hash : Mix(hash, packed);
    } else {
        hash = HashFolded(hash, rest);
    }
    hash *= kHashFactor;
    return static_cast<std::size_t>(hash ^ (hash >> 29));
}

bool IsLetter(wchar_t character)
{
    const auto value = static_cast<char32_t>(character);
    if (value < kFirstNonAscii) {
        return FoldAscii(value) >= U'a' && FoldAscii(value) <= U'z';
    }
    const utf8proc_category_t category = utf8proc_category(static_cast<utf8proc_int32_t>(value));
    return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_LO;
}

bool IsDecimalDigit(wchar_t character)
{
    const auto value = static_cast<char32_t>(character);
    if (value < kFirstNonAscii) {
        return value >= U'0' && value <= U'9';
    }
    return utf8proc_category(static_cast<utf8proc_int32_t>(value)) == UTF8PROC_CATEGORY_ND;
}

} // namespace encap
