#include "encap/encap.h"
#include "encap/platform/Locale.h"
#include "tests/family/TestFamily.h"

using namespace encap::test;

namespace {

const wchar_t* const kSmall = L"<F InternalName='fam'><FamilyTable><Columns>"
                              L"<Column ColumnId='D' Hidden='false' ValueType='string'/>"
                              L"</Columns><Rows><Row RowId='r1'><Cell ColumnId='D'>5</Cell></Row>"
                              L"</Rows></FamilyTable></F>";

TEST(Family, ServesItsProviderWhileItLives)
{
    FakeProvider provider;
    auto first =
        std::make_unique<CEncapFamily>(kSmall, std::vector<CString>(), L"", &provider, false);
    EXPECT_EQ(provider.GetEncapFamily(), first.get());
    EXPECT_EQ(first->GetEvaluatorProvider(), &provider);
    auto second = std::make_unique<CEncapFamily>(&provider, false);
    EXPECT_EQ(provider.GetEncapFamily(), second.get());
    first.reset();
    EXPECT_EQ(provider.GetEncapFamily(), second.get());
    second.reset();
    EXPECT_EQ(provider.GetEncapFamily(), nullptr);
}

TEST(Family, OpensWithoutAProvider)
{
    CEncapFamily family(kSmall, {}, nullptr, nullptr, false);
    ASSERT_NE(family.GetEncapFamilyTable(), nullptr);
    CString value;
    EXPECT_EQ(family.GetEncapFamilyTable()->GetValue(L"r1", L"D", value), 0);
    EXPECT_EQ(value, L"5");
}

TEST(Family, SharesDocumentsThatAreParsedAlready)
{
    const XMLParser document(kSmall);
    const XMLParser declared(L"<?xml version='1.0' encoding='UTF-8'?><S xml:lang='de'/>");
    CEncapFamily family(document, {XMLParser(), declared}, nullptr, nullptr, false);
    ASSERT_NE(family.GetEncapFamilyTable(), nullptr);
    EXPECT_EQ(family.GetFamStringsCount(), 1);
    family.SetInternalName(L"set");
    CString text;
    document.GetRootNode().GetProperty(L"InternalName", text);
    EXPECT_EQ(text, L"set");
    const auto declaresUtf16 = [&text](const XMLParser& parser) {
        parser.GetXml(text);
        return text.find(L"encoding=\"UTF-16\"") != CString::npos;
    };
    EXPECT_TRUE(declaresUtf16(document));
    EXPECT_FALSE(declaresUtf16(declared));
    const CEncapFamily empty(XMLParser(), {declared}, nullptr, nullptr, false);
    EXPECT_EQ(empty.GetEncapFamilyTable(), nullptr);
}

TEST(Family, KeepsTheDecimalSeparatorOfItsMaking)
{
    FakeProvider provider;
    std::unique_ptr<CEncapFamily> localizing;
    {
        const encap::platform::ScopedUserLocale german(L',', 1031);
        localizing = std::make_unique<CEncapFamily>(&provider, true);
    }
    EXPECT_TRUE(localizing->LocalizeDecimalSeparator());
    EXPECT_EQ(localizing->GetDecimalSeparator(), L',');
    const CEncapFamily plain(&provider, false);
    EXPECT_FALSE(plain.LocalizeDecimalSeparator());
    EXPECT_EQ(plain.GetDecimalSeparator(), L'\0');
}

TEST(Family, MissingPartsStillGiveATableAndAMapping)
{
    TestFamily family(L"<F/>");
    ASSERT_NE(family->GetEncapFamilyTable(), nullptr);
    ASSERT_NE(family->GetEncapFamilyMapping(), nullptr);
    EXPECT_EQ(family.Table().GetRowsCount(), 0U);
    EXPECT_EQ(family.Table().GetColumnsCount(), 0U);
}

/// Runs every operation; an empty family must take them all.
void UseEverything(CEncapFamily& family)
{
    for (int type = -1; type <= 17; ++type) {
        CString value;
        const bool readable = type >= 0 && type <= 11;
        EXPECT_EQ(family.GetFamilyProperty(static_cast<FamilyPropType>(type), value), readable);
        EXPECT_EQ(value, L"") << type;
        const bool writable = readable && type != 9 && type != 10;
        EXPECT_EQ(family.SetFamilyProperty(static_cast<FamilyPropType>(type), L"v"), writable);
    }
    family.SetInternalName(L"v");
    family.SetHealthStatus(nullptr);
    family.SetCopyFrom(L"v");
    family.UpdateEditStatus(0xFF);
    family.SetCatParamConstValue(L"id", L"v");
    family.SetCatParamConstValue(nullptr, nullptr);
    EXPECT_EQ(family.SetTemplateParameterValue(nullptr, nullptr, nullptr), 1);
    family.SetRangeColumnValues({{L"D", L"1"}});
    family.InitializeColumnData(nullptr);
    family.RemoveAllColumnMapping(nullptr);
    family.ForgetCategoryParamColumn(nullptr);
    family.SetLink(&family, true);
    family.SetLink(nullptr, true);
    family.ClearLink();
    family.SetLocalizedCellValue(L"D", L"r1", L"v", nullptr);
    family.SetLocalizedCellValue(nullptr, nullptr, nullptr);
    family.SetLocalizedColumnPropertyValue(L"D", L"Title", L"v", L"en");
    family.SetLocalizedColumnPropertyValue(L"D", L"Title", L"v");
    family.DeleteLocalizedCellsValues(L"r1", nullptr, true);
    family.DeleteLocalizedColumnCells(nullptr, false);
    family.DeleteLocalizedColumnPropertyValues(nullptr);

    CString text = L"kept";
    EXPECT_FALSE(family.GetColumnCategory(nullptr, text));
    EXPECT_EQ(family.GetLocalizedCellValue(L"D", L"r1", text), 1);
    EXPECT_EQ(family.GetLocalizedColumnPropertyValue(L"D", L"Title", nullptr, text), 1);
    EXPECT_EQ(text, L"kept");
    EXPECT_EQ(TextOf(family, &CEncapFamily::GetActualLanguage), L"");
    EXPECT_EQ(TextOf(family, &CEncapFamily::GetHealthStatus), L"");
    EXPECT_EQ(TextOf(family, &CEncapFamily::GetSourceMoniker), L"");
    EXPECT_EQ(TextOf(family, &CEncapFamily::GetCategoryID), L"");
    EXPECT_EQ(family.GetCategoryParamColumn(L"id"), nullptr);
    EXPECT_FALSE(family.GetCatParamConstValue(L"id", text));
    EXPECT_FALSE(family.IsCatParamLocalized(nullptr));
    EXPECT_FALSE(family.IsFamilyColumnLocalized(nullptr));
    EXPECT_FALSE(family.IsFeature());
    EXPECT_FALSE(family.IsLinked());
    EXPECT_TRUE(family.IsSrcActive());
    EXPECT_FALSE(family.IsSickFamilyTable());
    EXPECT_EQ(family.GetFamStringsCount(), 0);
    XMLParser copy;
    EXPECT_FALSE(family.GetStringsFamilyXML(0, copy));
    EXPECT_FALSE(family.GetFamilyXMLCopyWithStrings(copy));
    EXPECT_FALSE(family.SaveFamilyStringsXMLs());
}

TEST(Family, AnEmptyOneTakesEveryOperationAndChangesNothing)
{
    FakeProvider provider;
    const std::vector<CString> strings = {StringsXml(L"en")};
    for (const wchar_t* xml : {L"", L"<F", L"no xml", L"<!DOCTYPE F><F/>"}) {
        CEncapFamily family(xml, strings, L"", &provider, false);
        EXPECT_EQ(family.GetEncapFamilyTable(), nullptr);
        EXPECT_EQ(family.GetEncapFamilyMapping(), nullptr);
        UseEverything(family);
        EXPECT_FALSE(family.GetFamilyXML().GetRootNode().IsNode());
    }
    CEncapFamily unopened(&provider, false);
    UseEverything(unopened);
    CEncapFamily fromNull(nullptr, strings, nullptr, &provider, false);
    UseEverything(fromNull);
}

TEST(Family, DocumentsDeclareUtf16UnlessTheTextDeclaresAnother)
{
    TestFamily plain(L"<F/>");
    TestFamily declared(L"<?xml version='1.0' encoding='UTF-8'?><F/>");
    CString text;
    ASSERT_TRUE(plain->GetFamilyXML().GetXml(text));
    EXPECT_NE(text.find(L"UTF-16"), CString::npos);
    ASSERT_TRUE(declared->GetFamilyXML().GetXml(text));
    EXPECT_NE(text.find(L"UTF-8"), CString::npos);
}

} // namespace
