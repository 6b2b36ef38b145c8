#include "encap/family/Vocabulary.h"
#include "encap/table/FamilyColumn.h"
#include "tests/family/TestFamily.h"

using namespace encap;
using namespace encap::test;

namespace {

CString Member(const CString& row, const CString& revision)
{
    return L"<Row RowId='" + row + L"'><Cell ColumnId='MEMBER_REVISION'>" + revision +
           L"</Cell></Row>";
}

CString Revised(const CString& attributes, const CString& rows)
{
    return L"<F " + attributes +
           L"><FamilyTable><Columns>"
           L"<Column ColumnId='MEMBER_REVISION' Hidden='true' "
           L"ValueType='string'/></Columns><Rows>" +
           rows + L"</Rows></FamilyTable></F>";
}

const CString kSource = L"InternalName='src' Library='lib'";

TEST(Links, CopyTheRevisionsOfTheSource)
{
    TestFamily source(Revised(kSource, Member(L"r1", L"s1") + Member(L"r2", L"s2")));
    TestFamily family(Revised(L"", Member(L"r2", L"m2") + Member(L"other", L"m3")));
    family->SetLink(&source.family, false);
    EXPECT_TRUE(family->IsLinked());
    EXPECT_FALSE(family->IsSrcActive());
    EXPECT_EQ(TextOf(family.family, &CEncapFamily::GetCopyFrom), L"lib");
    EXPECT_EQ(TextOf(family.family, &CEncapFamily::GetSourceMoniker), L"src");
    EXPECT_EQ(Attribute(family.Root(), L"SrcActive"), L"false");
    EXPECT_EQ(family.Cell(L"r2", L"SOURCE_MEMBER_REVISION"), L"s2");
    EXPECT_EQ(family.Cell(L"r2", L"MEMBER_REVISION"), L"m2");
    EXPECT_EQ(family.Cell(L"other", L"SOURCE_MEMBER_REVISION"), L"");

    // Linking again only renews the attributes.
    source.Table().SetValue(L"r2", L"MEMBER_REVISION", L"s3", true);
    family->SetLink(&source.family, true);
    EXPECT_TRUE(family->IsSrcActive());
    EXPECT_EQ(family.Cell(L"r2", L"SOURCE_MEMBER_REVISION"), L"s2");
}

TEST(Links, ClearingRemovesAttributesAndColumn)
{
    TestFamily source(Revised(kSource, Member(L"r1", L"s1")));
    TestFamily family(Revised(L"", Member(L"r1", L"m1")));
    family->SetLink(&source.family, true);
    family.Table()
        .GetFamilyColumnByID(vocabulary::kSourceMemberRevisionColumn)
        ->SetIsGeometryColumn(true);
    family->ClearLink();
    EXPECT_FALSE(family->IsLinked());
    EXPECT_EQ(TextOf(family.family, &CEncapFamily::GetSourceMoniker), L"");
    EXPECT_EQ(Attribute(family.Root(), L"SrcActive"), L"(none)");
    EXPECT_EQ(family.Table().GetFamilyColumnByID(vocabulary::kSourceMemberRevisionColumn), nullptr);
}

TEST(Links, AreRefusedWithoutATrace)
{
    TestFamily linked(Revised(kSource + L" FromSource='x'", Member(L"r1", L"s1")));
    TestFamily unrevised(L"<F InternalName='src' Library='lib'/>");
    TestFamily unparsed(L"<F");
    TestFamily family(Revised(L"", Member(L"r1", L"m1")));
    CString before;
    family->GetFamilyXML().GetXml(before);
    for (CEncapFamily* source : {&linked.family, &unrevised.family, &unparsed.family,
                                 &family.family, static_cast<CEncapFamily*>(nullptr)}) {
        family->SetLink(source, true);
        CString after;
        family->GetFamilyXML().GetXml(after);
        EXPECT_EQ(after, before);
    }
}

TEST(Links, AFailedReadLeavesTheFamilyUnlinked)
{
    // The second revision of the source is a number that its host cannot compute.
    TestFamily source(L"<F InternalName='src'><FamilyTable><Columns>"
                      L"<Column ColumnId='MEMBER_REVISION' ValueType='double' UnitType='mm'/>"
                      L"</Columns><Rows>" +
                      Member(L"r1", L"1") + Member(L"r2", L"1/0") + L"</Rows></FamilyTable></F>");
    TestFamily family(Revised(L"", Member(L"r1", L"m1") + Member(L"r2", L"m2")));
    family->SetLink(&source.family, true);
    EXPECT_FALSE(family->IsLinked());
    EXPECT_EQ(Attribute(family.Root(), L"SourceMoniker"), L"(none)");
}

CString Parameter(const CString& id)
{
    return L"<CategoryParameter InternalName='" + id + L"' ValueLocalized='true'/>";
}

CString Supplied(const CString& column, const CString& id)
{
    return L"<ParamToColumn TableColumn='" + column +
           L"'><CategoryParameterRef CategoryParameter='" + id + L"'/></ParamToColumn>";
}

TEST(HiddenCategories, AreRemovedWithWhatOnlyTheyNeed)
{
    const CString kept = L"<Category InternalName='23B78D0F-2648-40C6-8793-CA6DB495C9E8' "
                         L"Hidden='true'>" +
                         Parameter(L"kept") + L"</Category>";
    TestFamily family(
        L"<F><Categories>" + kept + L"<Category Hidden='true'>" + Parameter(L"nameless") +
        L"</Category><Category InternalName='seen' Hidden='false'>" + Parameter(L"seen") +
        L"</Category><Category InternalName='gone' Hidden='true'>" + Parameter(L"constant") +
        Parameter(L"unneeded") + Parameter(L"visible") + Parameter(L"referenced") +
        Parameter(L"rid") + L"<CategoryParameter/>" + Parameter(L"unmapped") + L"<Category>" +
        Parameter(L"nested") +
        L"</Category></Category></Categories>"
        L"<FamilyTable><Columns><Column ColumnId='A' Hidden='true'/>"
        L"<Column ColumnId='B' Hidden='false' ColumnwideValue='{C}'/>"
        L"<Column ColumnId='C' Hidden='true'/><Column ColumnId='Rid' Hidden='true'/>"
        L"<Column ColumnId='E' Hidden='false'/></Columns>"
        L"</FamilyTable><ParameterMap><FamilyParametersMap><ParamsToTemplate>"
        L"<ParamTemplateValue ConstantValue='1'>"
        L"<CategoryParameterRef CategoryParameter='constant'/></ParamTemplateValue>"
        L"</ParamsToTemplate></FamilyParametersMap><MemberParametersMap><ParamsToColumn>" +
        Supplied(L"A", L"unneeded") + Supplied(L"B", L"visible") + Supplied(L"C", L"referenced") +
        Supplied(L"Rid", L"rid") + Supplied(L"B", L"seen") + Supplied(L"E", L"nested") +
        L"</ParamsToColumn></MemberParametersMap></ParameterMap></F>");
    ASSERT_TRUE(family->IsCatParamLocalized(L"unneeded"));
    ASSERT_NE(family->GetCategoryParamColumn(L"constant"), nullptr);
    ASSERT_NE(family->GetCategoryParamColumn(L"visible"), nullptr);
    ASSERT_TRUE(family->IsFamilyColumnLocalized(L"E"));

    family->SetInternalName(L"renamed");

    EXPECT_EQ(Attribute(family.Root(), L"InternalName"), L"renamed");
    EXPECT_EQ(CountOf(family.Root(), L"Categories/Category"), 3U);
    EXPECT_EQ(CountOf(family.Root(), L"Categories/Category[@InternalName='gone']"), 0U);
    EXPECT_EQ(family.Table().GetAllColumnIDs(), (std::vector<CString>{L"B", L"C", L"Rid", L"E"}));
    EXPECT_EQ(CountOf(family.Root(), L"//ParamToColumn"), 2U);
    EXPECT_EQ(CountOf(family.Root(), L"//ParamToColumn[@TableColumn='B']"), 1U);
    EXPECT_EQ(CountOf(family.Root(), L"//CategoryParameterRef[@CategoryParameter='constant']"), 0U);
    for (const wchar_t* id : {L"constant", L"visible", L"unneeded"}) {
        EXPECT_EQ(family->GetCategoryParamColumn(id), nullptr);
        EXPECT_FALSE(family->IsCatParamLocalized(id));
    }
    EXPECT_FALSE(family->IsFamilyColumnLocalized(L"E"));
    for (const wchar_t* id : {L"kept", L"nameless", L"seen"}) {
        EXPECT_TRUE(family->IsCatParamLocalized(id));
    }
}

} // namespace
