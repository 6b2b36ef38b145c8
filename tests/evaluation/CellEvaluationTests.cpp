#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/platform/Locale.h"
#include "tests/support/FakeProvider.h"
#include "tests/support/FamilyBuilder.h"

#include <string>

#include <gtest/gtest.h>

using encap::test::CellText;
using encap::test::FakeProvider;
using encap::test::FamilyBuilder;

namespace {

constexpr const wchar_t* kMaterialCategory = L"818a152a-d3c3-49ca-80ee-df7d91421b8e";

struct CellCase {
    const char* what;
    const wchar_t* type;
    const wchar_t* unit;
    const wchar_t* text;
    const wchar_t* expected;
};

CString Chained(const wchar_t* prefix, int number)
{
    return prefix + std::to_wstring(number);
}

} // namespace

TEST(CellEvaluation, GivesTheValueOfEveryKindOfText)
{
    const CellCase cases[] = {
        {"plain number, kept as written", L"double", L"mm", L"2.50", L"2.50"},
        {"plain number with a comma", L"double", L"mm", L"2,5", L"2,5"},
        {"computed in the column's unit", L"double", L"mm", L"{W}*2", L"6"},
        {"units go along", L"double", L"mm2", L"{W}*{W}", L"9"},
        {"eight digits", L"double", L"ul", L"1/3", L"0.33333333"},
        {"six digits once a unit is converted", L"double", L"mm", L"{W}/7", L"0.428571"},
        {"another unit of length", L"double", L"in", L"{W}*8.4666666667", L"1"},
        {"units that do not fit: again without", L"double", L"mm", L"{W}*{W}", L"9#8"},
        {"neither way", L"double", L"mm", L"{W}*nonsense", L"#3"},
        {"a reference in any case, with blanks", L"integer", L"mm", L"{ w }+1mm", L"4"},
        {"an empty value leaves a unit without a number", L"double", L"mm", L"{EMPTY}*2", L"#3"},
        {"no such column", L"double", L"mm", L"{NO}*2", L"#3"},
        {"open brace", L"double", L"mm", L"{W", L"#2"},
        {"closing brace behind a reference", L"double", L"mm", L"{W}}", L"#2"},
        {"closing brace alone", L"double", L"mm", L"2}", L"#2"},
        {"text joined, quotes dropped", L"string", L"", L"\"Bolt \" & {SIZE}", L"Bolt M8"},
        {"doubled quotes", L"string", L"", L"{SIZE}&\" 3/4\"\" \"", L"M8 3/4\" "},
        {"first piece empty: as it is", L"string", L"", L"&{SIZE}", L"&M8"},
        {"a number in a text comes without its unit", L"string", L"", L"{W} & \"x\"", L"3x"},
        {"a text in a number stays text", L"double", L"mm", L"{SIZE}", L"#3"},
        {"logical", L"boolean", L"", L" Yes", L" Yes"},
        {"logical by reference", L"boolean", L"", L"{FLAG}", L"true"},
        {"not logical", L"boolean", L"", L"on", L"#6"},
    };
    for (const CellCase& one : cases) {
        CStandaloneEvaluatorProvider provider;
        const auto family = FamilyBuilder()
                                .Column({L"W", L"double", L"mm"})
                                .Column({L"SIZE", L"string"})
                                .Column({L"EMPTY", L"double", L"mm"})
                                .Column({L"FLAG", L"boolean"})
                                .Column({L"X", one.type, one.unit, one.text})
                                .Row(L"r", {{L"W", L"3"}, {L"SIZE", L"M8"}, {L"FLAG", L"true"}})
                                .Open(&provider);
        EXPECT_EQ(CellText(*family, L"r", L"X"), one.expected) << one.what;
        EXPECT_EQ(CellText(*family, L"R", L"x"), one.expected) << one.what << ", read again";
    }
}

