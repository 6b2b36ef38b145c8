#pragma once

#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/platform/Encoding.h"

#include <cmath>

#include <gtest/gtest.h>

/// Both sides within a few units of the last place of a double.
inline void ExpectClose(double actual, double expected)
{
    EXPECT_NEAR(actual, expected, std::abs(expected) * 1e-14);
}

/// Expects an expression to give a number in database units.
inline void ExpectValue(CStandaloneEvaluatorProvider& provider, const wchar_t* expression,
                        const wchar_t* unit, double expected)
{
    SCOPED_TRACE(encap::platform::WideToUtf8(expression));
    double value = 0.0;
    const int32_t status = provider.EvaluateExpression(expression, unit, value);
    ASSERT_EQ(status, CStandaloneEvaluatorProvider::StatusOK)
        << encap::platform::WideToUtf8(provider.LastError());
    ExpectClose(value, expected);
}

/// Expects a valid expression without a result.
inline void ExpectNoValue(CStandaloneEvaluatorProvider& provider, const wchar_t* expression,
                          const wchar_t* unit)
{
    SCOPED_TRACE(encap::platform::WideToUtf8(expression));
    double value = 0.0;
    EXPECT_EQ(provider.EvaluateExpression(expression, unit, value),
              CStandaloneEvaluatorProvider::StatusNoValue);
    EXPECT_TRUE(std::isnan(value));
}

/// Expects a refusal with its status and whole text.
inline void ExpectRefused(CStandaloneEvaluatorProvider& provider, const wchar_t* expression,
                          const wchar_t* unit, int32_t expected, const wchar_t* reason)
{
    SCOPED_TRACE(encap::platform::WideToUtf8(expression));
    double value = 0.0;
    EXPECT_EQ(provider.EvaluateExpression(expression, unit, value), expected);
    EXPECT_TRUE(std::isnan(value));
    EXPECT_EQ(encap::platform::WideToUtf8(provider.LastError()),
              encap::platform::WideToUtf8(reason));
}
