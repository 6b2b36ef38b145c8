#include "encap/host/Power.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace encap::host {
namespace {

// The expected values are quotients of whole numbers, rounded once.
TEST(Power, WholeExponentsAreRoundedOnce)
{
    constexpr struct {
        double base;
        double exponent;
        double power;
    } kCases[] = {
        {1.1, 3.0, 0x1.54bc6a7ef9db4p+0},     {0.7, -2.0, 0x1.05397829cbc15p+1},
        {3.0, 40.0, 0x1.517168a4523fdp+63},   {10.0, -3.0, 0x1.0624dd2f1a9fcp-10},
        {100.0, -7.0, 0x1.6849b86a12b9bp-47}, {-2.5, 5.0, -0x1.86a0000000000p+6},
        {6.95, 17.0, 0x1.769a7fe6cb564p+47},  {1.0000001, 64.0, 0x1.00006b5fe0969p+0},
    };
    for (const auto& [base, exponent, power] : kCases) {
        EXPECT_EQ(Power(base, exponent), power) << base << '^' << exponent;
    }
    EXPECT_EQ(Power(2.0, 0.5), std::sqrt(2.0));
}

TEST(Power, TheEdgesAreThoseOfTheStandardFunction)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double base :
         {0.0, -0.0, 1.0, -1.0, 1e-150, 1e150, 1e300, infinity, -infinity, -8.0}) {
        for (const double exponent :
             {0.0, -0.0, 1.0, -1.0, 2.0, 3.0, 0.5, -0.5, 65.0, 1e300, infinity, -infinity}) {
            const double expected = std::pow(base, exponent);
            const double actual = Power(base, exponent);
            EXPECT_TRUE(actual == expected || (std::isnan(actual) && std::isnan(expected)))
                << base << '^' << exponent << ": " << actual << ' ' << expected;
            EXPECT_EQ(std::signbit(actual), std::signbit(expected)) << base << '^' << exponent;
        }
    }
}

} // namespace
} // namespace encap::host
