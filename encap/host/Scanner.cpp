#include "encap/host/Scanner.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>

namespace encap::host {

namespace {

// A decimal number as it is read: mantissa * 10^exponent.
struct Decimal {
    uint64_t mantissa = 0;
    int64_t digits = 0; // without leading zeros
    int64_t exponent = 0;

    static constexpr int64_t kMostDigits = 19; // what the mantissa holds; more are past 2^53

    void Add(wchar_t digit)
    {
        if (digits > 0 || digit != L'0') {
            mantissa = digits < kMostDigits ? mantissa * 10 + static_cast<uint64_t>(digit - L'0')
                                            : mantissa;
            ++digits;
        }
    }
};

constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int64_t kLargestExactPower = 22;
constexpr uint64_t kLargestExactMantissa = uint64_t{1} << 53;

// Both parts are doubles without loss, so that one operation rounds once and gives the nearest
// double (W. D. Clinger, "How to Read Floating Point Numbers Accurately").
bool IsExact(const Decimal& decimal)
{
    return FLT_EVAL_METHOD == 0 && decimal.mantissa <= kLargestExactMantissa &&
           decimal.exponent <= kLargestExactPower && decimal.exponent >= -kLargestExactPower;
}

double ExactValue(const Decimal& decimal)
{
    const auto mantissa = static_cast<double>(decimal.mantissa);
    return decimal.exponent < 0 ? mantissa / kPowersOfTen[-decimal.exponent]
                                : mantissa * kPowersOfTen[decimal.exponent];
}

double NearestValue(std::wstring_view text, const Decimal& decimal)
{
    std::string narrow(text.size(), '\0');
    std::transform(text.begin(), text.end(), narrow.begin(),
                   [](wchar_t c) { return c == L',' ? '.' : static_cast<char>(c); });
    double value = 0.0;
    const auto read = std::from_chars(narrow.data(), narrow.data() + narrow.size(), value);
    if (read.ec == std::errc::result_out_of_range) {
        const bool isLarge = decimal.digits > 0 && decimal.digits + decimal.exponent > 0;
        return isLarge ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return value;
}

} // namespace

bool IsNameStart(wchar_t c)
{
    if ((c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_') {
        return true;
    }
    const auto code = static_cast<char32_t>(c);
    if (code < 0xB0) {
        return false;
    }
    // Letters of the first scripts, without the signs of multiplication and division among them.
    if (code >= 0xC0 && code < 0x2000) {
        return code != 0xD7 && code != 0xF7;
    }
    return code == 0xB0 || code == 0xB5 || code == 0x2032 || code == 0x2033 ||
           (code >= 0x2100 && code < 0x2150);
}

std::wstring_view Scanner::TokenHere() const
{
    const std::wstring_view name = NameAt();
    if (!name.empty()) {
        return name;
    }
    std::size_t length = 0;
    while (IsDigit(Peek(length)) || IsMark(Peek(length))) {
        ++length;
    }
    return m_text.substr(m_position, std::max<std::size_t>(length, 1));
}

std::wstring_view Scanner::NameAt(std::size_t ahead) const
{
    if (!IsNameStart(Peek(ahead))) {
        return {};
    }
    std::size_t length = 1;
    while (IsNameCharacter(Peek(ahead + length))) {
        ++length;
    }
    return m_text.substr(m_position + ahead, length);
}

bool Scanner::CallFollows(std::size_t ahead) const
{
    while (IsBlank(Peek(ahead))) {
        ++ahead;
    }
    return Peek(ahead) == L'(';
}

bool Scanner::ExponentFollows() const
{
    if (Peek() != L'e' && Peek() != L'E') {
        return false;
    }
    const std::size_t sign = Peek(1) == L'+' || Peek(1) == L'-' ? 1 : 0;
    return IsDigit(Peek(1 + sign));
}

double Scanner::ReadNumber()
{
    // Past this an exponent can only mean infinity or zero, whatever the mantissa's length.
    constexpr int64_t kLargestExponent = int64_t{1} << 40;
    const std::size_t start = m_position;
    Decimal decimal;
    for (; IsDigit(Peek()); ++m_position) {
        decimal.Add(Peek());
    }
    if (IsMark(Peek())) {
        for (++m_position; IsDigit(Peek()); ++m_position) {
            decimal.Add(Peek());
            --decimal.exponent;
        }
    }
    if (ExponentFollows()) {
        ++m_position;
        const bool isNegative = Peek() == L'-';
        m_position += IsDigit(Peek()) ? 0 : 1;
        int64_t exponent = 0;
        for (; IsDigit(Peek()); ++m_position) {
            exponent = std::min(exponent * 10 + (Peek() - L'0'), kLargestExponent);
        }
        decimal.exponent += isNegative ? -exponent : exponent;
    }
    return IsExact(decimal) ? ExactValue(decimal) : NearestValue(Since(start), decimal);
}

} // namespace encap::host
