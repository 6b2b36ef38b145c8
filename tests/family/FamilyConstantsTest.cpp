#include "encap/mapping/FamilyMapping.h"
#include "encap/table/FamilyColumn.h"
#include "tests/family/TestFamily.h"

using namespace encap;
using namespace encap::test;

namespace {

const wchar_t* const kMapped =
    L"<F><Categories><Category InternalName='c' Hidden='false'>"
    L"<Category InternalName='sub'><CategoryParameter InternalName='nested' ValueLocalized='TRUE'/>"
    L"</Category>"
    L"<CategoryParameter InternalName='plain'/>"
    L"<CategoryParameter InternalName='numeric' ValueLocalized='1'/>"
    L"<CategoryParameter InternalName='local' ValueLocalized='true'/></Category></Categories>"
    L"<FamilyTable><Columns><Column ColumnId='D' Hidden='false'/>"
    L"<Column ColumnId='MEMBER_REVISION' Hidden='true'/></Columns>"
    L"<Rows><Row RowId='r1'><Cell ColumnId='D'>5</Cell>"
    L"<Cell ColumnId='MEMBER_REVISION'>old</Cell></Row></Rows></FamilyTable>"
    L"<ParameterMap><FamilyParametersMap><ParamsToTemplate>"
    L"<ParamTemplateValue ConstantValue='7'><CategoryParameterRef CategoryParameter='plain'/>"
    L"<TemplatesParameter><TemplateParameter TemplateName='T1' ParameterId='3'/>"
    L"<TemplateParameter TemplateName='T\"2' ParameterId='4'/></TemplatesParameter>"
    L"</ParamTemplateValue>"
    L"<ParamTemplateValue><CategoryParameterRef CategoryParameter='local'/></ParamTemplateValue>"
    L"</ParamsToTemplate></FamilyParametersMap><MemberParametersMap><ParamsToColumn>"
    L"<ParamToColumn TableColumn='D'><CategoryParameterRef CategoryParameter='mapped'/>"
    L"</ParamToColumn>"
    L"<ParamToColumn TableColumn='gone'><CategoryParameterRef CategoryParameter='dangling'/>"
    L"</ParamToColumn></ParamsToColumn></MemberParametersMap></ParameterMap></F>";

const wchar_t* const kLocalConstant =
    L"<ConstantValues><ConstantValue CategoryParameter='local'>lokal</ConstantValue>"
    L"<ConstantValue CategoryParameter='plain'>never read</ConstantValue></ConstantValues>";

/// The constant value of a parameter, or "(none)".
CString Constant(TestFamily& family, const wchar_t* id)
{
    CString value = L"left over";
    if (family->GetCatParamConstValue(id, value)) {
        return value;
    }
    EXPECT_EQ(value, L"");
    return L"(none)";
}

TEST(CategoryConstants, LocalizedTextOfTheFirstLanguageReplacesTheAttribute)
{
    TestFamily german(kMapped, {StringsXml(L"de", kLocalConstant), StringsXml(L"en")});
    EXPECT_EQ(Constant(german, L"local"), L"lokal");
    EXPECT_EQ(Constant(german, L"plain"), L"7");
    EXPECT_EQ(Constant(german, L"PLAIN"), L"(none)");
    EXPECT_EQ(Constant(german, L"mapped"), L"(none)");
    TestFamily english(kMapped, {StringsXml(L"en"), StringsXml(L"de", kLocalConstant)});
    EXPECT_EQ(Constant(english, L"local"), L"");
}

TEST(CategoryConstants, OnlyTheWordTrueLocalizes)
{
    TestFamily family(kMapped);
    for (const wchar_t* id : {L"local", L"nested"}) {
        EXPECT_TRUE(family->IsCatParamLocalized(id));
    }
    for (const wchar_t* id : {L"plain", L"numeric", L"LOCAL", L"unknown", L""}) {
        EXPECT_FALSE(family->IsCatParamLocalized(id));
    }
}

TEST(CategoryConstants, SettingWritesTheMapAndEveryLanguage)
{
    TestFamily family(kMapped, {StringsXml(L"de", kLocalConstant), StringsXml(L"en")});
    family->SetCatParamConstValue(L"local", L"new");
    EXPECT_EQ(CountOf(family.Root(), L"//ParamTemplateValue"), 2U);
    EXPECT_EQ(CountOf(family.Root(), L"//ParamTemplateValue[@ConstantValue='new']"), 1U);
    for (int language = 0; language < 2; ++language) {
        EXPECT_EQ(TextAt(family.Strings(language),
                         L"ConstantValues/ConstantValue[@CategoryParameter='local']"),
                  L"new");
    }
    family->SetCatParamConstValue(L"plain", L"8");
    EXPECT_EQ(CountOf(family.Strings(1), L"ConstantValues/ConstantValue"), 1U);
    family->SetCatParamConstValue(L"a'b\"c", L"quoted");
    EXPECT_EQ(Constant(family, L"a'b\"c"), L"quoted");
    EXPECT_EQ(CountOf(family.Root(), L"//ParamTemplateValue"), 3U);
}

TEST(CategoryConstants, AParameterMapMadeHereIsTheMappingsToo)
{
    TestFamily family(L"<F><Categories><Category InternalName='h' Hidden='true'>"
                      L"<CategoryParameter InternalName='p'/></Category></Categories><FamilyTable>"
                      L"<Columns><Column ColumnId='D'/></Columns></FamilyTable></F>");
    family->SetCatParamConstValue(L"p", L"1");
    ASSERT_EQ(Constant(family, L"p"), L"1");
    // The category goes, and the mapping drops the constant from the map that was made here.
    family->SetInternalName(L"renamed");
    EXPECT_EQ(Constant(family, L"p"), L"(none)");
    CEncapFamilyColumn* column = family.Table().GetFamilyColumnByID(L"D");
    ASSERT_TRUE(family->GetEncapFamilyMapping()->AddParamToColumnMapping(column, L"c", L"q"));
    CString id;
    EXPECT_TRUE(family->GetColumnCategory(L"D", id));
    EXPECT_EQ(id, L"q");
    EXPECT_EQ(CountOf(family.Root(), L"ParameterMap"), 1U);
}

TEST(CategoryColumns, ComeFromTheTableOrTheConstant)
{
    TestFamily family(kMapped);
    EXPECT_EQ(family->GetCategoryParamColumn(L"mapped"), family.Table().GetFamilyColumnByID(L"D"));
    EXPECT_EQ(family->GetCategoryParamColumn(L"dangling"), nullptr);
    EXPECT_EQ(family->GetCategoryParamColumn(L"unknown"), nullptr);
    EXPECT_EQ(family->GetCategoryParamColumn(nullptr), nullptr);

    CEncapFamilyColumn* constant = family->GetCategoryParamColumn(L"plain");
    ASSERT_NE(constant, nullptr);
    EXPECT_EQ(family->GetCategoryParamColumn(L"plain"), constant);
    CString value;
    EXPECT_EQ(constant->GetValue(L"any row", value), 0);
    EXPECT_EQ(value, L"7");
    constant->SetValue(L"any row", L"8", false);
    EXPECT_EQ(Constant(family, L"plain"), L"8");

    // A null answer is not kept: the parameter may get a constant.
    family->SetCatParamConstValue(L"unknown", L"1");
    EXPECT_NE(family->GetCategoryParamColumn(L"unknown"), nullptr);
}

TEST(CategoryColumns, FollowTheMappingAndOutliveIt)
{
    TestFamily family(kMapped);
    CEncapFamilyColumn* constant = family->GetCategoryParamColumn(L"plain");
    CEncapFamilyColumn* column = family.Table().GetFamilyColumnByID(L"D");
    ASSERT_TRUE(family->GetEncapFamilyMapping()->AddParamToColumnMapping(column, L"c", L"plain"));
    EXPECT_EQ(family->GetCategoryParamColumn(L"plain"), column);
    CString value;
    EXPECT_EQ(constant->GetValue(L"r1", value), 0);
    EXPECT_EQ(value, L"7");

    ASSERT_EQ(family->GetCategoryParamColumn(L"mapped"), column);
    ASSERT_TRUE(family.Table().DeleteColumn(0));
    EXPECT_EQ(family->GetCategoryParamColumn(L"mapped"), nullptr);
    EXPECT_FALSE(family->GetColumnCategory(L"D", value));
    constant = family->GetCategoryParamColumn(L"plain");
    ASSERT_NE(constant, nullptr);
    EXPECT_EQ(constant->GetValue(L"r1", value), 0);
}

TEST(TemplateParameters, SetTheConstantOfTheElementThatFeedsThem)
{
    TestFamily family(kMapped);
    EXPECT_EQ(family->SetTemplateParameterValue(L"T1", L"03", L"9"), 1);
    EXPECT_EQ(family->SetTemplateParameterValue(L"T2", L"3", L"9"), 1);
    EXPECT_EQ(family.Cell(L"r1", L"MEMBER_REVISION"), L"old");
    EXPECT_EQ(family->SetTemplateParameterValue(L"T\"2", L"4", L"9"), 0);
    EXPECT_EQ(CountOf(family.Root(), L"//TemplatesParameter[@ConstantValue='9']"), 1U);
    EXPECT_EQ(Constant(family, L"plain"), L"7");
    EXPECT_NE(family.Cell(L"r1", L"MEMBER_REVISION"), L"old");
    TestFamily bare(L"<F/>");
    EXPECT_EQ(bare->SetTemplateParameterValue(L"T1", L"3", L"9"), 1);
}

TEST(RangeValues, GoToTheTable)
{
    TestFamily family(kMapped);
    family->SetRangeColumnValues({{L"D", L"4"}});
    CString value;
    EXPECT_TRUE(family.Table().GetRangeColumnValue(L"D", value));
    EXPECT_EQ(value, L"4");
}

} // namespace
