#include "encap/mapping/FamilyMapping.h"
#include "encap/platform/Encoding.h"
#include "encap/table/FamilyColumn.h"
#include "tests/family/TestFamily.h"
#include "tests/mapping/CanonicalXml.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

// Each folder of tests/data/mapping holds a family before (before.xml), what is done to it
// (steps.txt) and the family after (after.xml). A line of the steps is a command of the table below
// with its words; "-" is the empty text, "#" begins a comment. Commands with a colon check.

namespace {

using namespace encap;
using encap::platform::Utf8ToWide;
using encap::platform::WideToUtf8;
using encap::test::TestFamily;
using Words = std::vector<CString>;
namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

CEncapFamilyColumn& ColumnOf(TestFamily& family, const CString& id)
{
    CEncapFamilyColumn* column = family.Table().GetFamilyColumnByID(id.c_str());
    EXPECT_NE(column, nullptr) << WideToUtf8(id);
    static CEncapFamilyColumn none;
    return column != nullptr ? *column : none;
}

CString YesOrNo(bool value)
{
    return value ? L"yes" : L"no";
}

CString DataOf(const CEncapFamilyColumn& column)
{
    const CEncapFamilyColVexilData* data = column.GetColVexilData();
    return data != nullptr ? L"[" + data->ObjectRefKey() + L"][" + data->SubObjectId() + L"]" +
                                 data->PropObjTypeStr()
                           : CString(L"none");
}

CString FlagsOf(const CEncapFamilyColumn& column)
{
    CString flags = column.IsGeometryColumn() ? L"geometry" : L"";
    flags += column.IsZelPropertyColumn() ? L"+property" : L"";
    flags += column.IsPropertyColumn() ? L"+plain" : L"";
    return flags.empty() ? L"none" : flags;
}

/// What a command gives, as text; the last word of a check is what it must give.
using Command = std::function<CString(TestFamily&, const Words&)>;

/// Commands that change the family.
const std::map<CString, Command>& Changes()
{
    static const std::map<CString, Command> commands{
        {L"geometry",
         [](TestFamily& family, const Words& words) {
             ColumnOf(family, words.at(0)).SetIsGeometryColumn(words.at(1) == L"yes");
             return CString();
         }},
        {L"property",
         [](TestFamily& family, const Words& words) {
             ColumnOf(family, words.at(0)).SetIsZelPropertyColumn(words.at(1) == L"yes");
             return CString();
         }},
        {L"drive",
         [](TestFamily& family, const Words& words) {
             family->GetEncapFamilyMapping()->UpdateColumnMapping(
                 &ColumnOf(family, words.at(0)), words.at(1).c_str(), words.at(2).c_str(),
                 CEncapFamilyColVexilData::StringToColPropObjType(words.at(3)));
             return CString();
         }},
        {L"supply:",
         [](TestFamily& family, const Words& words) {
             return YesOrNo(family->GetEncapFamilyMapping()->AddParamToColumnMapping(
                 &ColumnOf(family, words.at(0)), words.at(1).c_str(), words.at(2).c_str()));
         }},
        {L"unmap",
         [](TestFamily& family, const Words& words) {
             family->RemoveAllColumnMapping(&ColumnOf(family, words.at(0)));
             return CString();
         }},
        {L"delete",
         [](TestFamily& family, const Words& words) {
             family.Table().DeleteColumn(
                 family.Table().GetFamilyColumnIndexByID(words.at(0).c_str()));
             return CString();
         }},
        {L"internal-name",
         [](TestFamily& family, const Words& words) {
             family->SetInternalName(words.at(0).c_str());
             return CString();
         }},
    };
    return commands;
}

/// Commands that ask it.
const std::map<CString, Command>& Questions()
{
    static const std::map<CString, Command> commands{
        {L"flags:", [](TestFamily& family,
                       const Words& words) { return FlagsOf(ColumnOf(family, words.at(0))); }},
        {L"data:", [](TestFamily& family,
                      const Words& words) { return DataOf(ColumnOf(family, words.at(0))); }},
        {L"type:",
         [](TestFamily& family, const Words& words) {
             return std::to_wstring(ColumnOf(family, words.at(0)).GetColumnType());
         }},
        {L"used:",
         [](TestFamily& family, const Words& words) {
             return YesOrNo(family->GetEncapFamilyMapping()->IsPropertyAlreadyUsed(
                 words.at(0).c_str(), words.at(1).c_str()));
         }},
        {L"column:",
         [](TestFamily& family, const Words& words) {
             CString id = L"none";
             if (CEncapFamilyColumn* column = family->GetCategoryParamColumn(words.at(0).c_str())) {
                 column->GetColumnID(id);
                 id = id.empty() ? L"constant" : id;
             }
             return id;
         }},
        {L"category:",
         [](TestFamily& family, const Words& words) {
             CString id;
             return family->GetColumnCategory(words.at(0).c_str(), id) ? L"[" + id + L"]"
                                                                       : CString(L"none");
         }},
        {L"localized:",
         [](TestFamily& family, const Words& words) {
             return YesOrNo(family->IsFamilyColumnLocalized(words.at(0).c_str()));
         }},
    };
    return commands;
}

void RunStep(TestFamily& family, const std::string& line)
{
    std::istringstream stream(line.substr(0, line.find('#')));
    Words words;
    for (std::string word; stream >> word;) {
        words.push_back(word == "-" ? CString() : Utf8ToWide(word));
    }
    if (words.empty()) {
        return;
    }
    const auto& commands = Changes().contains(words.front()) ? Changes() : Questions();
    const auto command = commands.find(words.front());
    ASSERT_NE(command, commands.end()) << line;
    const bool isCheck = words.front().back() == L':';
    words.erase(words.begin());
    const CString result = command->second(family, words);
    if (isCheck) {
        EXPECT_EQ(WideToUtf8(result), WideToUtf8(words.back())) << line;
    }
}

std::vector<std::string> Cases()
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(fs::path(ENCAP_TEST_DATA) / "mapping")) {
        if (entry.is_directory()) {
            names.push_back(entry.path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

class MappingFixture : public testing::TestWithParam<std::string> {};

TEST_P(MappingFixture, StepsGiveTheDocument)
{
    const fs::path folder = fs::path(ENCAP_TEST_DATA) / "mapping" / GetParam();
    TestFamily family(Utf8ToWide(ReadFile(folder / "before.xml")));
    ASSERT_NE(family->GetEncapFamilyMapping(), nullptr);
    std::istringstream steps(ReadFile(folder / "steps.txt"));
    for (std::string line; std::getline(steps, line);) {
        RunStep(family, line);
    }
    const std::string after = WideToUtf8(test::CanonicalXml(family.Root()));
    const XMLParser expected(Utf8ToWide(ReadFile(folder / "after.xml")));
    if (after != WideToUtf8(test::CanonicalXml(expected.GetRootNode()))) {
        const fs::path got = fs::path(testing::TempDir()) / ("mapping-" + GetParam() + ".xml");
        std::ofstream(got, std::ios::binary) << after;
        ADD_FAILURE() << "diff " << (folder / "after.xml").string() << " " << got.string();
    }
}

std::string TestNameOf(const testing::TestParamInfo<std::string>& fixture)
{
    std::string name = fixture.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Mapping, MappingFixture, testing::ValuesIn(Cases()), TestNameOf);

} // namespace
