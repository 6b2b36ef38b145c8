#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/platform/Files.h"
#include "encap/platform/Locale.h"
#include "encap/xml/XMLParser.h"
#include "tests/platform/TemporaryFolder.h"
#include "tests/support/FakeProvider.h"
#include "tests/support/FamilyBuilder.h"

#include <gtest/gtest.h>

// What one platform writes the other reads: tests/data/exchange/README.md says how the files were
// made there.
namespace encap::test {
namespace {

/// The files that a platform wrote, in a folder that the test may write to.
class PlatformFiles : public testing::TestWithParam<std::pair<const char*, int32_t>> {
protected:
    PlatformFiles() : m_locale(L'.', GetParam().second)
    {
        m_cacheName = L"TableCache_" + FormatInteger(GetParam().second) + L".dat";
        for (const CString& name : {CString(L"family.xml"), CString(L"FamilyStrings.de.xml"),
                                    CString(L"FamilyStrings.en.xml"), m_cacheName}) {
            const CString source = platform::Utf8ToWide(ENCAP_TEST_DATA "/exchange/") +
                                   platform::Utf8ToWide(GetParam().first) + L"/" + name;
            std::string bytes;
            EXPECT_TRUE(platform::ReadWholeFile(source, bytes));
            EXPECT_TRUE(platform::ReplaceFileContent(m_folder.File(name), bytes));
        }
    }

    CString Text(const wchar_t* name)
    {
        XMLParser document;
        CString text;
        EXPECT_TRUE(document.LoadXmlDocument(m_folder.File(name).c_str()) && document.GetXml(text));
        return text;
    }

    std::unique_ptr<CEncapFamily> Open(IEvaluatorProvider* provider, const CString& language,
                                       const CString& cacheFolder)
    {
        const CString german = Text(L"FamilyStrings.de.xml");
        const CString english = Text(L"FamilyStrings.en.xml");
        const bool isGerman = language == L"de";
        return std::make_unique<CEncapFamily>(
            Text(L"family.xml").c_str(),
            std::vector<CString>{isGerman ? german : english, isGerman ? english : german},
            cacheFolder.c_str(), provider, false);
    }

    const platform::ScopedUserLocale m_locale;
    const TemporaryFolder m_folder;
    CString m_cacheName;
};

constexpr const wchar_t* kColumns[] = {L"D", L"L", L"V", L"M", L"NOTE", L"NAME"};
constexpr struct {
    const wchar_t* language;
    const wchar_t* row;
    const wchar_t* values[6];
} kRows[] = {
    {L"de",
     L"r1",
     {L"6.25", L"20", L"613.592", L"4.8167", L"gepr\u00FCft: 5 \u20AC",
      L"\U0001F529 \u00F86.25 \u00D7 20"}},
    {L"de",
     L"r\U0001F529",
     {L"10.5", L"30", L"2597.7", L"20.3919", L"nach Ma\u00DF \U0001F529",
      L"\U0001F529 \u00F810.5 \u00D7 30"}},
    {L"en",
     L"r1",
     {L"6.25", L"20", L"613.592", L"4.8167", L"tested", L"\U0001F529 \u00F86.25 \u00D7 20"}},
    {L"en",
     L"r\U0001F529",
     {L"10.5", L"30", L"2597.7", L"20.3919", L"made to order \U0001F529",
      L"\U0001F529 \u00F810.5 \u00D7 30"}},
};

void ExpectValues(CEncapFamily& family, const CString& language)
{
    for (const auto& row : kRows) {
        for (std::size_t i = 0; language == row.language && i < std::size(kColumns); ++i) {
            EXPECT_EQ(platform::WideToUtf8(CellText(family, row.row, kColumns[i])),
                      platform::WideToUtf8(row.values[i]));
        }
    }
}

TEST_P(PlatformFiles, DocumentsGiveTheSameValues)
{
    for (const wchar_t* language : {L"de", L"en"}) {
        CStandaloneEvaluatorProvider provider;
        const auto family = Open(&provider, language, L"");
        ExpectValues(*family, language);
        CString manufacturer;
        family->GetManufacturer(manufacturer);
        EXPECT_EQ(manufacturer, L"M\u00FCller & S\u00F6hne \u87BA\u6BCD \U0001F529");
    }
}

TEST_P(PlatformFiles, TheValueCacheAnswersForTheHost)
{
    for (const wchar_t* language : {L"de", L"en"}) {
        FakeProvider provider;
        const auto family = Open(&provider, language, m_folder.File(L""));
        ExpectValues(*family, language);
        EXPECT_TRUE(provider.calls.empty());
    }
}

INSTANTIATE_TEST_SUITE_P(Exchange, PlatformFiles,
                         testing::Values(std::pair("linux", 127), std::pair("windows", 1033)),
                         [](const auto& instance) { return instance.param.first; });

} // namespace
} // namespace encap::test
