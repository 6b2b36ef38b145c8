#include "encap/mapping/FamilyMapping.h"
#include "encap/table/FamilyColumn.h"
#include "tests/family/TestFamily.h"
#include "tests/support/ProcessorTime.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using encap::test::CountOf;
using encap::test::TestFamily;
using Data = CEncapFamilyColVexilData;

CString Columns(int count)
{
    CString xml;
    for (int i = 0; i < count; ++i) {
        xml += L"<Column ColumnId='C" + std::to_wstring(i) +
               L"' ValueType='double' UnitType='mm' Hidden='false'/>";
    }
    return xml;
}

/// A family with a revision column, numbered columns and two rows.
CString FamilyXml(int columns, const CString& templates = L"<FamilyTemplate Name='T'/>")
{
    return L"<Family><FamilyTable><Columns><Column ColumnId='MEMBER_REVISION'/>" +
           Columns(columns) +
           L"</Columns><Rows><Row RowId='r1'/><Row RowId='r2'/></Rows></FamilyTable>"
           L"<FamilyTemplates>" +
           templates + L"</FamilyTemplates><ParameterMap/></Family>";
}

CEncapFamilyColumn* ColumnAt(TestFamily& family, int number)
{
    return family.Table().GetFamilyColumnByID((L"C" + std::to_wstring(number)).c_str());
}

TEST(Mapping, EveryMemberGetsANewRevisionWhenTheModelChanges)
{
    TestFamily family(FamilyXml(2));
    CEncapFamilyMapping& mapping = *family->GetEncapFamilyMapping();
    CEncapFamilyColumn* column = ColumnAt(family, 0);
    std::set<CString> seen;
    const auto update = [&](bool geometry) {
        column->SetIsGeometryColumn(geometry);
        mapping.UpdateColumnMapping(column, L"", L"", Data::kUnknownObject);
        const CString revision = family.Cell(L"r1", L"MEMBER_REVISION");
        EXPECT_EQ(revision, family.Cell(L"r2", L"MEMBER_REVISION"));
        return seen.insert(revision).second && !revision.empty();
    };
    seen.insert(family.Cell(L"r1", L"MEMBER_REVISION"));
    EXPECT_FALSE(update(false));
    EXPECT_TRUE(update(true));
    EXPECT_TRUE(update(true));
    // The flag is gone before the update: what the column drove has been released by then.
    EXPECT_FALSE(update(false));
    EXPECT_EQ(CountOf(family.Root(), L"//GeneralizedParameter"), 0U);
}

TEST(Mapping, NamesItsTemplates)
{
    TestFamily family(FamilyXml(0, L"<FamilyTemplate FileName='no name'/>"
                                   L"<FamilyTemplate Name='B' FileName='b.ipt'/>"
                                   L"<FamilyTemplate Name='A' FileName='a.ipt'/>"));
    CEncapFamilyMapping& mapping = *family->GetEncapFamilyMapping();
    CString file = L"left over";
    mapping.GetTemplateFileName(file);
    EXPECT_EQ(file, L"b.ipt");
    EXPECT_EQ(mapping.AddFamilyTemplate(L"A"), mapping.GetFamilyTemplate(L"A"));
    EXPECT_EQ(mapping.AddFamilyTemplate(L""), nullptr);
    EXPECT_NE(mapping.AddFamilyTemplate(L"C"), nullptr);
    EXPECT_EQ(mapping.GetTemplateNames(), (std::vector<CString>{L"B", L"A", L"C"}));
    EXPECT_EQ(CountOf(family.Root(), L"FamilyTemplates/FamilyTemplate"), 4U);
    // A name is what the document holds of it.
    EXPECT_NE(mapping.AddFamilyTemplate(CString(L"D\0E", 3)), nullptr);
    EXPECT_EQ(mapping.GetTemplateNames().back(), L"D");
    EXPECT_NE(mapping.AddFamilyTemplate(L"F\x01"), nullptr);
    EXPECT_EQ(mapping.AddFamilyTemplate(L"F\xFFFD"), mapping.AddFamilyTemplate(L"F\x01"));
}

