#include "encap/foundation/NumberText.h"

#include "encap/foundation/StringUtil.h"
#include "tests/support/PlatformFacts.h"
#include "tests/support/Sanitized.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cwchar>
#include <limits>
#include <random>

#include <gtest/gtest.h>

// The C library in the "C" locale, in which a test program runs, is what the texts are held to.
namespace encap {
namespace {

CString Printed(const char* format, double value)
{
    if (std::isnan(value) && !kCLibraryIsExact) {
        return std::signbit(value) ? L"-nan" : L"nan";
    }
    std::array<char, 400> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), format, value);
    return CString(buffer.data(), buffer.data() + length);
}

void ExpectSameAsPrinted(double value)
{
    ASSERT_EQ(FormatFixed12(value), Printed("%.12f", value));
    ASSERT_EQ(FormatGeneral(value, 6), Printed("%g", value));
    ASSERT_EQ(FormatGeneral(value, 8), Printed("%.8g", value));
    ASSERT_EQ(FormatGeneral(value, 12), Printed("%.12g", value));
    ASSERT_EQ(FormatGeneral(value, 17), Printed("%.17g", value));
}

void ExpectSameAsStandard(const CString& text)
{
    wchar_t* end = nullptr;
    const double value = std::wcstod(text.c_str(), &end);
    const LeadingNumber number = ReadLeadingNumber(text);
    if (!kCLibraryIsExact && (end == text.c_str() || std::isnan(value))) {
        ASSERT_EQ(number.consumed != 0, end != text.c_str()) << testing::PrintToString(text);
        ASSERT_EQ(std::isnan(number.value), std::isnan(value)) << testing::PrintToString(text);
        return;
    }
    ASSERT_EQ(number.consumed, static_cast<std::size_t>(end - text.c_str()))
        << testing::PrintToString(text);
    if (std::isnan(value)) {
        ASSERT_TRUE(std::isnan(number.value)) << testing::PrintToString(text);
        ASSERT_EQ(std::signbit(number.value), std::signbit(value));
    } else {
        ASSERT_EQ(std::bit_cast<uint64_t>(number.value), std::bit_cast<uint64_t>(value))
            << testing::PrintToString(text);
    }
}

const double kSpecialValues[] = {0.0,
                                 -0.0,
                                 1.0,
                                 -1.0,
                                 0.1,
                                 1e5,
                                 999999.0,
                                 999999.5,
                                 1e6,
                                 99999999.0,
                                 1e8,
                                 123456789.0,
                                 1e9,
                                 -99999999.5,
                                 0.0001,
                                 0.00001,
                                 0.5,
                                 2.5,
                                 1e21,
                                 1e22,
                                 5e-13,
                                 4.9e-324,
                                 1.7976931348623157e308,
                                 2147483647.0,
                                 2147483648.0,
                                 -2147483648.0,
                                 std::numeric_limits<double>::infinity(),
                                 -std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::quiet_NaN(),
                                 -std::numeric_limits<double>::quiet_NaN()};

TEST(NumberText, WritesAsPrintfDoes)
{
    for (const double value : kSpecialValues) {
        ExpectSameAsPrinted(value);
    }
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> tableValue(-1e4, 1e4);
    for (int i = 0; i < 20000; ++i) {
        ExpectSameAsPrinted(tableValue(random));
        ExpectSameAsPrinted(std::round(tableValue(random) * 8) / 8);
        ExpectSameAsPrinted(std::round(std::exp(tableValue(random) / 500)));
        ExpectSameAsPrinted(std::bit_cast<double>(random()));
    }
}

// A million doubles in the two formats that documents and evaluated cells are written in.
TEST(NumberText, StoredAndEvaluatedNumbersAreWhatPrintfGives)
{
    constexpr int kValues = test::kSanitized ? 100'000 : 1'000'000;
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> tableValue(-1e4, 1e4);
    CString text;
    for (int i = 0; i < kValues; ++i) {
        const double value = i % 4 == 0 ? std::bit_cast<double>(random()) : tableValue(random);
        text.clear();
        AppendGeneral(text, value, 8);
        ASSERT_EQ(text, Printed("%.8g", value));
        ASSERT_EQ(FormatFixed12(value), Printed("%.12f", value));
    }
}