TEST(CellEvaluation, AsksTheHostInTheDocumentedWay)
{
    FakeProvider provider;
    provider.expressions[L"3mm*2"] = {0, 0.6};
    provider.databaseUnits[L"mm"] = L"cm";
    provider.units[{L"cm", L"mm"}] = 10.0;
    const auto family = FamilyBuilder()
                            .Column({L"W", L"double", L"mm"})
                            .Column({L"X", L"double", L"mm", L"{W}*2"})
                            .Row(L"r", {{L"W", L"3"}})
                            .Open(&provider);
    EXPECT_EQ(CellText(*family, L"r", L"X"), L"6");
    ASSERT_EQ(provider.calls.size(), 3U);
    EXPECT_EQ(provider.calls[0].texts, (std::vector<CString>{L"mm"}));
    EXPECT_EQ(provider.calls[1].texts, (std::vector<CString>{L"3mm*2", L"mm"}));
    EXPECT_EQ(provider.calls[2].texts, (std::vector<CString>{L"0.6", L"cm", L"mm"}));
    EXPECT_EQ(CellText(*family, L"r", L"X"), L"6");
    EXPECT_EQ(provider.calls.size(), 3U) << "the second read comes from the cache";
}

TEST(CellEvaluation, FailedHostCallsBecomeResults)
{
    struct HostCase {
        const char* what;
        int throwInSlot;
        FakeProvider::Answer answer;
        const wchar_t* expected;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const HostCase cases[] = {
        {"works", 0, {0, 5.0}, L"5"},
        {"qualified success is success", 0, {1, 5.0}, L"5"},
        {"expression throws", FakeProvider::Evaluate, {0, 5.0}, L"#3"},
        {"database unit throws", FakeProvider::DatabaseUnit, {0, 5.0}, L"#3"},
        {"infinite: the unitless text is tried", 0, {0, infinity}, L"7#8"},
        {"fails: the unitless text is tried", 0, {-1, 0.0}, L"7#8"},
    };
    for (const HostCase& one : cases) {
        FakeProvider provider;
        provider.throwInSlot = one.throwInSlot;
        provider.expressions[L"3mm*2"] = one.answer;
        provider.expressions[L"3*2"] = {0, 7.0};
        const auto family = FamilyBuilder()
                                .Column({L"W", L"double", L"mm"})
                                .Column({L"X", L"double", L"mm", L"{W}*2"})
                                .Row(L"r", {{L"W", L"3"}})
                                .Open(&provider);
        EXPECT_EQ(CellText(*family, L"r", L"X"), one.expected) << one.what;
        provider.throwInSlot = 0;
        provider.expressions[L"3mm*2"] = {0, 9.0};
        const bool wasKept = one.expected == CString(L"5");
        EXPECT_EQ(CellText(*family, L"r", L"X"), wasKept ? L"5" : L"9") << one.what;
    }
}

TEST(CellEvaluation, ResultEightComesFromTheLastReference)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"W", L"double", L"mm"})
                            .Column({L"BAD", L"double", L"mm", L"{W}*{W}"})
                            .Column({L"LAST", L"string", L"", L"{W}&{BAD}"})
                            .Column({L"FIRST", L"string", L"", L"{BAD}&{W}"})
                            .Row(L"r", {{L"W", L"3"}})
                            .Open(&provider);
    EXPECT_EQ(CellText(*family, L"r", L"LAST"), L"39#8");
    EXPECT_EQ(CellText(*family, L"r", L"FIRST"), L"93");
}

