#include "encap/foundation/NumberText.h"

#include "encap/foundation/TextFormat.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace encap {
namespace {

/// The longest number that is read without an allocation.
constexpr std::size_t kShortNumber = 64;
/// 309 digits of the largest double, its sign, the mark and 12 decimals.
constexpr std::size_t kLongestFixed = 336;
/// Past 17 digits a double tells nothing more.
constexpr int kMostDigits = 17;

constexpr bool IsDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

constexpr wchar_t Lower(wchar_t character)
{
    return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character + (L'a' - L'A'))
                                                  : character;
}

constexpr bool IsHexadecimalDigit(wchar_t character)
{
    return IsDigit(character) || (Lower(character) >= L'a' && Lower(character) <= L'f');
}

bool StartsWith(std::wstring_view text, std::wstring_view lowerPrefix)
{
    return text.size() >= lowerPrefix.size() &&
           std::equal(lowerPrefix.begin(), lowerPrefix.end(), text.begin(),
                      [](wchar_t lower, wchar_t character) { return lower == Lower(character); });
}

/// How the digits of decimal and of hexadecimal numbers are written.
struct Notation {
    bool (*isDigit)(wchar_t);
    wchar_t exponentMark;
    std::chars_format format;
    int64_t powersPerDigit;
};

constexpr Notation kDecimal{[](wchar_t c) { return IsDigit(c); }, L'e', std::chars_format::general,
                            1};
constexpr Notation kHexadecimal{[](wchar_t c) { return IsHexadecimalDigit(c); }, L'p',
                                std::chars_format::hex, 4};

std::size_t SkipDigits(std::wstring_view text, std::size_t position, const Notation& notation)
{
    while (position < text.size() && notation.isDigit(text[position])) {
        ++position;
    }
    return position;
}

/// The end of an exponent that begins at the position; the position itself where there is none.
std::size_t SkipExponent(std::wstring_view text, std::size_t position, wchar_t mark)
{
    std::size_t digits = position + 1;
    if (position >= text.size() || Lower(text[position]) != mark) {
        return position;
    }
    if (digits < text.size() && (text[digits] == L'+' || text[digits] == L'-')) {
        ++digits;
    }
    const std::size_t end = SkipDigits(text, digits, kDecimal);
    return end > digits ? end : position;
}

/// The length of the unsigned number at the start of the text; 0 when there is no digit.
std::size_t NumberLength(std::wstring_view text, const Notation& notation)
{
    std::size_t end = SkipDigits(text, 0, notation);
    std::size_t digits = end;
    if (end < text.size() && text[end] == L'.') {
        const std::size_t fraction = end + 1;
        const std::size_t fractionEnd = SkipDigits(text, fraction, notation);
        digits += fractionEnd - fraction;
        end = fractionEnd;
    }
    return digits > 0 ? SkipExponent(text, end, notation.exponentMark) : 0;
}

/// What an out-of-range number is nearest to: its first digit that is not 0 stands above or below
/// the unit once the exponent is applied.
double OutOfRangeValue(std::string_view number, const Notation& notation)
{
    const auto mark = static_cast<char>(notation.exponentMark);
    const std::size_t exponentAt = std::min(
        {number.find(mark), number.find(static_cast<char>(mark - ('a' - 'A'))), number.size()});
    const std::size_t point = std::min(number.find('.'), exponentAt);
    const std::size_t first = std::min(number.find_first_not_of("0."), exponentAt);
    const auto magnitude = static_cast<int64_t>(point) - static_cast<int64_t>(first);

    constexpr int64_t kFarAway = int64_t{1} << 40;
    int64_t exponent = 0;
    if (exponentAt < number.size()) {
        const bool negative = number[exponentAt + 1] == '-';
        for (const char digit : number.substr(exponentAt + 1)) {
            if (digit >= '0' && digit <= '9') {
                exponent = std::min(exponent * 10 + (digit - '0'), kFarAway);
            }
        }
        exponent = negative ? -exponent : exponent;
    }
    return magnitude * notation.powersPerDigit + exponent > 0
               ? std::numeric_limits<double>::infinity()
               : 0.0;
}

double ConvertNarrow(std::string_view number, const Notation& notation)
{
    double value = 0.0;
    const auto result =
        std::from_chars(number.data(), number.data() + number.size(), value, notation.format);
    return result.ec == std::errc() ? value : OutOfRangeValue(number, notation);
}

