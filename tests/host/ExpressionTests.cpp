#include "tests/host/HostCases.h"

#include <numbers>
#include <string>

namespace {

using Provider = CStandaloneEvaluatorProvider;
constexpr double kPi = std::numbers::pi;

struct ValueCase {
    const wchar_t* expression;
    const wchar_t* unit;
    double value;
};

TEST(Expressions, NumbersAndOperators)
{
    const ValueCase cases[] = {
        {L"5.", L"ul", 5},
        {L" .5e1 ", L"ul", 5},
        {L"1E-3", L"ul", 0.001},
        {L"2+3*4", L"ul", 14},
        {L"8-3-2", L"ul", 3},
        {L"8/4/2", L"ul", 1},
        {L"2*-3", L"ul", -6},
        {L"5--3", L"ul", 8},
        {L"7%4*2", L"ul", 6},
        {L"-7%4", L"ul", -3},
        {L"-2^2", L"ul", -4},
        {L"2^-3", L"ul", 0.125},
        {L"2^3^2", L"ul", 512},
        {L"2^-2^2", L"ul", 0.0625},
        {L"(2+3)^2", L"ul", 25},
        {L"1<2", L"ul", 1},
        {L"2<=1", L"ul", 0},
        {L"(1<2)<3", L"ul", 1},
        {L"1!=1", L"ul", 0},
        {L"2+3==5", L"ul", 1},
        {L"not 1<2", L"ul", 0},
        {L"NOT 0 And 1", L"ul", 1},
        {L"not not 5", L"ul", 1},
        {L"1 or 0 and 0", L"ul", 1},
        {L"1+1>1 and 2", L"ul", 1},
        {L"PI", L"ul", kPi},
        {L"2*pi ( )", L"ul", 2 * kPi},
        {L"e", L"ul", std::numbers::e},
        {L"1e-400", nullptr, 0},
    };
    Provider provider;
    for (const ValueCase& each : cases) {
        ExpectValue(provider, each.expression, each.unit, each.value);
    }
    double zero = 1.0;
    EXPECT_EQ(provider.EvaluateExpression(L"0*-1", L"mm", zero), Provider::StatusOK);
    EXPECT_FALSE(std::signbit(zero)) << "users would see -0";
}

TEST(Expressions, Functions)
{
    const ValueCase cases[] = {
        {L"abs(-3)+ABS(-2mm)/1mm", L"ul", 5},
        {L"sqrt(16)", L"ul", 4},
        {L"cbrt(-27)", L"ul", -3},
        {L"exp(1)", L"ul", std::numbers::e},
        {L"ln(E^2)", L"ul", 2},
        {L"log(1000)", L"ul", 3},
        {L"sin(90deg)+cos(200grad)", L"ul", 0},
        {L"tan(PI/4)", L"ul", 1},
        {L"cos(60)", L"deg", 0.5 * kPi / 180},
        {L"asin(1)", L"deg", kPi / 2},
        {L"acos(0)+atan(1)", L"rad", 0.75 * kPi},
        {L"atan2(3mm;-3mm)", L"deg", 0.75 * kPi},
        {L"sinh(0)+cosh(0)+tanh(0)", L"ul", 1},
        {L"floor(-2.5)", L"ul", -3},
        {L"ceil(2.1)", L"ul", 3},
        {L"round(2.5)+round(-2.5)+round(0.5)", L"ul", 1},
        {L"trunc(-2.7)", L"ul", -2},
        {L"sign(-3mm)+sign(0)+sign(2)", L"ul", 0},
        {L"pow(2;10)", L"ul", 1024},
        {L"mod(7mm;4)", L"mm", 0.3},
        {L"hypot(3mm;4)", L"mm", 0.5},
        {L"min(3;1;2)+max(3;1;2)", L"ul", 4},
        {L"min(3cm;20mm;1m)", L"cm", 2},
        {L"if(2>1;10;20)+if(0;1;2)", L"ul", 12},
        {L"if(1; 3mm; 1/0)", L"mm", 0.3},
        {L"if(0; (2mm)^(1/0); 5mm)", L"mm", 0.5},
        {L"if(1; 2; 3mm)", L"mm", 0.2},
    };
    Provider provider;
    for (const ValueCase& each : cases) {
        SCOPED_TRACE(encap::platform::WideToUtf8(each.expression));
        double value = 0.0;
        ASSERT_EQ(provider.EvaluateExpression(each.expression, each.unit, value), 0)
            << encap::platform::WideToUtf8(provider.LastError());
        EXPECT_NEAR(value, each.value, 1e-14 + std::abs(each.value) * 1e-14);
    }
}

TEST(Expressions, QuantitiesAsTheLibraryWritesThem)
{
    const ValueCase cases[] = {
        {L"3mm*2", L"mm", 0.6},           {L"2+3", L"mm", 0.5},
        {L"3mm+2", L"cm", 2.3},           {L"12.5mm*2+3.25mm", L"mm", 2.825},
        {L"10N/5N/mm2", L"mm2", 0.02},    {L"3mm*PI", L"mm", 0.3 * kPi},
        {L"3mm*sqrt(4)", L"mm", 0.6},     {L"3mm/min(2;3)", L"mm", 0.15},
        {L"3m/min", L"m/min", 5},         {L"5min", L"s", 300},
        {L"2kg/m3*3m3", L"kg", 6},        {L"3 mm", L"mm", 0.3},
        {L"5ul*2mm", L"mm", 1},           {L"3mm+2ul", L"mm", 0.5},
        {L"-3mm", L"mm", -0.3},           {L"(3mm)^2", L"mm2", 0.09},
        {L"(4mm2)^0.5", L"mm", 0.2},      {L"sqrt(9mm2)+cbrt(8mm3)+pow(2mm;1)", L"mm", 0.7},
        {L"(8mm3)^(1/3)", L"mm", 0.2},    {L"3mm/2mm", L"ul", 1.5},
        {L"2rad*10mm/1rad", L"mm", 2},    {L"30\u00B0+30deg", L"deg", kPi / 3},
        {L"if(12mm>10;1;2)", L"mm", 0.1}, {L"20K*2", L"degC", 40},
        {L"20", L"degC", 293.15},         {L"-20degC", L"degC", 253.15},
        {L" + 68 degF ", L"K", 293.15},
    };
    Provider provider;
    for (const ValueCase& each : cases) {
        ExpectValue(provider, each.expression, each.unit, each.value);
    }
}

// A conversion to database units on the way would make 6in/2in a little less than 3.
TEST(Expressions, CountsInTheUnitAsWrittenAreExact)
{
    const wchar_t* const trueOnes[] = {
        L"floor(6in/2in) == 3",   L"floor(0.6mm/0.2mm) == floor(0.6/0.2)",
        L"12mm*3 == 36mm",        L"12mm%4mm == 0mm",
        L"0.29m == 29cm",         L"29cm == 0.29m",
        L"25.4mm == 1in",         L"1ft == 12in",
        L"sqrt(9in2) == 3in",     L"1000mm <= 1m and not 1000mm < 1m",
        L"max(1in;25.4mm) == 1in"};
    Provider provider;
    for (const wchar_t* expression : trueOnes) {
        ExpectValue(provider, expression, L"ul", 1);
    }
    ExpectValue(provider, L"floor(1.001m)", L"mm", 100.1);
    ExpectValue(provider, L"ceil(2.1cm)", L"mm", 2.1);
    ExpectValue(provider, L"round(1.26in)", L"mm", 3.2);
    ExpectValue(provider, L"floor(293.7K)", L"degC", 293.15);
}

// A unit such as percent has no dimensions, yet a quantity in it is not a bare number.
TEST(Expressions, DimensionlessUnitsWithAScale)
{
    Provider provider;
    ExpectValue(provider, L"3percent*2", L"percent", 0.06);
    ExpectValue(provider, L"3*2", L"percent", 0.06);
    ExpectValue(provider, L"5+3percent", L"%", 0.08);
    ExpectValue(provider, L"5+3percent", L"ul", 5.03);
    ExpectValue(provider, L"3mm/2mm", L"percent", 1.5);
}

TEST(Expressions, ValidTextsWithoutAResult)
{
    const wchar_t* const expressions[] = {
        L"1/0",          L"1/(1/0)",        L"0*(1/0)",     L"sqrt(-1)",
        L"ln(0)",        L"sin(acos(1.1))", L"mod(1;0)",    L"1e999",
        L"1e200*1e200",  L"(1/0)^0",        L"1^(1/0)",     L"0 and 1/0",
        L"1/0 or 1",     L"not (1/0)",      L"1/0 == 1/0",  L"if(1/0;1;2)",
        L"min(1;1/0;2)", L"max(1/0;1)",     L"sign(1/0)",   L"floor(1/0)",
        L"hypot(1/0;1)", L"if(1;1/0;2)",    L"(2mm)^(1/0)", L"(-8)^0.5",
        L"exp(1000)"};
    Provider provider;
    for (const wchar_t* expression : expressions) {
        ExpectNoValue(provider, expression, L"ul");
    }
    ExpectNoValue(provider, L"3mm/0", L"mm");
    ExpectNoValue(provider, L"1e308km", L"km");
}

struct RefusedCase {
    const wchar_t* expression;
    const wchar_t* unit;
    const wchar_t* reason;
};

TEST(Expressions, BadSyntaxIsRefusedWithItsPlace)
{
    const RefusedCase cases[] = {
        {L"", L"ul", L"the expression is empty (at character 1)"},
        {L"2+", L"ul",
         L"the text ends where a number, a function or \"(\" is expected (at character 3)"},
        {L"2+*3", L"ul",
         L"\"*\" stands where a number, a function or \"(\" is expected (at character 3)"},
        {L"min()", L"ul",
         L"\")\" stands where a number, a function or \"(\" is expected (at character 5)"},
        {L"2(3)", L"ul", L"an operator is missing before \"(\" (at character 2)"},
        {L"2PI", L"ul", L"an operator is missing before \"PI\" (at character 2)"},
        {L"3e", L"ul", L"an operator is missing before \"e\" (at character 2)"},
        {L"2 sin(3)", L"ul", L"an operator is missing before \"sin\" (at character 3)"},
        {L"5 min (3)", L"ul", L"an operator is missing before \"min\" (at character 3)"},
        {L"(2)mm", L"mm", L"an operator is missing before \"mm\" (at character 4)"},
        {L"1.2.3", L"ul", L"an operator is missing before \".3\" (at character 4)"},
        {L"2=2", L"ul", L"\"=\" is not an operator: \"==\" compares (at character 2)"},
        {L"2,5", L"ul", L"\",\" is not an operator: \";\" separates arguments (at character 2)"},
        {L"2&3", L"ul", L"\"&\" is not an operator (at character 2)"},
        {L"((1+2)", L"ul", L"\")\" is missing for this \"(\" (at character 1)"},
        {L"1+2)", L"ul", L"\")\" has no \"(\" before it (at character 4)"},
        {L"(1;2)", L"ul",
         L"\";\" separates the arguments of a function and nothing else (at character 3)"},
        {L"1<2<3", L"ul",
         L"comparisons cannot be chained: join two of them with \"and\" (at character 4)"},
        {L"1+not 2", L"ul", L"\"not\" needs parentheses around it here (at character 3)"},
        {L"3mm^2", L"mm2",
         L"\"^\" behind a unit is not clear: write (3mm)^2 for the power of the quantity"
         L" (at character 4)"},
        {L"1+5ul ^ -3", L"ul",
         L"\"^\" behind a unit is not clear: write (5ul)^-3 for the power of the quantity"
         L" (at character 7)"},
        {L"sqrt(1;2)", L"ul", L"\"sqrt\" takes one argument (at character 1)"},
        {L"1+pow(2)", L"ul", L"\"pow\" takes two arguments (at character 3)"},
        {L"max(2)", L"ul", L"\"max\" takes two or more arguments (at character 1)"},
        {L"if(1;2)", L"ul", L"\"if\" takes three arguments (at character 1)"},
        {L"PI(2)", L"ul", L"\"PI\" takes no arguments (at character 3)"},
        {L"2*sin", L"ul", L"\"(\" must follow the function \"sin\" (at character 3)"},
        {L"mm*2", L"mm", L"the unit \"mm\" has no number before it (at character 1)"},
        {L"2*N/mm2", L"mm", L"the unit \"N/mm2\" has no number before it (at character 3)"},
        {L"3mm*ul", L"mm", L"\"ul\" is unitless and cannot be a part of a unit (at character 5)"},
        {L"3ul2", L"ul", L"\"ul\" is unitless and cannot be a part of a unit (at character 2)"},
        {L"3mm0", L"ul",
         L"a unit's power is a whole number up to 127 other than 0 (at character 4)"},
        {L"3", L"mm$", L"\"$\" cannot stand in a unit (at character 3 of the unit)"},
        {L"3", L"mm*", L"a unit's name is missing (at character 4 of the unit)"},
    };
    Provider provider;
    for (const RefusedCase& each : cases) {
        ExpectRefused(provider, each.expression, each.unit, Provider::StatusBadSyntax, each.reason);
    }
}

TEST(Expressions, UnknownNamesAreRefused)
{
    const RefusedCase cases[] = {
        {L"2furlongz", L"ul", L"\"furlongz\" is not a known unit (at character 2)"},
        {L"3MM", L"ul", L"\"MM\" is not a known unit (at character 2)"},
        {L"2*wat", L"ul", L"\"wat\" is not a known name (at character 3)"},
        {L"3mm*foo(2)", L"ul", L"\"foo\" is not a known function (at character 5)"},
        {L"3MIN", L"s",
         L"\"MIN\" is a word of the expression language and not a unit (at character 2)"},
        {L"3", L"e",
         L"\"e\" is a word of the expression language and not a unit (at character 1 of the unit)"},
        {L"3dBm", L"ul",
         L"\"dBm\" is a logarithmic or calendar unit, which cannot be used (at character 2)"},
        {L"3", L"kg furlongz", L"\"furlongz\" is not a known unit (at character 4 of the unit)"},
    };
    Provider provider;
    for (const RefusedCase& each : cases) {
        ExpectRefused(provider, each.expression, each.unit, Provider::StatusUnknownName,
                      each.reason);
    }
}

TEST(Expressions, DimensionsThatDoNotFitAreRefused)
{
    const RefusedCase cases[] = {
        {L"3mm+2kg", L"mm", L"\"+\" cannot combine cm and kg (at character 4)"},
        {L"3mm-2", L"ul", L"\"-\" cannot combine cm and a number without a unit (at character 4)"},
        {L"2<3mm", L"kg", L"\"<\" cannot combine a number without a unit and cm (at character 2)"},
        {L"min(1;3mm)", L"s",
         L"\"min\" cannot combine a number without a unit and cm (at character 1)"},
        {L"if(1;3mm;2kg)", L"mm", L"\"if\" cannot combine cm and kg (at character 1)"},
        {L"if(3mm;1;2)", L"ul", L"\"if\" takes numbers without a unit, not cm (at character 1)"},
        {L"1 and 3mm", L"ul", L"\"and\" takes numbers without a unit, not cm (at character 3)"},
        {L"ln(3mm)", L"ul", L"\"ln\" takes numbers without a unit, not cm (at character 1)"},
        {L"sin(3mm)", L"ul", L"\"sin\" takes an angle, not cm (at character 1)"},
        {L"2^3mm", L"ul", L"an exponent is a number without a unit, not cm (at character 2)"},
        {L"sqrt(9mm)", L"mm",
         L"\"sqrt\" of cm does not give whole powers of units up to 127 (at character 1)"},
        {L"(3mm)^0.5", L"mm",
         L"\"^\" of cm does not give whole powers of units up to 127 (at character 6)"},
        {L"2mm100*2mm100", L"mm", L"the powers of the units pass 127 (at character 7)"},
        {L"2/1mm100/1mm100", L"mm", L"the powers of the units pass 127 (at character 9)"},
        {L"floor(3kg)", L"mm",
         L"\"floor\" counts in the unit asked for, which is cm and does not fit kg"
         L" (at character 1)"},
        {L"3mm*2mm", L"mm",
         L"the result is cm^2, which does not fit the unit asked for: cm (at character 1)"},
        {L"3mm", L"",
         L"the result is cm, which does not fit the unit asked for: a number without a unit"
         L" (at character 1)"},
        {L"20degC+1", L"degC",
         L"\"20degC\" has a zero of its own: one number with this unit must be the whole text"
         L" (at character 1)"},
        {L"(20degC)", L"degC",
         L"\"20degC\" has a zero of its own: one number with this unit must be the whole text"
         L" (at character 2)"},
        {L"5W/degC", L"W/K",
         L"\"degC\" has a zero of its own: one number with this unit must be the whole text"
         L" (at character 4)"},
        {L"20K+5", L"degC",
         L"a bare number beside a temperature is not clear when the unit asked for is \"degC\""
         L" (at character 4)"},
    };
    Provider provider;
    for (const RefusedCase& each : cases) {
        ExpectRefused(provider, each.expression, each.unit, Provider::StatusBadDimensions,
                      each.reason);
    }
}

TEST(Expressions, DecimalCommaIsAcceptedWhereAsked)
{
    Provider comma(L',');
    ExpectValue(comma, L"2,5mm*,5+1.5mm", L"mm", 0.275);
    ExpectValue(comma, L"max(1,5;2,25)", L"ul", 2.25);
    double value = 0.0;
    EXPECT_EQ(comma.ConvertUnits(L"2,5", L"mm", L"cm", value), 0);
    EXPECT_EQ(value, 0.25);
    EXPECT_EQ(Provider().ConvertUnits(L"2,5", L"mm", L"cm", value), Provider::StatusBadSyntax);
}

std::wstring Repeat(const wchar_t* text, std::size_t times)
{
    std::wstring result;
    while (times-- > 0) {
        result += text;
    }
    return result;
}

TEST(Expressions, NestingIsLimited)
{
    Provider provider;
    const auto status = [&](const std::wstring& expression) {
        double value = 0.0;
        return provider.EvaluateExpression(expression.c_str(), L"ul", value);
    };
    const struct {
        const wchar_t* open;
        const wchar_t* middle;
        const wchar_t* close;
    } shapes[] = {{L"(", L"1", L")"},    {L"abs(", L"1", L")"}, {L"-", L"1", L""},
                  {L"not ", L"1", L""},  {L"1^", L"1", L""},    {L"if(1;", L"1", L";2)"},
                  {L"1+2*(", L"1", L")"}};
    for (const auto& shape : shapes) {
        const auto nested = [&](std::size_t depth) {
            return Repeat(shape.open, depth) + shape.middle + Repeat(shape.close, depth);
        };
        EXPECT_EQ(status(nested(256)), Provider::StatusOK) << shape.open;
        EXPECT_EQ(status(nested(257)), Provider::StatusBadSyntax) << shape.open;
        EXPECT_NE(provider.LastError().find(L"256"), std::wstring::npos);
        EXPECT_LT(status(nested(100000)), 0) << shape.open;
    }
}

TEST(Expressions, VeryLongTextsAreComputed)
{
    Provider provider;
    ExpectValue(provider, (Repeat(L"1mm+", 200000) + L"1mm").c_str(), L"mm", 20000.1);
    ExpectValue(provider, (L"0." + Repeat(L"3", 1000000)).c_str(), L"ul", 1.0 / 3);
    ExpectValue(provider, (L"1" + Repeat(L" ", 1000000) + L"mm").c_str(), L"mm", 0.1);
    const std::wstring name = Repeat(L"m", 1000000);
    double value = 0.0;
    EXPECT_EQ(provider.EvaluateExpression((L"1" + name).c_str(), L"ul", value),
              Provider::StatusUnknownName);
    EXPECT_LT(provider.LastError().size(), 100U);
}

} // namespace