TEST(CellEvaluation, TakesTheFirstSourceThatHasAText)
{
    CStandaloneEvaluatorProvider provider;
    const CString strings =
        L"<S xml:lang='de'><Table><ColumnStrings ColumnId='T'><ColumnwideValue>Blech"
        L"</ColumnwideValue><Rows><CellString RowId='a'>Sonder</CellString></Rows></ColumnStrings>"
        L"</Table></S>";
    const auto family = FamilyBuilder()
                            .Column({L"T", L"string", L"", L"sheet"})
                            .Row(L"a", {{L"T", L"raw"}})
                            .Row(L"b", {{L"T", L"raw"}})
                            .Row(L"c")
                            .Open(&provider, {strings, L"<S xml:lang='fr'/>"});
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    const wchar_t* expected[][3] = {
        {L"a", L"de", L"Sonder"}, {L"b", L"de", L"raw"},   {L"c", L"de", L"Blech"},
        {L"a", L"fr", L"raw"},    {L"c", L"fr", L"sheet"}, {L"no such row", L"fr", L"sheet"},
    };
    for (const auto& [row, language, text] : expected) {
        CString value;
        EXPECT_EQ(table.GetValue(row, L"T", language, value), CTableEvaluator::EvaluateOK);
        EXPECT_EQ(value, text) << CString(row) << L" " << language;
    }
}

TEST(CellEvaluation, RangesGiveTheirDefaultAndChosenValuesReplaceIt)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"L", L"double", L"mm", L"[10;200;5;50]", L"Custom='true'"})
                            .Column({L"M", L"double", L"mm", L"[1;9;;]", L"Custom='true'"})
                            .Column({L"N", L"double", L"mm", L"[{M}*2;;;]", L"Custom='true'"})
                            .Column({L"SUM", L"double", L"mm", L"{L}+{M}"})
                            .Row(L"r")
                            .Open(&provider);
    EXPECT_EQ(CellText(*family, L"r", L"L"), L"50");
    EXPECT_EQ(CellText(*family, L"r", L"N"), L"2");
    EXPECT_EQ(CellText(*family, L"r", L"SUM"), L"51");
    family->SetRangeColumnValues({{L"L", L"75"}});
    EXPECT_EQ(CellText(*family, L"r", L"SUM"), L"76");
    family->SetRangeColumnValues({});
    EXPECT_EQ(CellText(*family, L"r", L"SUM"), L"51");
}

TEST(CellEvaluation, TranslatesTheLiteralsOfAMaterialColumn)
{
    CStandaloneEvaluatorProvider provider;
    ASSERT_TRUE(provider.LoadMaterials(L"key,name\n1.4301,Stainless steel\n"));
    const auto family = FamilyBuilder()
                            .Supplies(L"MAT", kMaterialCategory)
                            .Column({L"MAT", L"string", L"", L"1.4301"})
                            .Row(L"a")
                            .Row(L"b", {{L"MAT", L"unknown key"}})
                            .Open(&provider);
    EXPECT_EQ(CellText(*family, L"a", L"MAT"), L"Stainless steel");
    EXPECT_EQ(CellText(*family, L"b", L"MAT"), L"");
}

TEST(CellEvaluation, LocalizesTheDecimalSeparator)
{
    const encap::platform::ScopedUserLocale german(L',', 1031);
    CStandaloneEvaluatorProvider provider(L',');
    const auto family = FamilyBuilder()
                            .Column({L"W", L"double", L"mm"})
                            .Column({L"X", L"double", L"mm", L"{W}*1.5"})
                            .Column({L"I", L"integer", L"mm"})
                            .Row(L"r", {{L"W", L"2.5"}, {L"I", L"2.5"}})
                            .Open(&provider, {}, true);
    EXPECT_EQ(CellText(*family, L"r", L"W"), L"2,5");
    EXPECT_EQ(CellText(*family, L"r", L"X"), L"3,75");
    EXPECT_EQ(CellText(*family, L"r", L"I"), L"2.5") << "plain numbers of integer columns stay";
}

