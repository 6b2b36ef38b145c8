#include "encap/foundation/StringUtil.h"

#include "encap/platform/Locale.h"

#include <cmath>
#include <limits>
#include <set>

#include <gtest/gtest.h>

namespace {

using encap::platform::ScopedUserLocale;

CStringArray Split(const CString& source, const CString& separator, const CString& emptyValue)
{
    CStringArray list{L"kept"};
    CStringUtil::Split(source, separator, list, emptyValue);
    return list;
}

TEST(StringUtil, SplitKeepsEmptyAndClosingPieces)
{
    EXPECT_EQ(Split(L"a;;b;", L";", L""), (CStringArray{L"kept", L"a", L"", L"b", L""}));
    EXPECT_EQ(Split(L"a&", L"&", L"-"), (CStringArray{L"kept", L"a", L"-"}));
    EXPECT_EQ(Split(L"::a:::b", L"::", L"-"), (CStringArray{L"kept", L"-", L"a", L":b"}));
    EXPECT_EQ(Split(L" a ", L",", L"-"), (CStringArray{L"kept", L" a "}));
    EXPECT_EQ(Split(L"", L";", L"-"), (CStringArray{L"kept"}));
    EXPECT_EQ(Split(L"a;b", L"", L"-"), (CStringArray{L"kept"}));
}

TEST(StringUtil, ExtractByBracketTakesWhatStandsBeforeTheBracket)
{
    CStringArray list;
    EXPECT_TRUE(CStringUtil::ExtractByBracket(L"Width (mm); Name;;\tHeight(m)(x), (none)", L";,",
                                              L"(", &list));
    EXPECT_EQ(list, (CStringArray{L"Width", L"Height"}));
    EXPECT_FALSE(CStringUtil::ExtractByBracket(L"", L";", L"(", &list));
    EXPECT_FALSE(CStringUtil::ExtractByBracket(L"a(", L"", L"(", &list));
    EXPECT_FALSE(CStringUtil::ExtractByBracket(L"a(", L";", L"", &list));
    EXPECT_FALSE(CStringUtil::ExtractByBracket(L"a(", L";", L"(", nullptr));
    EXPECT_EQ(list.size(), 2U);
}

TEST(StringUtil, ConcatenationSymbolJoinsUnquotedPieces)
{
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"", L""},
        {L"\"M\" & 10 & \" x \" & 50", L"M10 x 50"},
        {L"a&&b&", L"ab"},
        {L"\"", L""},
        {L"\"\"", L""},
        {L"\"a", L"\"a"},
        // "&" is not protected by quotes: neither half both begins and ends with one.
        {L"\"R&D\"", L"\"RD\""},
    };
    for (const auto& [text, joined] : cases) {
        EXPECT_EQ(CStringUtil::TranslateStringSymbol(text), joined);
    }
}

TEST(StringUtil, NumberTextsAreConsumedWhole)
{
    for (const wchar_t* text : {L"", L"1.5", L"  -2e3", L"0x1F", L"inf"}) {
        EXPECT_TRUE(CStringUtil::IsNumberStr(text)) << testing::PrintToString(CString(text));
    }
    for (const wchar_t* text : {L" ", L"1,5", L"1 ", L"1e", L"mm"}) {
        EXPECT_FALSE(CStringUtil::IsNumberStr(text)) << testing::PrintToString(CString(text));
    }
    EXPECT_EQ(CStringUtil::ToDouble(L"12.5mm"), 12.5);
    EXPECT_EQ(CStringUtil::ToDouble(L"1,5"), 1.0);
    EXPECT_EQ(CStringUtil::ToDouble(L"mm"), 0.0);
    EXPECT_EQ(CStringUtil::ToDouble(nullptr), 0.0);
}

TEST(StringUtil, NumericValuesArePlainDecimalNumbers)
{
    for (const wchar_t* text : {L"", L"0", L"-1.5E-3", L"+1,5", L"1e", L"1e+", L".5", L"5."}) {
        EXPECT_TRUE(CStringUtil::IsNumericValue(text)) << testing::PrintToString(CString(text));
    }
    EXPECT_TRUE(CStringUtil::IsNumericValue(nullptr));
    for (const wchar_t* text : {L"+", L".", L"1.2.3", L"1,2.3", L"E5", L"1.e5", L"1e5.0", L"1e5e5",
                                L"1-2", L"--1", L"1 ", L" 1", L"1/2", L"0x1", L"inf", L"\u0661"}) {
        EXPECT_FALSE(CStringUtil::IsNumericValue(text)) << testing::PrintToString(CString(text));
    }
}