TEST(NumberText, AppendsAndBringsDigitsIntoRange)
{
    CString text = L"x=";
    AppendGeneral(text, 1.0 / 3.0, 3);
    AppendGeneral(text, 12.0, 0);
    EXPECT_EQ(text, L"x=0.3331e+01");
    EXPECT_EQ(FormatGeneral(1.0 / 3.0, 400), FormatGeneral(1.0 / 3.0, 17));
    EXPECT_EQ(FormatGeneral(1.0 / 3.0, -1), L"0.3");
}

TEST(NumberText, ReadsEdgesAsTheStandardConversionDoes)
{
    constexpr const wchar_t* kEdges =
        L"|+1.5e3x|\u00A01|- 5|.|+.|1e|1e+|1e+5|1,5|0x|0x.p1|0x1p|0X.8P-3|0x1p99999999999999999999"
        L"|1e400|-1e400|-1e-400|4.9e-324|2.4703282292062327e-324|2.4703282292062328e-324"
        L"|2.2250738585072011e-308|1.7976931348623159e308|0x1p-1074|0x1p-1075|0x1.8p-1075"
        L"|0x1.fffffffffffff7p1023|0x1.fffffffffffff8p1023|0e99999999999999999999"
        L"|1e99999999999999999999|1e-99999999999999999999|inf|-INFINITYx|infinit|NaN(1_a)z|nan("
        L"|-nan(-)|nan| \t\n\v\f\r-7";
    CStringArray texts;
    CStringUtil::Split(kEdges, L"|", texts, L"");
    const CString sevens(3000, L'7');
    const CString zeros(3000, L'0');
    texts.insert(texts.end(),
                 {sevens, L"." + sevens, L"0x" + sevens, sevens + L"e-2999", L"." + zeros + L"7",
                  L"." + zeros + L"7e3000", L"7" + zeros + L"e-3000", L"0x" + zeros + L".8",
                  L"0x." + zeros + L"8p12000", L"0x" + sevens + L"p-10900",
                  L"0x." + zeros + L"8p10900"});
    for (const CString& text : texts) {
        ExpectSameAsStandard(text);
    }
}

TEST(NumberText, ReadsRandomTextsAsTheStandardConversionDoes)
{
    constexpr std::wstring_view kAlphabet = L"0123456789012345.eE+-xXpPaFinfnan()_ \t,";
    std::mt19937_64 random(2);
    for (int i = 0; i < 40000; ++i) {
        CString text(random() % 14, L'0');
        for (wchar_t& character : text) {
            character = kAlphabet[random() % kAlphabet.size()];
        }
        ExpectSameAsStandard(text);
        ExpectSameAsStandard(Printed("%.17g", std::bit_cast<double>(random())));
        ExpectSameAsStandard(Printed("%a", std::bit_cast<double>(random())));
    }
}

TEST(NumberText, IntegersAreWholeTextsWithin32Bits)
{
    const std::pair<const wchar_t*, std::optional<int32_t>> cases[] = {
        {L"0", 0},
        {L" -7\n", -7},
        {L"+0012", 12},
        {L"2147483647", INT32_MAX},
        {L"-2147483648", INT32_MIN},
        {L"2147483648", std::nullopt},
        {L"-2147483649", std::nullopt},
        {L"99999999999999999999999", std::nullopt},
        {L"", std::nullopt},
        {L"-", std::nullopt},
        {L"- 1", std::nullopt},
        {L"+-1", std::nullopt},
        {L"1.5", std::nullopt},
        {L"1 2", std::nullopt},
        {L"0x10", std::nullopt},
        {L"\u0661", std::nullopt},
    };
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(ReadInteger(text), value) << testing::PrintToString(CString(text));
    }
}

TEST(NumberText, WritesIntegersAndHexadecimals)
{
    EXPECT_EQ(FormatInteger(0), L"0");
    EXPECT_EQ(FormatInteger(INT64_MIN), L"-9223372036854775808");
    EXPECT_EQ(FormatHexadecimal(0), L"0");
    EXPECT_EQ(FormatHexadecimal(0xDEADBEEF), L"DEADBEEF");
}

} // namespace
} // namespace encap
