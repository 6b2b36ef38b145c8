#include "cli/DisplayText.h"

#include "encap/foundation/CodePoints.h"
#include "encap/platform/Encoding.h"

#include <algorithm>
#include <iterator>

namespace encap::cli {
namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// The larger blocks of the Unicode property East_Asian_Width (wide and fullwidth).
constexpr Range kWide[] = {
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x2329, 0x232A},   {0x2E80, 0x303E},
    {0x3041, 0x33FF},   {0x3400, 0x4DBF},   {0x4E00, 0xA4CF},   {0xA960, 0xA97F},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE10, 0xFE19},   {0xFE30, 0xFE6F},
    {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},   {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF},
    {0x1F900, 0x1F9FF}, {0x1FA70, 0x1FAFF}, {0x20000, 0x3FFFD},
};

// The larger blocks of combining marks and of format characters.
constexpr Range kWithoutWidth[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A},   {0x064B, 0x065F},
    {0x0670, 0x0670}, {0x06D6, 0x06DC}, {0x093C, 0x093C}, {0x0941, 0x0948},   {0x094D, 0x094D},
    {0x0E31, 0x0E31}, {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF},   {0x1DC0, 0x1DFF},
    {0x200B, 0x200F}, {0x202A, 0x202E}, {0x2060, 0x2069}, {0x20D0, 0x20F0},   {0x3099, 0x309A},
    {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}, {0xE0100, 0xE01EF},
};

template <std::size_t N>
bool IsIn(const Range (&ranges)[N], char32_t character)
{
    const auto* const behind =
        std::upper_bound(std::begin(ranges), std::end(ranges), character,
                         [](char32_t value, const Range& range) { return value < range.first; });
    return behind != std::begin(ranges) && character <= std::prev(behind)->last;
}

/// What is shown for a character that would move the cursor; 0 for all others.
char32_t PictureOf(char32_t character)
{
    constexpr char32_t kPictures = 0x2400;
    constexpr char32_t kPictureOfDelete = 0x2421;
    if (character < 0x20) {
        return kPictures + character;
    }
    if (character == 0x7F) {
        return kPictureOfDelete;
    }
    const bool isControl = character > 0x7F && character < 0xA0;
    const bool isLineEnd = character == 0x2028 || character == 0x2029;
    return isControl || isLineEnd ? kReplacementCharacter : 0;
}

} // namespace

std::size_t AppendForDisplay(std::string& out, std::wstring_view text)
{
    std::size_t columns = 0;
    const wchar_t* position = text.data();
    const wchar_t* const end = position + text.size();
    while (position != end) {
        const wchar_t* const start = position;
        const char32_t character = NextCodePoint(position, end);
        if (character >= 0x20 && character < 0x7F) {
            out += static_cast<char>(character);
            ++columns;
            continue;
        }
        if (const char32_t picture = PictureOf(character); picture != 0) {
            const auto shown = static_cast<wchar_t>(picture);
            platform::AppendUtf8(out, std::wstring_view(&shown, 1));
            ++columns;
            continue;
        }
        platform::AppendUtf8(out, {start, static_cast<std::size_t>(position - start)});
        columns += IsIn(kWide, character) ? 2 : IsIn(kWithoutWidth, character) ? 0 : 1;
    }
    return columns;
}

} // namespace encap::cli
