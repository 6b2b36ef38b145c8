#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/platform/Files.h"
#include "encap/platform/Locale.h"
#include "encap/table/ValueCacheStore.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/support/FakeProvider.h"
#include "tests/support/FamilyBuilder.h"

#include <string>

#include <gtest/gtest.h>

using encap::ValueCacheStore;
using encap::test::CellText;
using encap::test::FakeProvider;
using encap::test::FamilyBuilder;

TEST(ValueCacheStore, KeepsValuesByRowColumnAndLanguage)
{
    ValueCacheStore store(L"");
    const uint32_t a = store.ColumnNumber(L"A");
    const uint32_t b = store.ColumnNumber(L"B");
    CValueCacheLoc& row = *store.RowCache(L"r", true);
    row.Set(store.LanguageNumber(L"en"), a, L"1");
    row.Set(store.LanguageNumber(L"en"), b, CString(40, L'\x4E2D'));
    row.Set(store.LanguageNumber(L"de"), a, L"");
    CString value = L"kept";
    EXPECT_EQ(store.Get(L"r", b, L"de", value), 1);
    EXPECT_EQ(store.Get(L"R", a, L"en", value), 1) << "exact";
    EXPECT_EQ(value, L"kept");
    EXPECT_EQ(store.Get(L"r", a, L"de", value), 0) << "an empty value is a value";
    EXPECT_EQ(store.Get(L"r", b, L"en", value), 0);
    EXPECT_EQ(value, CString(40, L'\x4E2D'));
    store.RemoveAllLanguages(L"r", a);
    EXPECT_EQ(store.Get(L"r", a, L"en", value), 1);
    store.ForgetRow(L"r");
    EXPECT_EQ(store.Get(L"r", b, L"en", value), 1);
    EXPECT_EQ(store.RowCache(L"r", false), nullptr);
}

TEST(ValueCacheStore, RowCachesFollowTheInterface)
{
    ValueCacheStore store(L"");
    CValueCacheSimple simple(store);
    CValueCacheLoc localized(store);
    for (CValueCache* cache :
         {static_cast<CValueCache*>(&simple), static_cast<CValueCache*>(&localized)}) {
        CString value;
        cache->Set(L"A", L"en", L"1");
        cache->Set(L"B", L"en", L"2");
        EXPECT_EQ(cache->Get(L"A", L"en", value), 0);
        EXPECT_EQ(value, L"1");
        EXPECT_EQ(cache->Get(L"A", L"de", value), cache == &simple ? 0 : 1);
        cache->Remove(L"A");
        EXPECT_EQ(cache->Get(L"A", L"en", value), 1);
        cache->Remove(L"B", L"en");
        EXPECT_EQ(cache->Get(L"B", L"en", value), 1);
        cache->Set(L"B", L"en", L"3");
        cache->Clear();
        EXPECT_EQ(cache->Get(L"B", L"en", value), 1);
    }
}

namespace {

/// A folder for the cache file of a family whose host says how often it was asked.
class CacheFile : public ::testing::Test {
protected:
    CacheFile() : locale(L'.', 4711), path(folder.File(L"TableCache_4711.dat"))
    {
        builder.Column({L"W", L"double", L"mm"})
            .Column({L"X", L"double", L"mm", L"{W}*2"})
            .Column({L"T", L"string", L"", L"caf\x00E9 \x4E2D & {W}"})
            .Row(L"r", {{L"W", L"3"}})
            .Row(L"s", {{L"W", L"4"}});
        provider.expressions = {{L"3mm*2", {0, 6.0}}, {L"4mm*2", {0, 8.0}}};
    }
    std::unique_ptr<CEncapFamily> Open()
    {
        provider.calls.clear();
        return builder.Open(&provider, {L"<S xml:lang='en'/>"}, false, folder.File(L""));
    }
    void Fill()
    {
        const auto family = Open();
        for (const wchar_t* row : {L"r", L"s"}) {
            CellText(*family, row, L"X");
            CellText(*family, row, L"T");
        }
    }
    std::string Bytes() const
    {
        std::string bytes;
        EXPECT_TRUE(encap::platform::ReadWholeFile(path, bytes));
        return bytes;
    }

    encap::platform::ScopedUserLocale locale;
    TemporaryFolder folder;
    CString path;
    FamilyBuilder builder;
    FakeProvider provider;
};

} // namespace

TEST_F(CacheFile, IsReadAtTheNextOpening)
{
    Fill();
    const std::string first = Bytes();
    {
        const auto family = Open();
        EXPECT_EQ(CellText(*family, L"r", L"X"), L"6");
        EXPECT_EQ(CellText(*family, L"s", L"T"), L"caf\x00E9 \x4E2D"
                                                 L"4");
        EXPECT_TRUE(provider.calls.empty());
        encap::platform::DeleteFileIfPresent(path);
    }
    EXPECT_FALSE(encap::platform::FileExists(path)) << "nothing changed: nothing was written";
    Fill();
    EXPECT_EQ(Bytes(), first);
}

