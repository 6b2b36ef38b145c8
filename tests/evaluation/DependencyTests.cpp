#include "encap/evaluation/ColumnDependencies.h"
#include "encap/host/StandaloneEvaluatorProvider.h"
#include "tests/support/FamilyBuilder.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

using encap::test::CellText;
using encap::test::ColumnOf;
using encap::test::FamilyBuilder;

namespace {

std::set<CString> Ids(const std::set<CEncapFamilyColumn*>& columns)
{
    std::set<CString> ids;
    for (const CEncapFamilyColumn* column : columns) {
        CString id;
        column->GetColumnID(id);
        ids.insert(id);
    }
    return ids;
}

/// The edges of every column, for comparing before and after.
std::set<std::pair<CString, CString>> Edges(CEncapFamily& family)
{
    std::set<std::pair<CString, CString>> edges;
    for (const CString& id : family.GetEncapFamilyTable()->GetAllColumnIDs()) {
        for (const CString& dependent : Ids(ColumnOf(family, id).GetDependantColumns())) {
            edges.emplace(id, dependent);
        }
    }
    return edges;
}

} // namespace

TEST(Dependencies, AreBuiltFromTheFormulasAndAskedTransitively)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"A", L"double", L"mm"})
                            .Column({L"B", L"double", L"mm", L"{a}*2"})
                            .Column({L"C", L"double", L"mm", L"{B}+{A}"})
                            .Column({L"D", L"double", L"mm", L"1mm"})
                            .Open(&provider);
    CEncapFamilyColumn& a = ColumnOf(*family, L"A");
    CEncapFamilyColumn& b = ColumnOf(*family, L"B");
    CEncapFamilyColumn& c = ColumnOf(*family, L"C");
    EXPECT_EQ(Edges(*family),
              (std::set<std::pair<CString, CString>>{{L"A", L"B"}, {L"A", L"C"}, {L"B", L"C"}}));
    std::set<CEncapFamilyColumn*> all;
    EXPECT_EQ(Ids(a.GetAllDependentColumns(all, nullptr)), (std::set<CString>{L"A", L"B", L"C"}));
    all.clear();
    EXPECT_EQ(Ids(c.GetAllDependentColumns(all, nullptr)), std::set<CString>{L"C"});
    EXPECT_TRUE(b.IsReferencedBy(&c));
    EXPECT_FALSE(c.IsReferencedBy(&a));
    EXPECT_FALSE(a.IsReferencedBy(nullptr));
    EXPECT_TRUE(a.IsReferencedByOther());
    EXPECT_FALSE(ColumnOf(*family, L"D").IsReferencedByOther());
    EXPECT_EQ(a.CheckCircularDependency(&c), CTableEvaluator::EvaluateCircularReference);
    EXPECT_EQ(a.CheckCircularDependency(nullptr), CTableEvaluator::EvaluateOK);
}

TEST(Dependencies, RefusedFormulasChangeNothing)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"A", L"double", L"mm", L"{B}"})
                            .Column({L"B", L"double", L"mm"})
                            .Column({L"BROKEN", L"string", L"", L"{B}{"})
                            .Row(L"r", {{L"B", L"2"}})
                            .Open(&provider);
    EXPECT_EQ(CellText(*family, L"r", L"A"), L"2");
    const auto edges = Edges(*family);
    CString before;
    family->GetFamilyXML().GetXml(before);
    const std::pair<const wchar_t*, int> refused[] = {
        {L"{B}", 1}, {L"{A}", 1}, {L"{NO}", 5}, {L"{A", 2}, {L"2*", 6}};
    for (const auto& [formula, code] : refused) {
        EXPECT_EQ(static_cast<int>(ColumnOf(*family, L"B").SetFormula(formula)), code);
        EXPECT_EQ(static_cast<int>(ColumnOf(*family, L"B").ValidateNormalFormula(formula, L"")),
                  code);
        EXPECT_EQ(Edges(*family), edges) << CString(formula);
    }
    EXPECT_EQ(ColumnOf(*family, L"BROKEN").SetFormula(L"{NO}"),
              CTableEvaluator::EvaluateUnknownColumn);
    CString after;
    family->GetFamilyXML().GetXml(after);
    EXPECT_EQ(before, after);
}

TEST(Dependencies, WalksEndOnCyclesAndVisitDiamondsOnce)
{
    CStandaloneEvaluatorProvider provider;
    FamilyBuilder builder;
    builder.Column({L"L0", L"double", L"mm"}).Column({L"R0", L"double", L"mm"});
    for (int i = 1; i <= 40; ++i) {
        const CString before = std::to_wstring(i - 1);
        const CString formula = L"{L" + before + L"}+{R" + before + L"}";
        builder.Column({L"L" + std::to_wstring(i), L"double", L"mm", formula});
        builder.Column({L"R" + std::to_wstring(i), L"double", L"mm", formula});
    }
    builder.Column({L"P", L"double", L"mm", L"{Q}+{L0}"}).Column({L"Q", L"double", L"mm", L"{P}"});
    const auto family = builder.Row(L"r", {{L"L0", L"0"}, {L"R0", L"1"}}).Open(&provider);
    CEncapFamilyColumn& root = ColumnOf(*family, L"L0");
    std::set<CEncapFamilyColumn*> all;
    EXPECT_EQ(root.GetAllDependentColumns(all, nullptr).size(), 83U);
    EXPECT_TRUE(root.IsReferencedBy(&ColumnOf(*family, L"R40")));
    EXPECT_FALSE(root.ChangeInColumnCausesRefresh());
    ColumnOf(*family, L"Q").SetIsGeometryColumn(true);
    EXPECT_TRUE(root.ChangeInColumnCausesRefresh());
    EXPECT_EQ(ColumnOf(*family, L"P").CheckCircularDependency(nullptr),
              CTableEvaluator::EvaluateCircularReference);
    for (int i = 0; i < 1000; ++i) {
        family->GetEncapFamilyTable()->SetValue(L"r", L"L0", L"1", true);
    }
    EXPECT_EQ(CellText(*family, L"r", L"L3"), L"8");
}

TEST(Dependencies, ColumnsThatComeAndGoKeepThemRight)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"A", L"double", L"mm"})
                            .Column({L"B", L"double", L"mm", L"{A}*2"})
                            .Row(L"r", {{L"A", L"2"}})
                            .Open(&provider);
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    EXPECT_EQ(CellText(*family, L"r", L"B"), L"4");
    ASSERT_TRUE(table.DeleteColumn(0));
    EXPECT_EQ(CellText(*family, L"r", L"B"), L"#3");
    ASSERT_NE(table.InsertNewColumn(9, L"A"), nullptr);
    ColumnOf(*family, L"A").SetDataType(DataTypes::ColumnDataTypeReal);
    ColumnOf(*family, L"A").SetUnitType(L"mm");
    table.SetValue(L"r", L"A", L"5", true);
    EXPECT_EQ(CellText(*family, L"r", L"B"), L"10");
    table.SetValue(L"r", L"A", L"6", true);
    EXPECT_EQ(CellText(*family, L"r", L"B"), L"12") << "the edge is back";
    EXPECT_EQ(ColumnOf(*family, L"A").SetFormula(L"{B}"),
              CTableEvaluator::EvaluateCircularReference);
    EXPECT_EQ(ColumnOf(*family, L"B").SetEmptyFormula(), CTableEvaluator::EvaluateOK);
    EXPECT_EQ(ColumnOf(*family, L"A").SetFormula(L"{B}"), CTableEvaluator::EvaluateOK);
}
