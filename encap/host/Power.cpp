#include "encap/host/Power.h"

#include <cmath>

namespace encap::host {

namespace {

constexpr double kLargestWholeExponent = 64.0;
// Within these the parts of a product neither overflow nor lose digits.
constexpr double kSmallest = 1e-140;
constexpr double kLargest = 1e140;

/// An unevaluated sum of two doubles, with twice the digits of one.
struct Double2 {
    double high = 1.0;
    double low = 0.0;
};

/// The product without loss (T. J. Dekker, "A Floating-Point Technique for Extending the Available
/// Precision", 1971): each factor is split into halves whose products are exact.
Double2 ExactProduct(double left, double right)
{
    constexpr double kSplitter = 134217729.0; // 2^27 + 1
    const auto highHalf = [](double number) {
        const double scaled = kSplitter * number;
        return scaled - (scaled - number);
    };
    const double leftHigh = highHalf(left);
    const double leftLow = left - leftHigh;
    const double rightHigh = highHalf(right);
    const double rightLow = right - rightHigh;
    const double product = left * right;
    const double rest =
        ((leftHigh * rightHigh - product) + leftHigh * rightLow + leftLow * rightHigh) +
        leftLow * rightLow;
    return {product, rest};
}

Double2 Times(const Double2& left, double right)
{
    const Double2 product = ExactProduct(left.high, right);
    const double rest = product.low + left.low * right;
    const double high = product.high + rest;
    return {high, rest - (high - product.high)};
}

/// One over the number, rounded once.
double Inverse(const Double2& number)
{
    const double inverse = 1.0 / number.high;
    const Double2 product = ExactProduct(inverse, number.high);
    const double error = (1.0 - product.high - product.low) - inverse * number.low;
    return inverse + inverse * error;
}

bool IsInRange(double number)
{
    return std::abs(number) > kSmallest && std::abs(number) < kLargest;
}

} // namespace

double Power(double base, double exponent)
{
    if (exponent == 0.5 && base > 0.0) {
        return std::sqrt(base);
    }
    if (std::abs(exponent) > kLargestWholeExponent || exponent != std::trunc(exponent) ||
        !IsInRange(base)) {
        return std::pow(base, exponent);
    }
    Double2 power;
    const int count = static_cast<int>(std::abs(exponent));
    for (int i = 0; i < count; ++i) {
        power = Times(power, base);
        if (!IsInRange(power.high)) {
            return std::pow(base, exponent);
        }
    }
    return exponent < 0.0 ? Inverse(power) : power.high + power.low;
}

} // namespace encap::host
