#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/table/ConstFamilyColumn.h"
#include "encap/table/FamilyTable.h"
#include "tests/support/FakeProvider.h"
#include "tests/support/FamilyBuilder.h"

#include <set>

#include <gtest/gtest.h>

using encap::test::CellText;
using encap::test::ColumnOf;
using encap::test::FamilyBuilder;

TEST(Columns, GivingAFormulaDiscardsTheCellsOfAColumnThatHadNone)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"D", L"double", L"mm"})
                            .Column({L"V", L"double", L"mm", L"{D}*2"})
                            .Row(L"a", {{L"D", L"1"}, {L"V", L"9"}})
                            .Open(&provider);
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    EXPECT_EQ(CellText(*family, L"a", L"V"), L"9") << "an override";
    EXPECT_TRUE(table.isCellOverride(L"A", L"v"));
    EXPECT_EQ(ColumnOf(*family, L"V").SetFormula(L"{D}*2,5"),
              CTableEvaluator::EvaluateTypeMismatch);
    EXPECT_EQ(ColumnOf(*family, L"V").SetFormula(L"{D}*2.5"), CTableEvaluator::EvaluateOK);
    EXPECT_EQ(CellText(*family, L"a", L"V"), L"9") << "it had a formula: overrides stay";
    EXPECT_EQ(ColumnOf(*family, L"D").SetFormula(L"4mm"), CTableEvaluator::EvaluateOK);
    EXPECT_EQ(CellText(*family, L"a", L"D"), L"4");
    EXPECT_FALSE(table.GetFamilyRowByID(L"a")->HasRawValue(L"D"));
    EXPECT_EQ(ColumnOf(*family, L"D").SetEmptyFormula(), CTableEvaluator::EvaluateOK);
    EXPECT_EQ(CellText(*family, L"a", L"D"), L"");
}

TEST(Columns, EditsReachEveryDependentValueInEveryLanguage)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"D", L"double", L"mm"})
                            .Column({L"V", L"double", L"mm", L"{D}*2"})
                            .Column({L"T", L"string", L"", L"{V}"})
                            .Column({L"OWN", L"double", L"mm"})
                            .Row(L"a", {{L"D", L"1"}, {L"OWN", L"{V}+1mm"}})
                            .Open(&provider, {L"<S xml:lang='en'/>", L"<S xml:lang='de'/>"});
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    const auto expectAll = [&](const CString& v, const CString& own) {
        for (const wchar_t* language : {L"en", L"de"}) {
            CString value;
            table.GetValue(L"a", L"T", language, value);
            EXPECT_EQ(value, v) << CString(language);
            table.GetValue(L"a", L"OWN", language, value);
            EXPECT_EQ(value, own) << "a formula typed into a cell, " << CString(language);
        }
    };
    expectAll(L"2", L"3");
    table.SetValue(L"A", L"d", L"5", true);
    expectAll(L"10", L"11");
    EXPECT_EQ(ColumnOf(*family, L"V").SetFormula(L"{D}*3"), CTableEvaluator::EvaluateOK);
    expectAll(L"15", L"16");
    ColumnOf(*family, L"D").SetUnitType(L"cm");
    expectAll(L"150", L"151");
    table.GetFamilyRowByID(L"a")->DeleteCellsColumnValues(L"D", false);
    CString value;
    EXPECT_EQ(table.GetValue(L"a", L"V", value), CTableEvaluator::EvaluateFailed);
}

TEST(Columns, AStoredFormulaTextIsServedUntilItIsCleared)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"D", L"double", L"mm"})
                            .Column({L"X", L"double", L"mm"})
                            .Row(L"a", {{L"D", L"2,5"}})
                            .Open(&provider);
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    table.SetValue(L"a", L"X", L"{D}*2", true);
    EXPECT_EQ(CellText(*family, L"a", L"X"), L"{D}*2");
    table.ClearCachedValue(L"a", L"X");
    EXPECT_EQ(CellText(*family, L"a", L"X"), L"#3") << "the mark of this host is the point";
    table.SetValue(L"a", L"D", L"2,5", true);
    CString xml;
    family->GetFamilyXML().GetXml(xml);
    EXPECT_NE(xml.find(L">2.5<"), CString::npos) << "stored with the point";
    table.ClearCachedValue(L"a", L"D");
    EXPECT_EQ(CellText(*family, L"a", L"X"), L"5");
    table.SetValue(L"none", L"D", L"1", true);
    CString after;
    family->GetFamilyXML().GetXml(after);
    EXPECT_EQ(after, xml) << "an unknown row changes nothing";
}

TEST(Columns, UniqueValuesAndRawValues)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Supplies(L"FILE", L"8b46a4cc-9585-4fed-90c3-899f57e09a73")
                            .Column({L"FILE", L"string"})
                            .Column({L"N", L"string", L"", L"x"})
                            .Column({L"BAD", L"boolean", L"", L"on"})
                            .Row(L"a", {{L"FILE", L"Bolt"}, {L"N", L"1"}})
                            .Row(L"b", {{L"FILE", L"BOLT"}, {L"N", L"2"}})
                            .Row(L"c", {{L"FILE", L"Nut"}, {L"N", L"2"}})
                            .Open(&provider);
    CTableEvaluator::EvaluateResult result{};
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    EXPECT_TRUE(ColumnOf(*family, L"FILE").IsRestrictedColumn());
    EXPECT_FALSE(table.HasColumnUniqueValues(L"FILE", result)) << "file names ignore case";
    table.SetValue(L"b", L"FILE", L"Washer", true);
    EXPECT_TRUE(table.HasColumnUniqueValues(L"FILE", result));
    EXPECT_FALSE(table.HasColumnUniqueValues(L"BAD", result));
    EXPECT_EQ(result, CTableEvaluator::EvaluateTypeMismatch);
    std::set<CString> raw{L"left over"};
    ColumnOf(*family, L"N").GetAllUniqueRawValues(raw);
    EXPECT_EQ(raw, (std::set<CString>{L"1", L"2", L"x"}));
    std::vector<CString> overrides;
    EXPECT_TRUE(ColumnOf(*family, L"N").GetExpressionColumnOverrides(overrides));
    EXPECT_EQ(overrides, (std::vector<CString>{L"a", L"b", L"c"}));
}

TEST(Columns, WithoutATableOrAnElementNothingHappens)
{
    CEncapFamilyColumn column;
    CString value = L"kept";
    EXPECT_EQ(column.GetValue(L"r", value), CTableEvaluator::EvaluateColumnNotFound);
    column.SetValue(L"r", L"1", true);
    EXPECT_EQ(column.SetFormula(L"1"), CTableEvaluator::EvaluateColumnNotFound);
    EXPECT_FALSE(column.IsLocalized());
    CEncapFamilyTable table;
    CEncapConstFamilyColumn constant(&table, L"id", L"steel");
    EXPECT_EQ(constant.GetValue(L"any", value), CTableEvaluator::EvaluateOK);
    EXPECT_EQ(value, L"steel");
    EXPECT_EQ(constant.GetValue(L"any", L"en", value), CTableEvaluator::EvaluateColumnNotFound);
    EXPECT_EQ(table.InsertNewRow(0, L"r"), nullptr);
    EXPECT_EQ(table.GetRowsCount(), 0U);
}