/// REQUIRES: the text is all a number of the notation.
double Convert(std::wstring_view text, const Notation& notation)
{
    const auto narrow = [](wchar_t character) { return static_cast<char>(character); };
    if (text.size() <= kShortNumber) {
        std::array<char, kShortNumber> buffer;
        std::transform(text.begin(), text.end(), buffer.begin(), narrow);
        return ConvertNarrow({buffer.data(), text.size()}, notation);
    }
    std::string buffer(text.size(), '\0');
    std::transform(text.begin(), text.end(), buffer.begin(), narrow);
    return ConvertNarrow(buffer, notation);
}

/// "nan", with a sequence of letters, digits and "_" in brackets where its bracket closes.
std::size_t NanLength(std::wstring_view text)
{
    constexpr std::size_t kNan = 3;
    if (text.size() == kNan || text[kNan] != L'(') {
        return kNan;
    }
    std::size_t end = kNan + 1;
    while (end < text.size() && (IsDigit(text[end]) || text[end] == L'_' ||
                                 (Lower(text[end]) >= L'a' && Lower(text[end]) <= L'z'))) {
        ++end;
    }
    return end < text.size() && text[end] == L')' ? end + 1 : kNan;
}

LeadingNumber ReadUnsigned(std::wstring_view text)
{
    if (StartsWith(text, L"0x")) {
        const std::wstring_view digits = text.substr(2);
        const std::size_t length = NumberLength(digits, kHexadecimal);
        if (length > 0) {
            return {Convert(digits.substr(0, length), kHexadecimal), length + 2};
        }
    }
    if (const std::size_t length = NumberLength(text, kDecimal); length > 0) {
        return {Convert(text.substr(0, length), kDecimal), length};
    }
    for (const std::wstring_view name : {L"infinity", L"inf"}) {
        if (StartsWith(text, name)) {
            return {std::numeric_limits<double>::infinity(), name.size()};
        }
    }
    if (StartsWith(text, L"nan")) {
        return {std::numeric_limits<double>::quiet_NaN(), NanLength(text)};
    }
    return {};
}

void AppendAscii(CString& out, const char* first, const char* last)
{
    for (; first != last; ++first) {
        out.push_back(static_cast<wchar_t>(*first));
    }
}

/// "inf" and "nan" with their sign; false for other values.
bool AppendNotFinite(CString& out, double value)
{
    if (std::isfinite(value)) {
        return false;
    }
    out += std::signbit(value) ? L"-" : L"";
    out += std::isnan(value) ? L"nan" : L"inf";
    return true;
}

constexpr std::array<double, 12> kPowersOfTen{1e0, 1e1, 1e2, 1e3, 1e4,  1e5,
                                              1e6, 1e7, 1e8, 1e9, 1e10, 1e11};

/// Whole numbers of few enough digits, which most values are, need no decimal conversion.
bool AppendShortInteger(CString& out, double value, int digits)
{
    constexpr int kMostIntegerDigits = 9;
    const double limit =
        kPowersOfTen[static_cast<std::size_t>(std::min(digits, kMostIntegerDigits))];
    if (!(std::fabs(value) < limit) || (value == 0.0 && std::signbit(value))) {
        return false;
    }
    const auto integer = static_cast<int32_t>(value);
    if (integer != value) {
        return false;
    }
    std::array<char, 11> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), integer);
    AppendAscii(out, buffer.data(), result.ptr);
    return true;
}

/// value * 10^power to the nearest whole number, from the exact product; false when that lies so
/// near the middle between two that the exact digits have to decide.
/// REQUIRES: the result has at most 8 digits.
bool ScaleToInteger(double value, std::size_t power, uint32_t& integer)
{
    // Powers of ten have at most 26 significant bits here, so that both partial products are exact.
    constexpr uint64_t kLowHalf = (uint64_t{1} << 27U) - 1;
    const double high = std::bit_cast<double>(std::bit_cast<uint64_t>(value) & ~kLowHalf);
    const double highProduct = high * kPowersOfTen[power];
    const double lowProduct = (value - high) * kPowersOfTen[power];
    const double product = highProduct + lowProduct;
    const double lost = lowProduct - (product - highProduct);
    integer = static_cast<uint32_t>(product);
    const double fraction = (product - integer) + lost;
    constexpr double kTooNear = 1e-6;
    integer += fraction > 0.5 ? 1 : 0;
    return std::fabs(fraction - 0.5) > kTooNear;
}