TEST(Mapping, AnEmptyOneChangesNothing)
{
    CEncapFamilyMapping mapping;
    CEncapFamilyColumn column;
    column.SetIsGeometryColumn(true);
    column.SetIsZelPropertyColumn(true);
    mapping.UpdateColumnMapping(&column, L"key", nullptr, Data::kPropertyObject);
    ASSERT_NE(column.GetColVexilData(), nullptr);
    EXPECT_EQ(column.GetColVexilData()->ObjectRefKey(), L"key");
    mapping.UpdateColumnMapping(nullptr, L"key", L"", Data::kPropertyObject);
    EXPECT_FALSE(mapping.AddParamToColumnMapping(&column, L"c", L"p"));
    EXPECT_FALSE(mapping.AddParamToColumnMapping(nullptr, L"c", L"p"));
    EXPECT_EQ(mapping.AddFamilyTemplate(L"T"), nullptr);
    EXPECT_EQ(mapping.GetColVexilData(nullptr, L"", Data::kPropertyObject), nullptr);
    CString file = L"kept";
    mapping.GetTemplateFileName(file);
    EXPECT_EQ(file, L"kept");
}

TEST(Mapping, LocalizedAnswersAreKeptUntilTheyMayChange)
{
    TestFamily family(
        L"<Family><Categories><Category InternalName='c' Hidden='false'><CategoryParameter "
        L"InternalName='p' ValueLocalized='true'/></Category></Categories><FamilyTable><Columns>" +
        Columns(1) + L"</Columns><Rows/></FamilyTable></Family>");
    CEncapFamilyMapping& mapping = *family->GetEncapFamilyMapping();
    CEncapFamilyColumn* column = ColumnAt(family, 0);
    const auto answer = [&] { return family->IsFamilyColumnLocalized(L"C0"); };
    EXPECT_FALSE(answer());
    uint64_t version = mapping.LocalizedColumnsVersion();
    EXPECT_FALSE(answer());
    EXPECT_EQ(mapping.LocalizedColumnsVersion(), version);

    // Each of these drops the answer and tells those who keep one of their own.
    const auto changed = [&] {
        const uint64_t before = std::exchange(version, mapping.LocalizedColumnsVersion());
        return version != before;
    };
    column->SetDataType(DataTypes::ColumnDataTypeString);
    EXPECT_TRUE(changed() && answer());
    column->SetIsHidden(true);
    EXPECT_TRUE(changed() && !answer());
    EXPECT_TRUE(mapping.AddParamToColumnMapping(column, L"c", L"p"));
    EXPECT_TRUE(changed() && answer());
    family->RemoveAllColumnMapping(column);
    EXPECT_TRUE(changed() && !answer());
    EXPECT_FALSE(family->IsFamilyColumnLocalized(L"c0"));
}

/// Binds, rebinds, maps and releases every column of a family.
double SecondsToMap(int columns)
{
    TestFamily family(
        FamilyXml(columns, L"<FamilyTemplate Name='T1'/><FamilyTemplate Name='T2'/>"));
    CEncapFamilyMapping& mapping = *family->GetEncapFamilyMapping();
    const encap::test::ProcessorTime time;
    for (const wchar_t* round : {L"first", L"second"}) {
        for (int i = 0; i < columns; ++i) {
            CEncapFamilyColumn* column = ColumnAt(family, i);
            column->SetTitle(round); // an edit of the table between each two bindings
            column->SetIsGeometryColumn(true);
            column->SetIsZelPropertyColumn(true);
            mapping.UpdateColumnMapping(column, (round + std::to_wstring(i)).c_str(), L"",
                                        Data::kPropertyObject);
            mapping.AddParamToColumnMapping(column, L"c", std::to_wstring(i).c_str());
        }
    }
    EXPECT_EQ(CountOf(family.Root(), L"//GeneralizedParameter"),
              4 * static_cast<std::size_t>(columns));
    for (int i = 0; i < columns; ++i) {
        CString category;
        CEncapFamilyColumn* column = ColumnAt(family, i);
        column->SetIsGeometryColumn(i % 2 == 0);
        mapping.UpdateColumnMapping(column, L"", L"", Data::kUnknownObject);
        EXPECT_TRUE(family->GetColumnCategory((L"C" + std::to_wstring(i)).c_str(), category));
        EXPECT_EQ(family->GetCategoryParamColumn(category.c_str()), column);
    }
    for (int i = columns - 1; i >= 0; --i) {
        family.Table().DeleteColumn(i + 1);
    }
    EXPECT_EQ(CountOf(family.Root(), L"//GeneralizedParameter | //ColumnToTemplate | "
                                     L"//ParamToColumn"),
              0U);
    return time.Seconds();
}

TEST(Mapping, TheCostOfAColumnDoesNotGrowWithTheirNumber)
{
    SecondsToMap(50); // warms up
    const double few = SecondsToMap(150);
    const double many = SecondsToMap(600);
    EXPECT_LT(many, 9 * few) << few << " s and " << many << " s";
}

} // namespace
