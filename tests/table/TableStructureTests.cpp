#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/table/FamilyTable.h"
#include "tests/support/FamilyBuilder.h"

#include <gtest/gtest.h>

using encap::test::CellText;
using encap::test::ColumnOf;
using encap::test::FamilyBuilder;

namespace {

/// A family of four rows and a few columns, and what its document says after re-opening.
class TableStructure : public ::testing::Test {
protected:
    TableStructure()
        : family(FamilyBuilder()
                     .Column({L"RID", L"string"})
                     .Column({L"STATUS", L"string"})
                     .Column({L"D", L"double", L"mm", L"", L"KeyWeight='1'"})
                     .Column({L"L", L"double", L"mm", L"5mm", L"KeyWeight='2'"})
                     .Column({L"V", L"double", L"mm", L"{D}+{L}", L"KeyWeight='3'"})
                     .Row(L"r1", {{L"D", L"1"}, {L"STATUS", L"suppressed"}})
                     .Row(L"r2", {{L"D", L"2"}, {L"L", L"7"}})
                     .Row(L"r3", {{L"D", L"3"}})
                     .Row(L"r4", {{L"D", L"4"}})
                     .Open(&provider)),
          table(*family->GetEncapFamilyTable())
    {
    }

    [[nodiscard]] std::vector<CString> SavedIds(bool rows)
    {
        CString xml;
        family->GetFamilyXML().GetXml(xml);
        CStandaloneEvaluatorProvider other;
        const CEncapFamily saved(xml.c_str(), {}, L"", &other, false);
        const CEncapFamilyTable& savedTable = *saved.GetEncapFamilyTable();
        return rows ? savedTable.GetAllRowIDs() : savedTable.GetAllColumnIDs();
    }
    void ExpectSaved()
    {
        EXPECT_EQ(SavedIds(true), table.GetAllRowIDs());
        EXPECT_EQ(SavedIds(false), table.GetAllColumnIDs());
    }

    CStandaloneEvaluatorProvider provider;
    std::unique_ptr<CEncapFamily> family;
    CEncapFamilyTable& table;
};

} // namespace

TEST_F(TableStructure, LooksUpWithoutRegardToCase)
{
    EXPECT_EQ(table.GetFamilyRowIndexByID(L"R3"), 2);
    EXPECT_EQ(table.GetFamilyRowIndexByID(L"r9"), -1);
    EXPECT_EQ(table.GetFamilyColumnIndexByID(L"status"), 1);
    EXPECT_EQ(table.GetFamilyRowByIndex(-1), nullptr);
    EXPECT_EQ(table.GetFamilyRowByIndex(4), nullptr);
    EXPECT_EQ(table.GetRowIDByIndex(4), L"");
    EXPECT_TRUE(table.IsRowSuppressed(L"R1"));
    EXPECT_FALSE(table.IsRowSuppressed(L"r2"));
    EXPECT_EQ(table.GetStatusColIDStr(), L"STATUS");
    CString value = L"kept";
    EXPECT_EQ(table.GetValue(L"r1", L"NONE", value), CTableEvaluator::EvaluateFailed);
    EXPECT_EQ(value, L"kept");
}

TEST_F(TableStructure, InsertsRowsAtTheirPlace)
{
    ASSERT_NE(table.InsertNewRow(-1, L"first"), nullptr);
    ASSERT_NE(table.InsertNewRow(99, L"last"), nullptr);
    ASSERT_NE(table.InsertNewRow(2, L"third"), nullptr);
    EXPECT_EQ(table.GetAllRowIDs(),
              (std::vector<CString>{L"first", L"r1", L"third", L"r2", L"r3", L"r4", L"last"}));
    CEncapFamilyRow* row = table.InsertNewRow(0, L"");
    CString id;
    row->GetRowID(id);
    EXPECT_EQ(id.size(), 36U);
    EXPECT_EQ(CellText(*family, id, L"RID"), id);
    EXPECT_EQ(row->GetRowState(), CEncapFamilyRow::RowStateNew);
    ExpectSaved();
}

TEST_F(TableStructure, KeepsThePlaceOfElementsAmongCommentsAndIndentation)
{
    const wchar_t* xml =
        L"<F><FamilyTable><Columns><!-- c --><Column ColumnId='A'/><Column ColumnId='B'/></Columns>"
        L"<Rows><!-- one --><Row RowId='a'/><!-- two --><Row/><Row RowId='b'/></Rows>"
        L"</FamilyTable></F>";
    CEncapFamily commented(xml, {}, L"", &provider, false);
    CEncapFamilyTable& rows = *commented.GetEncapFamilyTable();
    ASSERT_NE(rows.InsertNewRow(1, L"between"), nullptr);
    ASSERT_NE(rows.InsertNewColumn(0, L"C"), nullptr);
    int index = 0;
    rows.ChangeRowIndex(L"b", index);
    EXPECT_EQ(rows.GetAllRowIDs(), (std::vector<CString>{L"b", L"a", L"between"}));
    CString saved;
    commented.GetFamilyXML().GetXml(saved);
    const CEncapFamily again(saved.c_str(), {}, L"", &provider, false);
    EXPECT_EQ(again.GetEncapFamilyTable()->GetAllRowIDs(), rows.GetAllRowIDs());
    EXPECT_EQ(again.GetEncapFamilyTable()->GetAllColumnIDs(), rows.GetAllColumnIDs());
}