/// The digits of a number of which `before` stand before the mark (or, below 1, -before zeros
/// behind it), without zeros at the end.
void AppendDigits(CString& out, uint32_t integer, int before)
{
    while (integer % 10 == 0) {
        integer /= 10;
    }
    std::array<char, 10> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), integer);
    const auto count = static_cast<int>(result.ptr - buffer.data());
    if (before <= 0) {
        out.append(L"0.").append(static_cast<std::size_t>(-before), L'0');
        AppendAscii(out, buffer.data(), result.ptr);
    } else if (before >= count) {
        AppendAscii(out, buffer.data(), result.ptr);
        out.append(static_cast<std::size_t>(before - count), L'0');
    } else {
        AppendAscii(out, buffer.data(), buffer.data() + before);
        out += L'.';
        AppendAscii(out, buffer.data() + before, result.ptr);
    }
}

/// Numbers of ordinary size in at most eight digits, several times faster than the general
/// conversion and with the same result; false for others and for those too near a tie.
bool AppendShortDecimal(CString& out, double value, int digits)
{
    constexpr int kMostShortDigits = 8;
    const double size = std::fabs(value);
    if (digits > kMostShortDigits || !(size >= 1e-4) ||
        !(size < kPowersOfTen[static_cast<std::size_t>(digits)])) {
        return false;
    }
    constexpr std::array<double, 4> kSmallPowers{1e-1, 1e-2, 1e-3, 1e-4};
    int before = 0; // digits before the mark
    while (size >= kPowersOfTen[static_cast<std::size_t>(before)]) {
        ++before;
    }
    while (before <= 0 && size < kSmallPowers[static_cast<std::size_t>(-before)]) {
        --before;
    }
    uint32_t integer = 0;
    if (!ScaleToInteger(size, static_cast<std::size_t>(digits - before), integer)) {
        return false;
    }
    if (integer == static_cast<uint32_t>(kPowersOfTen[static_cast<std::size_t>(digits)])) {
        ++before; // rounded up to the next power of ten
    }
    if (before > digits) {
        return false;
    }
    out.append(value < 0 ? 1 : 0, L'-');
    AppendDigits(out, integer, before);
    return true;
}

} // namespace

LeadingNumber ReadLeadingNumber(std::wstring_view text)
{
    std::size_t start = std::min(text.find_first_not_of(kWhiteSpace), text.size());
    const bool hasSign = start < text.size() && (text[start] == L'-' || text[start] == L'+');
    const bool negative = hasSign && text[start] == L'-';
    start += hasSign ? 1 : 0;

    LeadingNumber number = ReadUnsigned(text.substr(start));
    if (number.consumed > 0) {
        number.value = negative ? -number.value : number.value;
        number.consumed += start;
    }
    return number;
}

std::optional<int32_t> ReadInteger(std::wstring_view text)
{
    text = TrimView(text);
    const bool hasSign = !text.empty() && (text.front() == L'-' || text.front() == L'+');
    const bool negative = hasSign && text.front() == L'-';
    text.remove_prefix(hasSign ? 1 : 0);
    if (text.empty() || SkipDigits(text, 0, kDecimal) != text.size()) {
        return std::nullopt;
    }

    const int64_t limit = int64_t{std::numeric_limits<int32_t>::max()} + (negative ? 1 : 0);
    int64_t magnitude = 0;
    for (const wchar_t digit : text) {
        magnitude = magnitude * 10 + (digit - L'0');
        if (magnitude > limit) {
            return std::nullopt;
        }
    }
    return static_cast<int32_t>(negative ? -magnitude : magnitude);
}

CString FormatFixed12(double value)
{
    CString out;
    if (!AppendNotFinite(out, value)) {
        std::array<char, kLongestFixed> buffer;
        const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::fixed, 12);
        AppendAscii(out, buffer.data(), result.ptr);
    }
    return out;
}

CString FormatGeneral(double value, int digits)
{
    CString out;
    AppendGeneral(out, value, digits);
    return out;
}

void AppendGeneral(CString& out, double value, int digits)
{
    digits = std::clamp(digits, 1, kMostDigits);
    if (AppendShortInteger(out, value, digits) || AppendShortDecimal(out, value, digits) ||
        AppendNotFinite(out, value)) {
        return;
    }
    // Sign, mark, "0.000" or "e-308" stand beside the digits.
    std::array<char, kMostDigits + 8> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::general, digits);
    AppendAscii(out, buffer.data(), result.ptr);
}

CString FormatInteger(int64_t value)
{
    std::array<char, 20> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    CString out;
    AppendAscii(out, buffer.data(), result.ptr);
    return out;
}

CString FormatHexadecimal(uint32_t value)
{
    std::array<char, 8> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, 16);
    std::transform(buffer.data(), result.ptr, buffer.data(), [](char digit) {
        return digit >= 'a' ? static_cast<char>(digit - ('a' - 'A')) : digit;
    });
    CString out;
    AppendAscii(out, buffer.data(), result.ptr);
    return out;
}

} // namespace encap
