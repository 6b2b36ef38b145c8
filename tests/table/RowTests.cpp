#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/table/FamilyTable.h"
#include "tests/support/FamilyBuilder.h"

#include <gtest/gtest.h>

using encap::test::FamilyBuilder;

TEST(RowCells, AreFoundByTheirExactColumn)
{
    CStandaloneEvaluatorProvider provider;
    const wchar_t* xml = L"<F><FamilyTable><Columns><Column ColumnId='D'/></Columns><Rows>"
                         L"<Row RowId='r'><Cell>no column</Cell><Cell ColumnId='D'>5</Cell>"
                         L"<Cell ColumnId='D'>second</Cell><Cell ColumnId='E'/>"
                         L"<Cell ColumnId='&quot;&apos;'>quoted</Cell></Row></Rows></FamilyTable>"
                         L"</F>";
    CEncapFamily family(xml, {}, L"", &provider, false);
    CEncapFamilyRow* row = family.GetEncapFamilyTable()->GetFamilyRowByID(L"r");
    CString value;
    row->GetValue(L"D", value);
    EXPECT_EQ(value, L"5");
    EXPECT_TRUE(row->HasRawValue(L"D"));
    EXPECT_FALSE(row->HasRawValue(L"d"));
    EXPECT_TRUE(row->HasRawValue(L"E")) << "an empty cell counts";
    EXPECT_TRUE(row->HasRawValue(L"\"'"));
    EXPECT_FALSE(row->HasRawValue(nullptr));
    row->SetValue(L"D", L"", true);
    family.GetEncapFamilyTable()->ClearCachedValue(L"r", L"D");
    row->GetValue(L"D", value);
    EXPECT_EQ(value, L"second") << "an empty value removes the first cell";
}