TEST_F(TableStructure, TwoRowsOfOneIdKeepTheirPlaces)
{
    table.InsertNewRow(4, L"R2");
    EXPECT_EQ(table.GetFamilyRowIndexByID(L"r2"), 1);
    table.SetValue(L"r2", L"D", L"9", true);
    EXPECT_EQ(CellText(*family, L"r2", L"D"), L"9") << "the latest answers";
    EXPECT_TRUE(table.DeleteRow(4));
    EXPECT_EQ(CellText(*family, L"r2", L"D"), L"2") << "the other one answers again";
    EXPECT_TRUE(table.DeleteRow(1));
    EXPECT_EQ(table.GetFamilyRowByID(L"r2"), nullptr);
    ExpectSaved();
}

TEST_F(TableStructure, MovesRowsAndColumns)
{
    int index = 99;
    table.ChangeRowIndex(L"r1", index);
    EXPECT_EQ(index, 3);
    index = 1;
    table.ChangeRowIndex(L"r4", index);
    index = -5;
    table.ChangeRowIndex(L"r3", index);
    EXPECT_EQ(table.GetAllRowIDs(), (std::vector<CString>{L"r3", L"r2", L"r4", L"r1"}));
    index = 0;
    table.ChangeColumnIndex(L"v", index);
    EXPECT_EQ(table.GetFamilyColumnIndexByID(L"V"), 4) << "moves find the exact ID only";
    table.ChangeColumnIndex(L"V", index);
    EXPECT_EQ(table.GetFamilyColumnIndexByID(L"V"), 0);
    ExpectSaved();
}

TEST_F(TableStructure, DeletesColumnsWithEverythingThatIsTheirs)
{
    EXPECT_EQ(CellText(*family, L"r2", L"V"), L"9");
    ASSERT_TRUE(table.DeleteColumn(table.GetFamilyColumnIndexByID(L"L")));
    EXPECT_FALSE(table.GetFamilyRowByID(L"r2")->HasRawValue(L"L"));
    EXPECT_EQ(ColumnOf(*family, L"D").GetKeyWeight(), 1);
    EXPECT_EQ(ColumnOf(*family, L"V").GetKeyWeight(), 2) << "no gap among the key columns";
    EXPECT_EQ(CellText(*family, L"r2", L"V"), L"#3");
    EXPECT_FALSE(table.DeleteColumn(99));
    ASSERT_TRUE(table.DeleteColumn(1));
    EXPECT_EQ(table.GetStatusColIDStr(), L"");
    ExpectSaved();
}

TEST_F(TableStructure, CopiesOwnCellsAndPastesEveryValue)
{
    table.SetValue(L"r2", L"V", L"{D}*10", true);
    CEncapFamilyRow* copy = table.CopyRow(L"R2");
    ASSERT_NE(copy, nullptr);
    CString id;
    copy->GetRowID(id);
    EXPECT_EQ(CellText(*family, id, L"D"), L"2");
    EXPECT_EQ(CellText(*family, id, L"RID"), id);
    EXPECT_FALSE(copy->HasRawValue(L"STATUS"));
    EXPECT_EQ(table.CopyRow(L"none"), nullptr);

    ASSERT_TRUE(table.PasteRow(2, 0));
    EXPECT_TRUE(table.GetFamilyRowByID(L"r3")->HasRawValue(L"V")) << "evaluated values too";
    EXPECT_EQ(CellText(*family, L"r3", L"V"), L"6");
    EXPECT_FALSE(table.IsRowSuppressed(L"r3"));
    EXPECT_FALSE(table.PasteRow(0, 99));
    ExpectSaved();
}

TEST_F(TableStructure, DuplicatesColumns)
{
    CEncapFamilyColumn* copy = table.DuplicateColumn(0, L"l", L"L2");
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(CellText(*family, L"r2", L"L2"), L"7");
    EXPECT_EQ(CellText(*family, L"r1", L"L2"), L"5");
    EXPECT_FALSE(copy->IsKeyColumn());
    EXPECT_EQ(table.GetFamilyColumnIndexByID(L"L2"), 0);
    for (const wchar_t* bad : {L"", L"1A", L"A B", L"d", L"A.B"}) {
        EXPECT_EQ(table.DuplicateColumn(0, L"L", bad), nullptr) << CString(bad);
        EXPECT_FALSE(table.IsValidNewColumnName(bad)) << CString(bad);
    }
    EXPECT_TRUE(table.IsValidNewColumnName(L"A1_b-\x00E9"));
    CEncapFamilyColumn* formula = table.DuplicateColumn(99, L"V", L"V2");
    EXPECT_TRUE(ColumnOf(*family, L"D").IsReferencedDirectlyBy(formula));
    EXPECT_EQ(table.InsertNewColumn(0, L"v2"), nullptr);
    ExpectSaved();
}

TEST_F(TableStructure, SetsTheStatus)
{
    table.SetStatusColValue(1, L"SUPPRESSED");
    EXPECT_TRUE(table.IsRowSuppressed(L"r2"));
    EXPECT_EQ(CellText(*family, L"r2", L"STATUS"), L"SUPPRESSED");
    table.SetStatusColValue(1, L"Visible");
    EXPECT_FALSE(table.IsRowSuppressed(L"r2"));
    EXPECT_EQ(CellText(*family, L"r2", L"STATUS"), L"Visible");
}
