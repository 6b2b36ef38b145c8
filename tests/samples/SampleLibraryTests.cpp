#include "encap/family/Family.h"
#include "encap/host/StandaloneEvaluatorProvider.h"
#include "encap/platform/Encoding.h"
#include "encap/platform/Files.h"
#include "encap/table/FamilyTable.h"
#include "encap/xml/XMLParser.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>

#include <gtest/gtest.h>

using encap::platform::Utf8ToWide;

namespace {

const std::filesystem::path kSamples = ENCAP_SAMPLES;

CString FileText(const std::filesystem::path& path)
{
    XMLParser file;
    CString text;
    EXPECT_TRUE(file.LoadXmlDocument(Utf8ToWide(path.string()).c_str())) << path;
    EXPECT_TRUE(file.GetXml(text));
    return text;
}

/// A sample family with its strings documents.
struct SampleFamily {
    explicit SampleFamily(const std::filesystem::path& path)
    {
        std::string materials;
        EXPECT_TRUE(encap::platform::ReadWholeFile(
            Utf8ToWide((kSamples / "materials.csv").string()), materials));
        EXPECT_TRUE(provider.LoadMaterials(Utf8ToWide(materials)));
        std::vector<CString> strings;
        for (const char* language : {"en", "de", "fr"}) {
            const auto file =
                path.parent_path() / ("FamilyStrings." + std::string(language) + ".xml");
            if (std::filesystem::exists(file)) {
                languages.push_back(Utf8ToWide(language));
                strings.push_back(FileText(file));
            }
        }
        family =
            std::make_unique<CEncapFamily>(FileText(path).c_str(), strings, L"", &provider, false);
    }

    CStandaloneEvaluatorProvider provider;
    std::vector<CString> languages;
    std::unique_ptr<CEncapFamily> family;
};

std::vector<std::filesystem::path> FamilyFiles()
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kSamples / "families")) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() == ".xml" && name.rfind("FamilyStrings.", 0) != 0) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// The cells of one line of a CSV text whose cells may be quoted.
std::vector<std::string> CsvCells(const std::string& line)
{
    std::vector<std::string> cells(1);
    bool quoted = false;
    for (const char character : line) {
        if (character == '"') {
            quoted = !quoted;
        } else if (character == ',' && !quoted) {
            cells.emplace_back();
        } else {
            cells.back() += character;
        }
    }
    return cells;
}

} // namespace

TEST(SampleLibrary, EveryCellHasAValueInEveryLanguage)
{
    const auto files = FamilyFiles();
    ASSERT_GE(files.size(), 14U);
    std::size_t members = 0;
    std::size_t largest = 0;
    for (const auto& file : files) {
        const SampleFamily sample(file);
        CEncapFamilyTable& table = *sample.family->GetEncapFamilyTable();
        ASSERT_GE(sample.languages.size(), 2U) << file;
        members += table.GetRowsCount();
        largest = std::max<std::size_t>(largest, table.GetRowsCount());
        for (const CString& language : sample.languages) {
            for (const CString& row : table.GetAllRowIDs()) {
                for (const CString& column : table.GetAllColumnIDs()) {
                    CString value;
                    ASSERT_EQ(table.GetValue(row.c_str(), column.c_str(), language.c_str(), value),
                              CTableEvaluator::EvaluateOK)
                        << file << row << L" " << column;
                }
            }
        }
        for (const CString& column : table.GetAllColumnIDs()) {
            CString formula;
            table.GetFamilyColumnByID(column.c_str())->GetFormula(formula);
            if (!formula.empty()) {
                EXPECT_EQ(table.IsFormulaValid(column.c_str(), formula.c_str()),
                          CTableEvaluator::EvaluateOK)
                    << file << column;
            }
        }
    }
    EXPECT_GE(members, 500U);
    EXPECT_GT(largest, 500U);
}

TEST(SampleLibrary, SpotValuesAreTheStandardsOwn)
{
    std::ifstream file(kSamples / "expected" / "spot-values.csv");
    std::string line;
    std::getline(file, line);
    std::map<std::string, std::unique_ptr<SampleFamily>> families;
    int checked = 0;
    while (std::getline(file, line)) {
        const std::vector<std::string> cells = CsvCells(line);
        ASSERT_GE(cells.size(), 5U) << line;
        auto& sample = families[cells[0]];
        if (sample == nullptr) {
            sample = std::make_unique<SampleFamily>(kSamples / cells[0]);
        }
        CString value;
        EXPECT_EQ(sample->family->GetEncapFamilyTable()->GetValue(
                      Utf8ToWide(cells[1]).c_str(), Utf8ToWide(cells[2]).c_str(),
                      Utf8ToWide(cells[3]).c_str(), value),
                  CTableEvaluator::EvaluateOK)
            << line;
        EXPECT_EQ(value, Utf8ToWide(cells[4])) << line;
        ++checked;
    }
    EXPECT_GE(checked, 80);
}
