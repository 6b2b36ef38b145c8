#include "encap/encap.h"
#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/platform/Files.h"
#include "tests/platform/TemporaryFolder.h"

#include <array>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr std::size_t kThreads = 8;
constexpr int kRounds = 2;

CString FileText(const std::string& path)
{
    XMLParser document;
    const CString wide(path.begin(), path.end());
    EXPECT_TRUE(document.LoadXmlDocument(wide.c_str())) << path;
    CString text;
    document.GetXml(text);
    return text;
}

/// The texts of one family of the sample library.
struct Sample {
    CString family;
    std::vector<CString> strings;
};

Sample LoadSample(const std::string& folder, const std::string& name)
{
    const std::string base = std::string(ENCAP_SAMPLES "/families/") + folder + "/" + name + "/";
    return {FileText(base + name + ".xml"),
            {FileText(base + "FamilyStrings.en.xml"), FileText(base + "FamilyStrings.de.xml")}};
}

std::vector<Sample> Samples()
{
    const std::array<std::array<const char*, 2>, kThreads> names{{
        {"bearings", "iso-15-deep-groove"},
        {"bearings", "iso-355-tapered-roller"},
        {"chains", "iso-606-chain-b"},
        {"flanges", "en-1092-1-type-01-pn6"},
        {"gears", "iso-53-rack"},
        {"nuts", "iso-4032"},
        {"pipes", "astm-b88"},
        {"washers", "iso-7089"},
    }};
    std::vector<Sample> samples;
    for (const auto& [folder, name] : names) {
        samples.push_back(LoadSample(folder, name));
    }
    return samples;
}

void AppendValues(CEncapFamilyTable& table, CString& said)
{
    const std::vector<CString> rows = table.GetAllRowIDs();
    const std::vector<CString> columns = table.GetAllColumnIDs();
    for (std::size_t row = 0; row < rows.size() && row < 8; ++row) {
        for (const CString& column : columns) {
            for (const wchar_t* language : {L"en", L"de"}) {
                CString value;
                const int result =
                    table.GetValue(rows[row].c_str(), column.c_str(), language, value);
                said += value + L"#" + std::to_wstring(result) + L" ";
            }
        }
    }
}

void Edit(CEncapFamily& family)
{
    CEncapFamilyTable& table = *family.GetEncapFamilyTable();
    table.InsertNewRow(0, L"new");
    table.InsertNewColumn(0, L"LENGTHS");
    CEncapFamilyColumn* column = table.GetFamilyColumnByID(L"LENGTHS");
    column->SetDataType(DataTypes::ColumnDataTypeReal);
    column->SetUnitType(L"in");
    column->SetFormula(L"2*3mm+1ft", L"en");
    table.DuplicateColumn(1, L"LENGTHS", L"AGAIN");
    table.SetValue(L"new", L"AGAIN", L"{LENGTHS}*2", true);
    table.ClearCachedValue(L"new", L"AGAIN");
    column->SetTitle(L"L\u00E4ngen", L"de");
    family.SetDisplayName(L"edited");
    int index = 2;
    table.ChangeRowIndex(L"new", index);
    table.DeleteRow(0);
}

/// What one host does with one family, from its text to a saved file, as one text. Identifiers that
/// the library draws at random stay out of it.
CString UseFamily(const Sample& sample, const CString& file)
{
    CStandaloneEvaluatorProvider provider;
    CString said;
    CString saved;
    {
        CEncapFamily family(sample.family.c_str(), sample.strings, L"", &provider, false);
        AppendValues(*family.GetEncapFamilyTable(), said);
        CComBSTR xml;
        family.GetEncapFamilyTable()->GetEvaluatedXml(xml);
        said += xml;
        Edit(family);
        family.GetFamilyXML().SaveXmlDocument(file.c_str(), false);
    }
    XMLParser document;
    document.LoadXmlDocument(file.c_str());
    document.GetXml(saved);
    CEncapFamily reopened(saved.c_str(), sample.strings, L"", &provider, true);
    CEncapFamilyTable& table = *reopened.GetEncapFamilyTable();
    CString value;
    table.GetValue(L"new", L"AGAIN", value);
    said += value;
    CTableEvaluator::EvaluateResult result = CTableEvaluator::EvaluateOK;
    table.HasColumnUniqueValues(table.GetFamilyColumnIDByIndex(3).c_str(), result);
    XMLNode node;
    document.GetRootNode().GetChildNode(L"//Column[ms:string-compare(@ColumnId,'again','','i')=0]",
                                        node);
    return said + (node.IsNode() ? L"+" : L"-");
}

} // namespace

TEST(FamilyThreads, FamiliesOnEightThreadsAreWhatTheyAreOnOne)
{
    const std::vector<Sample> samples = Samples();
    const TemporaryFolder folder;
    std::vector<CString> files;
    std::vector<CString> alone;
    for (std::size_t i = 0; i < kThreads; ++i) {
        files.push_back(folder.File(std::to_wstring(i) + L".xml"));
        alone.push_back(UseFamily(samples[i], files[i]));
        ASSERT_NE(alone.back().find(L"24.472441+"), CString::npos) << "the edits were not made";
    }
    std::vector<int> wrong(kThreads, 0);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (std::size_t i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < kRounds; ++round) {
                wrong[i] += UseFamily(samples[i], files[i]) == alone[i] ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(kThreads, 0));
}
