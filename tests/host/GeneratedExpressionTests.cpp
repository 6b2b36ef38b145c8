#include "encap/host/Scanner.h"
#include "tests/host/HostCases.h"

#include <bit>
#include <charconv>
#include <random>
#include <string>

namespace {

using Provider = CStandaloneEvaluatorProvider;
using Random = std::mt19937;

std::size_t Below(Random& random, std::size_t end)
{
    return random() % end;
}

std::wstring Wide(const std::string& text)
{
    return {text.begin(), text.end()};
}

std::string Digits(Random& random, std::size_t most)
{
    std::string digits;
    for (std::size_t count = Below(random, most) + 1; count > 0; --count) {
        digits += static_cast<char>('0' + Below(random, 10));
    }
    return digits;
}

std::string NumberText(Random& random)
{
    std::string text = Digits(random, Below(random, 8) == 0 ? 25 : 6);
    if (Below(random, 2) == 0) {
        text += '.';
        text += Digits(random, Below(random, 8) == 0 ? 25 : 4);
    }
    if (Below(random, 6) == 0) {
        text += Below(random, 2) == 0 ? "e-" : "E";
        text += Digits(random, 2);
    }
    return text;
}

double Reference(const std::string& number)
{
    double value = 0.0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    return value;
}

/// A text beside its value, computed from the tree that the text is printed from.
struct Generated {
    std::string text;
    double value = 0.0;
    int precedence = 0; // 1 sum, 2 product, 3 sign, 4 operand
};

std::string Enclosed(const Generated& part, int least)
{
    return part.precedence < least ? std::string("(").append(part.text).append(")") : part.text;
}

double FiniteOrNaN(double value)
{
    return std::isfinite(value) ? value : std::nan("");
}

Generated Generate(Random& random, int depth)
{
    const std::size_t kind = depth == 0 ? 6 : Below(random, 7);
    if (kind >= 6) {
        const std::string number = NumberText(random);
        return {number, FiniteOrNaN(Reference(number)), 4};
    }
    const Generated left = Generate(random, depth - 1);
    if (kind == 4) {
        return {std::string("-").append(Enclosed(left, 3)), -left.value, 3};
    }
    if (kind == 5) {
        return {std::string("(").append(left.text).append(")"), left.value, 4};
    }
    const Generated right = Generate(random, depth - 1);
    const int precedence = kind < 2 ? 1 : 2;
    const char* const blank = Below(random, 2) == 0 ? " " : "";
    // Operators of one precedence go from left to right, so the right side needs parentheses.
    const std::string text =
        Enclosed(left, precedence) + blank + "+-*/"[kind] + blank + Enclosed(right, precedence + 1);
    const double results[] = {left.value + right.value, left.value - right.value,
                              left.value * right.value, left.value / right.value};
    return {text, FiniteOrNaN(results[kind]), precedence};
}

TEST(GeneratedExpressions, AgreeWithTheReference)
{
    Random random(20240531);
    Provider provider;
    for (int i = 0; i < 5000; ++i) {
        const Generated expected = Generate(random, 5);
        SCOPED_TRACE(expected.text);
        double value = 0.0;
        const int32_t status =
            provider.EvaluateExpression(Wide(expected.text).c_str(), L"ul", value);
        ASSERT_EQ(status, std::isnan(expected.value) ? 1 : 0);
        if (status == 0) {
            ASSERT_EQ(value, expected.value);
            ASSERT_EQ(provider.EvaluateExpression(Wide(expected.text).c_str(), L"mm", value), 0);
            ASSERT_EQ(value, expected.value / 10);
        }
    }
}

TEST(GeneratedExpressions, NumbersAreReadToTheLastBit)
{
    Random random(7);
    for (int i = 0; i < 50000; ++i) {
        const std::string text = NumberText(random);
        const std::wstring wide = Wide(text);
        encap::host::Scanner scanner(wide, false);
        const double value = scanner.ReadNumber();
        const double expected = Reference(text);
        ASSERT_EQ(std::bit_cast<uint64_t>(value), std::bit_cast<uint64_t>(expected)) << text;
        ASSERT_TRUE(scanner.AtEnd()) << text;
    }
}

// Whatever the text is, a call answers with a finite number, with "no result" or with a reason and
// its place, and the same each time.
TEST(GeneratedExpressions, AnyTextIsAnswered)
{
    const std::wstring pieces[] = {
        L"1",  L"2.5",  L"3mm", L"degC", L"min", L"if(",    L"(",   L")",    L";", L"+",     L"-",
        L"*",  L"/",    L"^",   L"%",    L"<",   L"==",     L"not", L"and",  L" ", L"sqrt(", L"PI",
        L"ul", L"N/m2", L"e",   L".",    L",",   L"\xD800", L"kg",  L"max(", L"0", L"\""};
    const wchar_t* const units[] = {L"mm", L"ul", L"degC", L"%", L"1/s"};
    Random random(99);
    Provider provider;
    for (int i = 0; i < 30000; ++i) {
        std::wstring text;
        for (std::size_t count = Below(random, 12); count > 0; --count) {
            text += pieces[Below(random, std::size(pieces))];
        }
        const wchar_t* unit = units[Below(random, std::size(units))];
        double value = 0.0;
        double again = 0.0;
        const int32_t status = provider.EvaluateExpression(text.c_str(), unit, value);
        ASSERT_EQ(status == 0, std::isfinite(value)) << i;
        ASSERT_LE(status, 1) << i;
        ASSERT_TRUE(status >= 0 || provider.LastError().find(L"character") != std::wstring::npos);
        ASSERT_EQ(provider.EvaluateExpression(text.c_str(), unit, again), status) << i;
        ASSERT_TRUE(status != 0 || value == again) << i;
    }
}

} // namespace
