#include "encap/evaluation/Tokens.h"
#include "encap/host/StandaloneEvaluatorProvider.h"
#include "tests/support/FamilyBuilder.h"

#include <gtest/gtest.h>

using encap::test::FamilyBuilder;

namespace {

/// A table with a column of every type and one row.
class Expressions : public ::testing::Test {
protected:
    Expressions()
        : family(FamilyBuilder()
                     .Column({L"W", L"double", L"mm"})
                     .Column({L"N", L"integer", L"mm"})
                     .Column({L"FLAG", L"boolean"})
                     .Column({L"SIZE", L"string"})
                     .Row(L"r", {{L"W", L"3"}, {L"N", L"2"}, {L"FLAG", L"no"}, {L"SIZE", L"M8"}})
                     .Open(&provider)),
          table(*family->GetEncapFamilyTable())
    {
    }

    CStandaloneEvaluatorProvider provider;
    std::unique_ptr<CEncapFamily> family;
    CEncapFamilyTable& table;
};

} // namespace

TEST_F(Expressions, EvaluatesFreeTexts)
{
    struct Case {
        const wchar_t* text;
        int formulaType;
        int dataType;
        const wchar_t* units;
        int result;
        const wchar_t* value;
    };
    const Case cases[] = {
        {L"{W}*2", 101, 1, L"mm", 0, L"6"},
        {L"{W}*2", 101, 1, L"cm", 0, L"0.6"},
        {L"12.50", 101, 1, L"mm", 0, L"12.50"},
        {L"\"Bolt \"&{SIZE}", 101, 0, L"", 0, L"Bolt M8"},
        {L"{FLAG}", 101, 3, L"", 0, L"no"},
        {L"maybe", 101, 3, L"", 6, L""},
        {L"[1;9;1;{N}*2]", 100, 2, L"mm", 0, L"4"},
        {L"1;9", 100, 1, L"mm", 4, L""},
        {L"{NO}", 101, 1, L"mm", 3, L""},
        {L"{W", 101, 1, L"mm", 2, L""},
        {L"1/0", 101, 1, L"ul", 6, L""},
        {L"1+", 101, 1, L"ul", 3, L""},
        {L"1", 7, 1, L"ul", 5, L""},
    };
    for (const Case& one : cases) {
        CString value;
        const auto result = table.Evaluate(
            one.text, static_cast<DataTypes::ColumnFormulaType>(one.formulaType),
            static_cast<DataTypes::ColumnDataType>(one.dataType), L"r", one.units, value);
        EXPECT_EQ(static_cast<int>(result), one.result) << CString(one.text);
        EXPECT_EQ(value, one.value) << CString(one.text);
    }
}

TEST_F(Expressions, ChecksSyntaxWithoutEvaluatingCells)
{
    struct Case {
        const wchar_t* text;
        int formulaType;
        int dataType;
        const wchar_t* units;
        int result;
    };
    const Case cases[] = {
        {L"{W}*2", 101, 1, L"mm", 0},
        {L"{W}*2", 102, 1, L"mm", 0},
        {L"{N}+{W}", 101, 1, L"mm", 0},
        {L"{W}", 101, 2, L"mm", 6},
        {L"{SIZE}*2", 101, 1, L"mm", 6},
        {L"1/0", 101, 1, L"ul", 0},
        {L"1/({W}-{W})", 101, 1, L"ul", 0},
        {L"2*", 101, 1, L"mm", 6},
        {L"{NO}", 101, 0, L"", 5},
        {L"{W", 101, 0, L"", 2},
        {L"anything at all", 101, 0, L"", 0},
        {L"{SIZE}&{W}", 101, 0, L"", 0},
        {L"true", 101, 3, L"", 0},
        {L"on", 101, 3, L"", 6},
        {L"{FLAG}", 101, 3, L"", 0},
        {L"{FLAG}{FLAG}", 101, 3, L"", 0},
        {L"{SIZE}", 101, 3, L"", 6},
        {L"1", 99, 1, L"", 5},
        {L"[10;1;1;5]", 100, 1, L"mm", 4},
        {L"[1;10;20;5]", 100, 1, L"mm", 4},
        {L"[1;10;1;11]", 100, 1, L"mm", 4},
        {L"[1;1;0;1]", 100, 1, L"mm", 0},
        {L"[1;10;2;]", 100, 1, L"mm", 0},
        {L"[1;{W}*2;1;1]", 100, 1, L"mm", 0},
        {L"[1;{NO};1;1]", 100, 1, L"mm", 5},
        {L"[1;9;;]", 100, 0, L"", 6},
        {L"1;9;;", 100, 1, L"mm", 4},
    };
    for (const Case& one : cases) {
        const auto result = table.CheckFormulaSyntax(
            one.text, static_cast<DataTypes::ColumnFormulaType>(one.formulaType),
            static_cast<DataTypes::ColumnDataType>(one.dataType), one.units);
        EXPECT_EQ(static_cast<int>(result), one.result) << CString(one.text);
    }
}

TEST_F(Expressions, ValuesOfExpressionsComeFromCentimetres)
{
    double value = 0.0;
    EXPECT_TRUE(table.GetValueFromExpression(L"3*2", L"mm", value));
    EXPECT_DOUBLE_EQ(value, 6.0);
    EXPECT_TRUE(table.GetValueFromExpression(L"5", L"", value));
    EXPECT_DOUBLE_EQ(value, 5.0);
    EXPECT_FALSE(table.GetValueFromExpression(L"5*", L"mm", value));
}

TEST_F(Expressions, ReplacesReferencesByValuesWithTheirUnits)
{
    struct Case {
        const wchar_t* text;
        int result;
        const wchar_t* replaced;
    };
    const Case cases[] = {
        {L"{W} >= 2mm and { n }<4", 0, L"3mm >= 2mm and 2mm<4"},
        {L"{SIZE}{FLAG}", 0, L"M8no"},
        {L"no reference", 0, L"no reference"},
        {L"{W}*{GONE}", 3, L"as it was"},
        {L"{W}*{W", 2, L"as it was"},
    };
    for (const Case& one : cases) {
        CString replaced = L"as it was";
        EXPECT_EQ(one.result, table.ReplaceReferences(one.text, L"r", L"", replaced)) << one.text;
        EXPECT_EQ(one.replaced, replaced);
    }
}

TEST(Tokens, SplitAtBraces)
{
    const auto list = encap::Tokenize(L"a{ B }+{C{d}");
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->tokens.size(), 4U);
    EXPECT_EQ(list->tokens[0].text, L"a");
    EXPECT_TRUE(list->tokens[1].isReference);
    EXPECT_EQ(list->tokens[1].text, L"B");
    EXPECT_EQ(list->tokens[3].text, L"C{d") << "an opening brace in a reference is part of it";
    for (const wchar_t* bad : {L"{a", L"a}", L"{a}}", L"}{a}"}) {
        EXPECT_EQ(encap::Tokenize(bad), nullptr) << CString(bad);
    }
}