TEST(CellEvaluation, StopsAtCyclesAndForgetsThem)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"SELF", L"double", L"mm", L"{SELF}+1mm"})
                            .Column({L"A", L"double", L"mm", L"{B}*2"})
                            .Column({L"B", L"double", L"mm", L"{A}"})
                            .Row(L"r")
                            .Row(L"s", {{L"B", L"4"}})
                            .Open(&provider);
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(CellText(*family, L"r", L"SELF"), L"#1");
        EXPECT_EQ(CellText(*family, L"r", L"A"), L"#1");
        EXPECT_EQ(CellText(*family, L"r", L"B"), L"#1");
        EXPECT_EQ(CellText(*family, L"s", L"A"), L"8") << "a cell of its own ends the cycle";
    }
    EXPECT_EQ(encap::test::ColumnOf(*family, L"B").SetFormula(L"7mm"), CTableEvaluator::EvaluateOK);
    EXPECT_EQ(CellText(*family, L"r", L"A"), L"14");
}

TEST(CellEvaluation, FollowsChainsOfAnyLength)
{
    constexpr int kLength = 10'000;
    CStandaloneEvaluatorProvider provider;
    FamilyBuilder builder;
    builder.Column({L"C0", L"integer", L""});
    for (int i = 1; i <= kLength; ++i) {
        builder.Column({Chained(L"C", i), L"integer", L"", L"{" + Chained(L"C", i - 1) + L"}+1"});
    }
    const auto family = builder.Row(L"r", {{L"C0", L"5"}}).Open(&provider);
    EXPECT_EQ(CellText(*family, L"r", Chained(L"C", kLength)), std::to_wstring(kLength + 5));
    family->GetEncapFamilyTable()->SetValue(L"r", L"C0", L"6", true);
    EXPECT_EQ(CellText(*family, L"r", Chained(L"C", kLength)), std::to_wstring(kLength + 6));
}

TEST(CellEvaluation, WorksOnEveryColumnOnceInLayeredDiamonds)
{
    constexpr int kLayers = 40;
    // Values of result 8 are not cached, cells of the same layer ask for each of them twice.
    for (const wchar_t* formula : {L"{L}-{R}+1mm", L"{L}*{R}"}) {
        FakeProvider provider;
        FamilyBuilder builder;
        builder.Column({L"L0", L"double", L"mm"}).Column({L"R0", L"double", L"mm"});
        for (int i = 1; i <= kLayers; ++i) {
            CString text = formula;
            text.replace(text.find(L"{L}"), 3, L"{" + Chained(L"L", i - 1) + L"}");
            text.replace(text.find(L"{R}"), 3, L"{" + Chained(L"R", i - 1) + L"}");
            builder.Column({Chained(L"L", i), L"double", L"mm", text});
            builder.Column({Chained(L"R", i), L"double", L"mm", text});
        }
        provider.expressions = {{L"1mm-1mm+1mm", {0, 1.0}}, {L"1*1", {0, 1.0}}};
        const auto family = builder.Row(L"r", {{L"L0", L"1"}, {L"R0", L"1"}}).Open(&provider);
        const CString last = CellText(*family, L"r", Chained(L"L", kLayers));
        EXPECT_EQ(last, formula == CString(L"{L}*{R}") ? L"1#8" : L"1");
        EXPECT_LT(provider.CountOf(FakeProvider::Evaluate), 5U * kLayers);
    }
}

TEST(CellEvaluation, EndsTextsThatGrowWithoutBound)
{
    CStandaloneEvaluatorProvider provider;
    FamilyBuilder builder;
    builder.Column({L"S0", L"string", L"", L"0123456789abcdef"});
    for (int i = 1; i <= 30; ++i) {
        const CString before = L"{" + Chained(L"S", i - 1) + L"}";
        builder.Column({Chained(L"S", i), L"string", L"", before + before});
    }
    const auto family = builder.Row(L"r").Open(&provider);
    EXPECT_EQ(CellText(*family, L"r", L"S13").size(), 16U << 13U)
        << "long, handed out all the same";
    EXPECT_EQ(CellText(*family, L"r", L"S16").size(), 16U << 16U);
    EXPECT_EQ(CellText(*family, L"r", L"S17"), L"#3");
    EXPECT_EQ(CellText(*family, L"r", L"S30"), L"#3");
}
