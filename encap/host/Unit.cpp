#include "encap/host/Unit.h"

#include "encap/host/Power.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace encap::host {

namespace {

constexpr double kLargestWhole = 9007199254740992.0; // 2^53
// What a handful of multiplications in the unit database may lose.
constexpr double kNoise = 8 * std::numeric_limits<double>::epsilon();

// The decimal number of at most 12 digits beside the number, or the number itself.
double ShortDecimal(double number)
{
    char text[32];
    const auto end =
        std::to_chars(text, text + sizeof text, number, std::chars_format::scientific, 11);
    double decimal = number;
    std::from_chars(text, end.ptr, decimal);
    return std::abs(decimal - number) <= kNoise * std::abs(number) ? decimal : number;
}

} // namespace

Scale Scale::FromFactor(double factor)
{
    if (factor >= 1.0) {
        return {ShortDecimal(factor), 1.0};
    }
    const double inverse = 1.0 / factor;
    const double whole = std::round(inverse);
    if (whole <= kLargestWhole && std::abs(inverse - whole) <= kNoise * inverse) {
        return {1.0, whole};
    }
    return {ShortDecimal(factor), 1.0};
}

double Scale::Apply(double number) const
{
    return numerator == denominator ? number : number * numerator / denominator;
}

Scale Scale::Raised(double exponent) const
{
    const auto power = [exponent](double base) {
        return exponent == 0.5                          ? std::sqrt(base)
               : std::abs(exponent - 1.0 / 3.0) < 1e-12 ? std::cbrt(base)
                                                        : Power(base, exponent);
    };
    return {power(numerator), power(denominator)};
}

} // namespace encap::host
