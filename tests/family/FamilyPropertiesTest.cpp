#include "encap/family/Queries.h"
#include "encap/family/Vocabulary.h"
#include "encap/foundation/TextFormat.h"
#include "encap/xml/QueryLiteral.h"
#include "tests/family/TestFamily.h"

#include <climits>

using namespace encap;
using namespace encap::test;

namespace {

const wchar_t* const kRevised =
    L"<F><FamilyTable><Columns><Column ColumnId='MEMBER_REVISION'/></Columns><Rows>"
    L"<Row RowId='r1'><Cell ColumnId='MEMBER_REVISION'>old</Cell></Row>"
    L"<Row RowId='r2'><Cell ColumnId='MEMBER_REVISION'>old</Cell></Row>"
    L"</Rows></FamilyTable></F>";

struct PropertyCase {
    int32_t type;
    const wchar_t* attribute; ///< null: none is written
    const wchar_t* parameter; ///< null: no constant value is written
    const wchar_t* element;   ///< null: no element of the strings documents is written
    bool changesMembers;
};

const PropertyCase kCases[] = {
    {0, L"DisplayName", vocabulary::kDisplayNameParameter, L"DisplayName", true},
    {1, L"Description", vocabulary::kDescriptionParameter, L"Description", true},
    {2, L"Standard", vocabulary::kStandardParameter, nullptr, true},
    {3, L"StandardsOrg", vocabulary::kStandardsOrgParameter, nullptr, true},
    {4, L"Manufacturer", vocabulary::kManufacturerParameter, nullptr, true},
    {5, nullptr, vocabulary::kStandardRevisionParameter, nullptr, true},
    {6, nullptr, vocabulary::kFamilyRevisionParameter, nullptr, false},
    {7, L"FolderName", vocabulary::kFolderNameParameter, nullptr, true},
    {8, L"RevisionId", nullptr, nullptr, false},
};

CString ConstantOf(const XMLNode& root, const wchar_t* parameter)
{
    const CString query = CString(L"ParameterMap/FamilyParametersMap/ParamsToTemplate/"
                                  L"ParamTemplateValue[CategoryParameterRef/@CategoryParameter=") +
                          QueryLiteral(parameter) + L"]";
    XMLNode entry;
    return root.GetChildNode(query.c_str(), entry) ? Attribute(entry, L"ConstantValue") : L"(none)";
}

TEST(FamilyProperties, AreWrittenToEveryPlaceThatHoldsThem)
{
    for (const PropertyCase& c : kCases) {
        SCOPED_TRACE(c.type);
        TestFamily family(kRevised, {StringsXml(L"en"), StringsXml(L"de")});
        const auto type = static_cast<FamilyPropType>(c.type);
        ASSERT_TRUE(family->SetFamilyProperty(type, L"a \"b\" & 'c'"));
        CString value;
        EXPECT_TRUE(family->GetFamilyProperty(type, value));
        EXPECT_EQ(value, L"a \"b\" & 'c'");
        if (c.attribute != nullptr) {
            EXPECT_EQ(Attribute(family.Root(), c.attribute), value);
        }
        if (c.parameter != nullptr) {
            EXPECT_EQ(ConstantOf(family.Root(), c.parameter), value);
        }
        EXPECT_EQ(CountOf(family.Root(), L"ParameterMap"), c.parameter != nullptr ? 1U : 0U);
        for (int language = 0; language < 2; ++language) {
            EXPECT_EQ(family.Strings(language).GetChildCount(), c.element != nullptr ? 1 : 0);
            if (c.element != nullptr) {
                EXPECT_EQ(TextAt(family.Strings(language), c.element), value);
            }
        }
        const CString revision = family.Cell(L"r1", L"MEMBER_REVISION");
        EXPECT_EQ(revision != L"old", c.changesMembers);
        EXPECT_EQ(family.Cell(L"r2", L"MEMBER_REVISION"), revision);
    }
}

TEST(FamilyProperties, SingleSettersLeaveTheRevisions)
{
    TestFamily family(kRevised);
    family->SetDisplayName(L"x");
    family->SetFolderName(L"x");
    EXPECT_EQ(family.Cell(L"r1", L"MEMBER_REVISION"), L"old");
}

TEST(FamilyProperties, NamesFallBackFromStringsToConstantToAttribute)
{
    const CString constants =
        CString(L"<ParameterMap><FamilyParametersMap><ParamsToTemplate>"
                L"<ParamTemplateValue ConstantValue='constant'>"
                L"<CategoryParameterRef CategoryParameter='") +
        vocabulary::kDescriptionParameter.wide +
        L"'/></ParamTemplateValue></ParamsToTemplate></FamilyParametersMap></ParameterMap>";
    const CString german = StringsXml(L"de", L"<Description/>");
    TestFamily all(L"<F Description='attribute'>" + constants + L"</F>",
                   {StringsXml(L"en", L"<Description>text</Description>"), german});
    TestFamily emptyText(L"<F Description='attribute'>" + constants + L"</F>", {german});
    TestFamily bare(L"<F Description='attribute'/>");
    EXPECT_EQ(TextOf(all.family, &CEncapFamily::GetDescription), L"text");
    EXPECT_EQ(TextOf(emptyText.family, &CEncapFamily::GetDescription), L"constant");
    EXPECT_EQ(TextOf(bare.family, &CEncapFamily::GetDescription), L"attribute");
    EXPECT_EQ(TextOf(bare.family, &CEncapFamily::GetDisplayName), L"");
}

TEST(FamilyProperties, ThumbnailPathIsAnEdit)
{
    TestFamily family(L"<F EditStatus='8'/>");
    ASSERT_TRUE(family->SetFamilyProperty(FamilyPropThumbnailPath, L"a.png"));
    family->SetThumbnailPath(L"b.png");
    EXPECT_EQ(CountOf(family.Root(), L"Thumbnail/File[@FullFileName='b.png']"), 1U);
    EXPECT_EQ(CountOf(family.Root(), L"Thumbnail"), 1U);
    EXPECT_EQ(TextOf(family.family, &CEncapFamily::GetThumbnailPath), L"b.png");
    EXPECT_EQ(Attribute(family.Root(), L"EditStatus"), L"9");
}

TEST(FamilyProperties, EditStatusCollectsBits)
{
    const struct {
        const wchar_t* stored;
        unsigned long bits;
        const wchar_t* expected;
    } cases[] = {
        {L"3", 0x10, L"13"},
        {L"1A", 0x4, L"1E"},
        {L"1a", 0, L"1A"},
        {L"", 0xAB, L"AB"},
        {L"zz", 1, L"1"},
        {L"2 1", 1, L"3"},
        {L"123456789", 0, L"FFFFFFFF"},
        {L"F0000000", 1, L"F0000001"},
        {L"0", ULONG_MAX, L"FFFFFFFF"},
    };
    for (const auto& c : cases) {
        TestFamily family(CString(L"<F EditStatus='") + c.stored + L"'/>");
        family->UpdateEditStatus(c.bits);
        EXPECT_EQ(TextOf(family.family, static_cast<void (CEncapFamily::*)(CString&) const>(
                                            &CEncapFamily::GetEditStatus)),
                  c.expected);
        unsigned long bits = 0;
        family->GetEditStatus(bits);
        EXPECT_EQ(FormatText(L"%X", {static_cast<int32_t>(static_cast<uint32_t>(bits))}),
                  c.expected);
    }
}

TEST(FamilyProperties, HealthStatusBitTwoIsSick)
{
    const struct {
        const wchar_t* status;
        bool sick;
    } cases[] = {{L"", false}, {L"2", true},     {L"1", false}, {L"FFFD", false},
                 {L"a", true}, {L"sick", false}, {L"6x", true}};
    TestFamily family(L"<F/>");
    EXPECT_FALSE(family->IsSickFamilyTable());
    for (const auto& c : cases) {
        family->SetHealthStatus(c.status);
        EXPECT_EQ(family->IsSickFamilyTable(), c.sick);
    }
}

TEST(FamilyProperties, CategoryIsTheDeepestFirstOfTheFirstVisibleOne)
{
    const struct {
        const wchar_t* categories;
        const wchar_t* expected;
    } cases[] = {
        {L"", L""},
        {L"<Category InternalName='a' Hidden='true'/><Category InternalName='b'/>", L""},
        {L"<Category InternalName='a' Hidden='true'/><Category InternalName='b' Hidden='false'/>",
         L"b"},
        {L"<Category InternalName='a' Hidden='false'><CategoryParameter/>"
         L"<Category InternalName='b'><Category InternalName='c' Hidden='true'/></Category>"
         L"<Category InternalName='d'/></Category>",
         L"c"},
    };
    for (const auto& c : cases) {
        TestFamily family(CString(L"<F><Categories>") + c.categories + L"</Categories></F>");
        EXPECT_EQ(TextOf(family.family, &CEncapFamily::GetCategoryID), c.expected);
    }
}

TEST(FamilyProperties, FeatureAndLinkMarks)
{
    CString upper = vocabulary::kFeatureFamily.wide;
    for (wchar_t& character : upper) {
        character = character >= L'a' && character <= L'f' ? character - L'a' + L'A' : character;
    }
    TestFamily feature(CString(L"<F DataTypeCategory='") + vocabulary::kFeatureFamily.wide +
                       L"' SrcActive='FALSE' FromSource=''/>");
    TestFamily part(CString(L"<F DataTypeCategory='") + upper + L"' SrcActive='no'/>");
    EXPECT_TRUE(feature->IsFeature());
    EXPECT_FALSE(part->IsFeature());
    EXPECT_TRUE(feature->IsLinked());
    EXPECT_FALSE(part->IsLinked());
    EXPECT_FALSE(feature->IsSrcActive());
    EXPECT_TRUE(part->IsSrcActive());
}

} // namespace
