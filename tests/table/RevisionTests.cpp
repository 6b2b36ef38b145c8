#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/table/FamilyTable.h"
#include "tests/support/FamilyBuilder.h"

#include <set>

#include <gtest/gtest.h>

using encap::test::CellText;
using encap::test::ColumnOf;
using encap::test::FamilyBuilder;

namespace {

FamilyBuilder Revised()
{
    return FamilyBuilder()
        .Column({L"MEMBER_REVISION", L"string"})
        .Column({L"D", L"double", L"mm"})
        .Column({L"V", L"double", L"mm", L"{D}*2"})
        .Row(L"a", {{L"D", L"1"}, {L"MEMBER_REVISION", L"old"}})
        .Row(L"b", {{L"D", L"2"}, {L"MEMBER_REVISION", L"old"}});
}

std::set<CString> Revisions(CEncapFamily& family)
{
    std::set<CString> revisions;
    for (const CString& row : family.GetEncapFamilyTable()->GetAllRowIDs()) {
        revisions.insert(CellText(family, row, L"MEMBER_REVISION"));
    }
    return revisions;
}

} // namespace

TEST(Revisions, FollowChangesThatAffectTheModel)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = Revised().Open(&provider);
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    table.SetValue(L"a", L"D", L"3", true);
    EXPECT_EQ(Revisions(*family), std::set<CString>{L"old"}) << "nothing is driven by D";
    ColumnOf(*family, L"V").SetIsGeometryColumn(true);
    table.SetValue(L"a", L"D", L"4", true);
    EXPECT_NE(CellText(*family, L"a", L"MEMBER_REVISION"), L"old");
    EXPECT_EQ(CellText(*family, L"b", L"MEMBER_REVISION"), L"old");
    EXPECT_EQ(ColumnOf(*family, L"V").SetFormula(L"{D}*3"), CTableEvaluator::EvaluateOK);
    const std::set<CString> shared = Revisions(*family);
    EXPECT_EQ(shared.size(), 1U) << "all rows share one new stamp";
    EXPECT_EQ(shared.count(L"old"), 0U);
    EXPECT_EQ(ColumnOf(*family, L"V").SetFormula(L"{D}*3"), CTableEvaluator::EvaluateOK);
    EXPECT_EQ(Revisions(*family), shared) << "the same formula again changes nothing";
    table.CopyRow(L"a");
    EXPECT_EQ(Revisions(*family).size(), 2U) << "a copy has a stamp of its own";
    ASSERT_TRUE(table.DeleteColumn(table.GetFamilyColumnIndexByID(L"V")));
    EXPECT_EQ(Revisions(*family).size(), 1U);
    EXPECT_EQ(table.GetFamilyColumnByID(L"SOURCE_MEMBER_REVISION"), nullptr);
}

TEST(Revisions, RowStatesTellEditsFromStamps)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = Revised().Open(&provider);
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    table.BumpAllMemberRevisions(L"stamp");
    EXPECT_EQ(Revisions(*family), std::set<CString>{L"stamp"});
    EXPECT_FALSE(table.GetFamilyRowByID(L"a")->IsRowModified());
    table.SetValue(L"a", L"D", L"", true);
    EXPECT_EQ(table.GetFamilyRowByID(L"a")->GetRowState(), CEncapFamilyRow::RowStateModified);
    table.SetRowStateOfAllRows(CEncapFamilyRow::RowStateUnchanged);
    EXPECT_FALSE(table.GetFamilyRowByID(L"a")->IsRowModified());
}

TEST(Revisions, ACopiedFamilyKeepsItsSourcesRevisions)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = Revised().Attributes(L"FromSource='lib'").Open(&provider);
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    ColumnOf(*family, L"D").SetIsGeometryColumn(true);
    table.SetValue(L"a", L"D", L"5", true);
    EXPECT_EQ(table.GetFamilyColumnIndexByID(L"SOURCE_MEMBER_REVISION"), 3);
    EXPECT_TRUE(ColumnOf(*family, L"SOURCE_MEMBER_REVISION").IsHidden());
    EXPECT_EQ(CellText(*family, L"a", L"SOURCE_MEMBER_REVISION"), L"old");
    EXPECT_NE(CellText(*family, L"a", L"MEMBER_REVISION"), L"old");
}

TEST(Revisions, AStampThatDrivesTheModelDoesNotStampForEver)
{
    CStandaloneEvaluatorProvider provider;
    const auto family = FamilyBuilder()
                            .Column({L"MEMBER_REVISION", L"string"})
                            .Column({L"G", L"string", L"", L"{MEMBER_REVISION}"})
                            .Column({L"D", L"string"})
                            .Row(L"a")
                            .Row(L"b")
                            .Open(&provider);
    CEncapFamilyTable& table = *family->GetEncapFamilyTable();
    ColumnOf(*family, L"G").SetIsGeometryColumn(true);
    ColumnOf(*family, L"D").SetIsGeometryColumn(true);
    table.SetValue(L"a", L"D", L"x", true);
    EXPECT_EQ(CellText(*family, L"a", L"G"), CellText(*family, L"a", L"MEMBER_REVISION"));
    table.BumpAllMemberRevisions(nullptr);
    EXPECT_EQ(CellText(*family, L"a", L"G"), CellText(*family, L"b", L"G"));
}