TEST(StringUtil, IntegerTestIsStrictAndEndsAt32Bits)
{
    struct Case {
        double value;
        double tolerance;
        bool integer;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const Case cases[] = {
        {2.0000001, 1e-6, true},     {-2.0000001, 1e-6, true},    {2.5, 0.5, false},
        {-2.5, 0.5, false},          {0.999999, 1e-5, false},     {2147483647.0, 1e-5, true},
        {2147483648.0, 1e-5, false}, {-2147483648.0, 1e-5, true}, {-2147483649.0, 2.0, false},
        {2147483647.25, 0.5, true},  {-2147483648.25, 0.5, true}, {1e300, 1e-5, false},
        {nan, 1e-5, false},          {infinity, infinity, false}, {1.0, nan, false},
    };
    for (const Case& expected : cases) {
        EXPECT_EQ(CStringUtil::IsIntegerValue(expected.value, expected.tolerance), expected.integer)
            << expected.value;
    }
}

TEST(StringUtil, LogicalValuesIgnoreCaseAndBlanksAround)
{
    for (const wchar_t* text :
         {L"true", L"FALSE", L"t", L"F", L" yes ", L"No", L"y", L"N", L"1", L"\t0\n"}) {
        EXPECT_TRUE(CStringUtil::IsLogicalValue(text)) << testing::PrintToString(CString(text));
    }
    for (const wchar_t* text : {L"", L"on", L"2", L"truee", L"ye s"}) {
        EXPECT_FALSE(CStringUtil::IsLogicalValue(text)) << testing::PrintToString(CString(text));
    }
    EXPECT_FALSE(CStringUtil::IsLogicalValue(nullptr));
}

TEST(StringUtil, TrimDoubleStringRemovesZerosThenPoints)
{
    const std::pair<CString, CString> cases[] = {
        {L"1.500000000000", L"1.5"},
        {L"2.000000000000", L"2"},
        {L"0.000000000000", L"0"},
        {L"100", L"1"},
        {L"0", L""},
        {L"", L""},
        {L"5..00", L"5"},
        {L"1.05", L"1.05"},
    };
    for (const auto& [text, trimmed] : cases) {
        CString changed = text;
        EXPECT_TRUE(CStringUtil::TrimDoubleString(changed));
        EXPECT_EQ(changed, trimmed);
    }
}

TEST(StringUtil, CellsGetPointsOnlyWhenNumeric)
{
    const std::pair<CString, CString> cases[] = {
        {L"1,5", L"1.5"}, {L"-1,5e3", L"-1.5e3"}, {L"1,5 mm", L"1,5 mm"}, {L"1,2,3", L"1,2,3"}};
    for (const auto& [text, replaced] : cases) {
        CString changed = text;
        EXPECT_EQ(CStringUtil::ReplaceDecimalPointOfCell(changed), replaced);
        EXPECT_EQ(changed, replaced);
    }
}

TEST(StringUtil, ExpressionsChangeTheirMarksOutsideBraces)
{
    const ScopedUserLocale german(L',', 1031);
    EXPECT_EQ(CStringUtil::GetDecimalSeparator(), L',');
    struct Case {
        const wchar_t* text;
        const wchar_t* point;
        const wchar_t* comma;
    };
    const Case cases[] = {
        {L"{a.b}+1,5", L"{a.b}+1.5", L"{a.b}+1,5"},
        {L"1.5*{x,y}*2,5", L"1.5*{x,y}*2.5", L"1,5*{x,y}*2,5"},
        {L"{{a.}1.5}0.5", L"{{a.}1.5}0.5", L"{{a.}1,5}0,5"},
        {L"{a.b", L"{a.b", L"{a.b"},
        {L"{D}*2", L"{D}*2", L"{D}*2"},
    };
    for (const Case& expected : cases) {
        EXPECT_EQ(CStringUtil::ReplaceDecimalPointOfColumnExpression(expected.text, true),
                  expected.point);
        EXPECT_EQ(CStringUtil::ReplaceDecimalPointOfColumnExpression(expected.text, false),
                  expected.comma);
    }
    const ScopedUserLocale arabic(L'\u066B', 1025);
    EXPECT_EQ(CStringUtil::ReplaceDecimalPointOfColumnExpression(L"1.5+2,5", false),
              L"1\u066B5+2\u066B5");
}

TEST(StringUtil, NewGuidsAreDistinctLowerCaseTexts)
{
    std::set<CString> seen;
    for (int i = 0; i < 1000; ++i) {
        const CString text = CStringUtil::NewGuid();
        ASSERT_EQ(text.size(), 36U);
        for (std::size_t k = 0; k < text.size(); ++k) {
            const bool hyphen = k == 8 || k == 13 || k == 18 || k == 23;
            const CString allowed = hyphen ? L"-" : L"0123456789abcdef";
            ASSERT_NE(allowed.find(text[k]), CString::npos) << testing::PrintToString(text);
        }
        // A random identifier says so: version 4, variant 8 to b.
        EXPECT_EQ(text[14], L'4');
        EXPECT_NE(CString(L"89ab").find(text[19]), CString::npos);
        EXPECT_TRUE(seen.insert(text).second);
    }
}

TEST(StringUtil, FileNamesLoseWhatSystemsForbid)
{
    CString text = L" ?a\\b/c<d>e:f*g|h\"i \u00E4.xml\t";
    EXPECT_TRUE(CStringUtil::LegalizeForFileName(text));
    EXPECT_EQ(text, L"_a_b_c_d_e_f_g_h_i \u00E4.xml");
}

} // namespace
