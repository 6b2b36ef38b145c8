#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"
#include "tests/family/TestFamily.h"

#include <filesystem>

using namespace encap;
using namespace encap::test;

namespace {

const wchar_t* const kTable =
    L"<F><FamilyTable><Columns><Column ColumnId='T' Hidden='false' ValueType='string'/>"
    L"<Column ColumnId='U' Hidden='false' ValueType='String'/>"
    L"<Column ColumnId='N' Hidden='false' ValueType='double'/></Columns></FamilyTable></F>";

CString Column(const CString& id, const CString& body)
{
    return L"<ColumnStrings ColumnId='" + id + L"'>" + body + L"</ColumnStrings>";
}

CString Cells(const CString& body)
{
    return L"<Rows>" + body + L"</Rows>";
}

/// What the language has for a cell, or "(none)"; null: the actual language.
CString LocalCell(TestFamily& family, const wchar_t* column, const wchar_t* row,
                  const wchar_t* language)
{
    CString value = L"(none)";
    const long result = language != nullptr
                            ? family->GetLocalizedCellValue(column, row, language, value)
                            : family->GetLocalizedCellValue(column, row, value);
    EXPECT_EQ(result, value == L"(none)" ? 1 : 0);
    return value;
}

CString LocalText(TestFamily& family, const wchar_t* column, const wchar_t* property,
                  const wchar_t* language)
{
    CString value = L"(none)";
    const long result =
        language != nullptr
            ? family->GetLocalizedColumnPropertyValue(column, property, language, value)
            : family->GetLocalizedColumnPropertyValue(column, property, value);
    EXPECT_EQ(result, value == L"(none)" ? 1 : 0);
    return value;
}

TEST(Languages, AreListedInTheOrderOfTheTexts)
{
    TestFamily family(kTable, {StringsXml(L"B", L"<First/>"), L"<broken", StringsXml(L"A"),
                               L"<Strings/>", StringsXml(L"B", L"<Second/>")});
    EXPECT_EQ(TextOf(family.family, &CEncapFamily::GetActualLanguage), L"B");
    EXPECT_EQ(family->GetFamStringsCount(), 4);
    XMLParser document;
    EXPECT_FALSE(family->GetStringsFamilyXML(-1, document));
    EXPECT_FALSE(family->GetStringsFamilyXML(4, document));
    EXPECT_EQ(Attribute(family.Strings(1), L"xml:lang"), L"A");
    EXPECT_EQ(Attribute(family.Strings(2), L"xml:lang"), L"(none)");
    for (const int index : {0, 3}) {
        EXPECT_EQ(CountOf(family.Strings(index), L"Second"), 1U);
    }
}

TEST(Languages, CellTextsOfLocalizedColumnsOnly)
{
    TestFamily family(kTable, {StringsXml(L"de"), StringsXml(L"en")});
    family->SetLocalizedCellValue(L"T", L"r1", L"Stahl & <Holz>");
    family->SetLocalizedCellValue(L"T", L"r1", L"steel", L"en");
    family->SetLocalizedCellValue(L"T", L"r2", L"never", L"fr");
    family->SetLocalizedCellValue(L"N", L"r1", L"5");
    family->SetLocalizedCellValue(L"t", L"r1", L"no such column");
    EXPECT_EQ(LocalCell(family, L"T", L"r1", nullptr), L"Stahl & <Holz>");
    EXPECT_EQ(LocalCell(family, L"T", L"r1", L"en"), L"steel");
    EXPECT_EQ(LocalCell(family, L"T", L"r1", L"EN"), L"(none)");
    EXPECT_EQ(LocalCell(family, L"T", L"r2", L"fr"), L"(none)");
    EXPECT_EQ(LocalCell(family, L"N", L"r1", nullptr), L"(none)");
    EXPECT_EQ(LocalCell(family, L"t", L"r1", nullptr), L"(none)");

    family->SetLocalizedCellValue(L"T", L"r1", L"");
    EXPECT_EQ(LocalCell(family, L"T", L"r1", nullptr), L"(none)");
    EXPECT_EQ(CountOf(family.Strings(0), L"//CellString"), 0U);
    EXPECT_EQ(LocalCell(family, L"T", L"r1", L"en"), L"steel");
    family->SetLocalizedCellValue(L"T", L"r1", L"again");
    EXPECT_EQ(CountOf(family.Strings(0), L"Table/ColumnStrings[@ColumnId='T']/Rows/CellString"
                                         L"[@RowId='r1' and .='again']"),
              1U);
}

TEST(Languages, AnEmptyCellTextFromADocumentCounts)
{
    TestFamily family(
        kTable, {StringsXml(L"de", L"<Table>" + Column(L"T", Cells(L"<CellString RowId='r1'/>")) +
                                       L"</Table>")});
    EXPECT_EQ(LocalCell(family, L"T", L"r1", nullptr), L"");
}

TEST(Languages, ColumnTextsGoToEveryLanguageUnlessOneIsNamed)
{
    TestFamily family(kTable, {StringsXml(L"de"), StringsXml(L"en")});
    family->SetLocalizedColumnPropertyValue(L"N", L"Title", L"all");
    family->SetLocalizedColumnPropertyValue(L"N", L"Title", L"one", L"en");
    family->SetLocalizedColumnPropertyValue(L"N", L"ColumnwideValue", L"wide");
    family->SetLocalizedColumnPropertyValue(L"N", L"1 bad[@name]", L"x");
    EXPECT_EQ(LocalText(family, L"N", L"Title", nullptr), L"all");
    EXPECT_EQ(LocalText(family, L"N", L"Title", L"en"), L"one");
    EXPECT_EQ(LocalText(family, L"N", L"", L"en"), L"(none)");
    family->SetLocalizedColumnPropertyValue(L"N", L"Title", L"", L"de");
    EXPECT_EQ(LocalText(family, L"N", L"Title", L"de"), L"(none)");
    EXPECT_EQ(LocalText(family, L"N", L"ColumnwideValue", L"de"), L"wide");

    family->DeleteLocalizedColumnPropertyValues(L"N");
    for (int language = 0; language < 2; ++language) {
        XMLNode column;
        ASSERT_TRUE(family.Strings(language).GetChildNode(L"Table/ColumnStrings", column));
        EXPECT_EQ(column.GetChildCount(), 0);
    }
}

TEST(Languages, DeletingCellTexts)
{
    const CString body =
        L"<Table>" +
        Column(L"T", Cells(L"<CellString RowId='r1'>1</CellString>"
                           L"<CellString RowId='r2'>2</CellString>"
                           L"<CellString RowId='r1'>twice</CellString>")) +
        Column(L"U", L"<Title>kept</Title>" + Cells(L"<CellString RowId='r1'>3</CellString>")) +
        L"</Table>";
    const struct {
        const wchar_t* row; ///< null: the whole column
        const wchar_t* column;
        bool allLanguages;
        std::size_t leftInFirst;
        std::size_t leftInSecond;
    } cases[] = {
        {L"r1", L"T", false, 2, 4},   {L"r1", L"T", true, 2, 2},   {L"r1", L"", false, 1, 4},
        {L"r1", nullptr, true, 1, 1}, {L"r3", L"", true, 4, 4},    {L"r1", L"X", true, 4, 4},
        {nullptr, L"T", false, 1, 4}, {nullptr, L"T", true, 1, 1}, {nullptr, L"X", true, 4, 4},
    };
    for (const bool indexed : {false, true}) {
        for (const auto& c : cases) {
            TestFamily family(kTable, {StringsXml(L"de", body), StringsXml(L"en", body)});
            if (indexed) {
                EXPECT_EQ(LocalCell(family, L"T", L"r1", L"de"), L"1");
                EXPECT_EQ(LocalCell(family, L"T", L"r1", L"en"), L"1");
            }
            if (c.row != nullptr) {
                family->DeleteLocalizedCellsValues(c.row, c.column, c.allLanguages);
            } else {
                family->DeleteLocalizedColumnCells(c.column, c.allLanguages);
            }
            EXPECT_EQ(CountOf(family.Strings(0), L"//CellString"), c.leftInFirst);
            EXPECT_EQ(CountOf(family.Strings(1), L"//CellString"), c.leftInSecond);
            EXPECT_EQ(LocalText(family, L"U", L"Title", nullptr), L"kept");
        }
    }
}

TEST(Languages, CopyCarriesTheStringsInPlaceOfTheReferences)
{
    TestFamily family(L"<F><FamilyStrings><FamilyStrings/><File FullFileName='/x/a.xml'/>"
                      L"</FamilyStrings><Inner><FamilyStrings/></Inner></F>",
                      {StringsXml(L"en", L"<DisplayName>Bolt</DisplayName>"),
                       StringsXml(L"de", L"<DisplayName>Bolzen</DisplayName>")});
    XMLParser copy;
    ASSERT_TRUE(family->GetFamilyXMLCopyWithStrings(copy));
    const XMLNode root = copy.GetRootNode();
    EXPECT_EQ(CountOf(root, L"//FamilyStrings"), 0U);
    EXPECT_EQ(TextAt(root, L"*[2][@xml:lang='de']/DisplayName"), L"Bolzen");
    EXPECT_EQ(TextAt(root, L"*[3][@xml:lang='en']/DisplayName"), L"Bolt");
    EXPECT_EQ(CountOf(family.Root(), L"//FamilyStrings"), 3U);
}

/// A new directory below the temporary one, removed with the object.
class Folder {
public:
    Folder()
        : m_path(std::filesystem::temp_directory_path() /
                 ("encap_family_" + std::to_string(reinterpret_cast<uintptr_t>(this))))
    {
        std::filesystem::create_directories(m_path);
    }
    ~Folder() { std::filesystem::remove_all(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    [[nodiscard]] CString Path() const { return m_path.wstring(); }
    [[nodiscard]] std::vector<std::string> Files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_path)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::filesystem::path m_path;
};

CString Referencing(const CString& file)
{
    return L"<F><FamilyStrings><File FullFileName='" + file + L"'/></FamilyStrings></F>";
}

TEST(SavingStrings, WritesEachLanguageBesideTheFirstReference)
{
    const Folder folder;
    for (const wchar_t* separator : {L"/", L"\\"}) {
        TestFamily family(Referencing(folder.Path() + separator + L"whatever.xml"),
                          {StringsXml(L"en"),
                           StringsXml(L"de", L"<DisplayName>\x00FC</DisplayName>"),
                           StringsXml(L"../../x:y"),
                           L"<?xml version='1.0' encoding='UTF-8'?><S xml:lang='fr'>\x00E9</S>"});
        EXPECT_TRUE(family->SaveFamilyStringsXMLs());
    }
    EXPECT_EQ(folder.Files(),
              (std::vector<std::string>{"FamilyStrings..._.._x_y.xml", "FamilyStrings.de.xml",
                                        "FamilyStrings.en.xml", "FamilyStrings.fr.xml"}));
    std::string bytes;
    ASSERT_TRUE(platform::ReadWholeFile(folder.Path() + L"/FamilyStrings.de.xml", bytes));
    EXPECT_EQ(bytes.substr(0, 4), std::string("\xFF\xFE<\0", 4));
    ASSERT_TRUE(platform::ReadWholeFile(folder.Path() + L"/FamilyStrings.fr.xml", bytes));
    EXPECT_NE(bytes.find("\xC3\xA9"), std::string::npos);
    XMLParser read;
    ASSERT_TRUE(read.LoadXmlDocument((folder.Path() + L"/FamilyStrings.de.xml").c_str()));
    EXPECT_EQ(TextAt(read.GetRootNode(), L"DisplayName"), L"\x00FC");
}

TEST(SavingStrings, FailsWithoutAFolderToWriteTo)
{
    const std::vector<CString> strings = {StringsXml(L"en")};
    for (const CString& xml :
         {CString(L"<F/>"), CString(L"<F><FamilyStrings><File/></FamilyStrings></F>"),
          Referencing(L"no_separator.xml"), Referencing(L"/no such folder/x.xml"),
          Referencing(L"")}) {
        TestFamily family(xml, strings);
        EXPECT_FALSE(family->SaveFamilyStringsXMLs());
    }
    EXPECT_FALSE(platform::FileExists(L"FamilyStrings.en.xml"));
    const Folder folder;
    TestFamily none(Referencing(folder.Path() + L"/a.xml"));
    EXPECT_TRUE(none->SaveFamilyStringsXMLs());
}

TEST(SavingStrings, AFailedWriteLeavesTheOldFile)
{
    const Folder folder;
    TestFamily family(Referencing(folder.Path() + L"/a.xml"), {StringsXml(L"en")});
    ASSERT_TRUE(family->SaveFamilyStringsXMLs());
    std::string before;
    ASSERT_TRUE(platform::ReadWholeFile(folder.Path() + L"/FamilyStrings.en.xml", before));
    family->SetDisplayName(L"new");
    platform::FailReplaceStep(1);
    EXPECT_FALSE(family->SaveFamilyStringsXMLs());
    platform::FailReplaceStep(0);
    std::string after;
    ASSERT_TRUE(platform::ReadWholeFile(folder.Path() + L"/FamilyStrings.en.xml", after));
    EXPECT_EQ(after, before);
    EXPECT_EQ(folder.Files().size(), 1U);
}

} // namespace