TEST_F(CacheFile, HasTheDocumentedBytes)
{
    FamilyBuilder small;
    small.Column({L"A", L"string"}).Row(L"r", {{L"A", L"v"}});
    {
        const auto family = small.Open(&provider, {L"<S xml:lang='en'/>"}, false, folder.File(L""));
        CellText(*family, L"r", L"A");
    }
    const auto text = [](const std::string& ascii) {
        std::string bytes = "\xFF\xFE\xFF";
        bytes += static_cast<char>(ascii.size());
        for (const char character : ascii) {
            bytes += character;
            bytes += '\0';
        }
        return bytes;
    };
    const auto int32 = [](char low) { return std::string{low, 0, 0, 0}; };
    const auto int16 = [](char low) { return std::string{low, 0}; };
    EXPECT_EQ(Bytes(), int32(1) + int16(1) + text("A") + int16(1) + text("en") + int32(1) +
                           text("r") + int32(1) + int16(0) + int32(1) + int16(0) + text("v"));
}

TEST_F(CacheFile, LongTextsKeepTheirLengths)
{
    for (const std::size_t length : {0U, 254U, 255U, 65533U, 65534U, 65536U}) {
        ValueCacheStore store(folder.File(L"").c_str());
        store.RowCache(L"r", true)->Set(L"A", L"en", CString(length, L'x').c_str());
        store.Save({L"A"}, [](const CString&) { return true; });
        ValueCacheStore again(folder.File(L"").c_str());
        CString value;
        EXPECT_EQ(again.Get(L"r", again.ColumnNumber(L"A"), L"en", value), 0);
        EXPECT_EQ(value.size(), length);
    }
}

TEST_F(CacheFile, ServesNoValueThatAnEditMadeWrong)
{
    builder.Row(L"own", {{L"W", L"3"}, {L"T", L"{X}"}});
    {
        const auto family = Open();
        EXPECT_EQ(CellText(*family, L"own", L"T"), L"6");
    }
    CString edited;
    {
        const auto family = Open();
        CEncapFamilyTable& table = *family->GetEncapFamilyTable();
        table.SetValue(L"own", L"W", L"4", true);
        family->SetRangeColumnValues({{L"W", L"9"}});
        EXPECT_EQ(CellText(*family, L"own", L"T"), L"8")
            << "a formula in a cell follows its column, loaded from the file or not";
        family->GetFamilyXML().GetXml(edited);
    }
    const CEncapFamily family(edited.c_str(), {L"<S xml:lang='en'/>"}, folder.File(L"").c_str(),
                              &provider, false);
    CString value;
    family.GetEncapFamilyTable()->GetValue(L"own", L"T", value);
    EXPECT_EQ(value, L"8");
}

TEST_F(CacheFile, TypedTextsAreEvaluatedAtTheNextOpening)
{
    CStandaloneEvaluatorProvider host;
    builder.Column({L"B", L"boolean"}).Row(L"kept", {{L"W", L"5"}});
    CString edited;
    {
        const auto family = builder.Open(&host, {L"<S xml:lang='en'/>"}, false, folder.File(L""));
        CEncapFamilyTable& table = *family->GetEncapFamilyTable();
        table.SetValue(L"kept", L"W", L"7", true);
        EXPECT_EQ(CellText(*family, L"kept", L"X"), L"14");
        table.SetValue(L"r", L"W", L"2,5", true);
        table.SetValue(L"s", L"W", L"2+2", true);
        table.SetValue(L"s", L"T", L"\"a \" & {W}", true);
        table.SetValue(L"s", L"B", L"on", true);
        CellText(*family, L"s", L"X");
        family->GetFamilyXML().GetXml(edited);
    }
    const auto open = [&](const CString& directory) {
        return std::make_unique<CEncapFamily>(edited.c_str(),
                                              std::vector<CString>{L"<S xml:lang='en'/>"},
                                              directory.c_str(), &host, false);
    };
    ValueCacheStore store(folder.File(L"").c_str());
    EXPECT_NE(store.RowCache(L"kept", false), nullptr) << "a plain number is its own value";
    const auto cached = open(folder.File(L""));
    const auto fresh = open(L"");
    for (const CString row : {L"r", L"s", L"kept"}) {
        for (const CString column : {L"W", L"X", L"T", L"B"}) {
            EXPECT_EQ(CellText(*cached, row, column), CellText(*fresh, row, column))
                << row << column;
        }
    }
    EXPECT_EQ(CellText(*cached, L"s", L"X"), L"8");
}

TEST_F(CacheFile, HoldsNothingUnderAnIdThatIsThereTwice)
{
    CStandaloneEvaluatorProvider host;
    builder.Column({L"w", L"double", L"mm", L"9"})
        .Column({L"B", L"boolean", L"", L"true"})
        .Row(L"R", {{L"W", L"5"}});
    {
        const auto family = builder.Open(&host, {L"<S xml:lang='en'/>"}, false, folder.File(L""));
        CComBSTR xml;
        EXPECT_TRUE(family->GetEncapFamilyTable()->GetEvaluatedXml(xml));
    }
    ValueCacheStore store(folder.File(L"").c_str());
    EXPECT_EQ(store.RowCache(L"r", false), nullptr);
    EXPECT_EQ(store.RowCache(L"R", false), nullptr);
    CString value;
    for (const wchar_t* column : {L"W", L"w", L"X", L"T"}) {
        EXPECT_EQ(store.Get(L"s", store.FindColumn(column), L"en", value), 1) << column;
    }
    EXPECT_EQ(store.Get(L"s", store.FindColumn(L"B"), L"en", value), 0);
}
