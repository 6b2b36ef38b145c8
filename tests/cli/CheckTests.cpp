#include "cli/CommandError.h"
#include "cli/FamilyChecks.h"
#include "cli/FamilyHost.h"
#include "cli/check/FindingWriter.h"
#include "encap/foundation/Version.h"
#include "tests/cli/CliRun.h"
#include "tests/support/ProcessorTime.h"

#include <filesystem>
#include <fstream>
#include <set>

#include <nlohmann/json.hpp>

namespace encap::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

const std::string kData = std::string(ENCAP_TEST_DATA);

/// "rule@row.column~language", as far as there is each.
std::string PlaceOf(const json& finding)
{
    const auto part = [&](const char* name) {
        return finding.at(name).is_null() ? std::string() : finding.at(name).get<std::string>();
    };
    std::string place = part("rule");
    if (!part("row").empty() || !part("column").empty()) {
        place.append("@").append(part("row"));
    }
    if (!part("column").empty()) {
        place.append(".").append(part("column"));
    }
    if (!part("language").empty()) {
        place.append("~").append(part("language"));
    }
    return place;
}

/// The file of cached values below a folder; empty when there is none.
fs::path CacheFileBelow(const fs::path& folder)
{
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            return entry.path();
        }
    }
    return {};
}

/// A family document whose name says what is found in it: findings joined by "+", or "none";
/// "--" and more may follow. A file of that name that ends in .cache takes the place of the values
/// that were cached for the family before they are verified.
class Fixture {
public:
    explicit Fixture(fs::path path) : m_path(std::move(path)) {}

    [[nodiscard]] std::string Expected() const
    {
        const std::string name = m_path.stem().string();
        return name.substr(0, name.find("--"));
    }
    [[nodiscard]] std::string RuleOfFolder() const
    {
        return m_path.parent_path().filename().string();
    }
    [[nodiscard]] std::string Found() const
    {
        const TemporaryFolder cache;
        std::vector<std::string> arguments{"check", m_path.string(), "--format", "json"};
        const fs::path values = fs::path(m_path).replace_extension(".cache");
        if (fs::exists(values)) {
            arguments.insert(arguments.end(), {"--cache", cache.Native().string()});
            EXPECT_GE(1, CliRun(arguments).status);
            fs::copy_file(values, CacheFileBelow(cache.Native()),
                          fs::copy_options::overwrite_existing);
            arguments.emplace_back("--verify-cache");
        }
        const CliRun run(arguments);
        const json family = json::parse(run.out).at("families").at(0);
        EXPECT_EQ(run.status, family.at("errors").get<int>() > 0 ? 1 : 0);
        std::string found;
        for (const json& finding : family.at("findings")) {
            found.append(found.empty() ? "" : "+").append(PlaceOf(finding));
        }
        return found.empty() ? "none" : found;
    }

private:
    fs::path m_path;
};

std::vector<Fixture> Fixtures()
{
    std::set<fs::path> paths;
    for (const auto& folder : fs::directory_iterator(kData + "/checks")) {
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().extension() == ".xml") {
                paths.insert(entry.path());
            }
        }
    }
    return {paths.begin(), paths.end()};
}

TEST(Check, FindsInEachFixtureWhatItsNameSays)
{
    std::set<std::string> failing;
    std::set<std::string> passing;
    for (const Fixture& fixture : Fixtures()) {
        SCOPED_TRACE(fixture.RuleOfFolder());
        EXPECT_EQ(fixture.Expected(), fixture.Found());
        EXPECT_NE(nullptr, cli::FindRule(platform::Utf8ToWide(fixture.RuleOfFolder())));
        const bool holds = fixture.Expected().find(fixture.RuleOfFolder()) != std::string::npos;
        (holds ? failing : passing).insert(fixture.RuleOfFolder());
    }
    for (const cli::RuleEntry& rule : cli::Rules()) {
        EXPECT_EQ(1U, failing.count(Utf8(rule.id))) << Utf8(rule.id) << " has no failing fixture";
        EXPECT_EQ(1U, passing.count(Utf8(rule.id))) << Utf8(rule.id) << " has no passing fixture";
    }
}

TEST(Check, RulesStandInTheManualAsInTheProgram)
{
    std::string expected;
    for (const cli::RuleEntry& rule : cli::Rules()) {
        CString line = CString(L"| `") + rule.id + L"` | " + cli::WordOf(rule.severity) + L" | ";
        line.append(rule.summary).append(L" | ").append(rule.remedy).append(L" |\n");
        expected += Utf8(line);
    }
    const std::string page = ReadFile(kData + "/../../docs/checks.md");
    EXPECT_NE(std::string::npos, page.find("|---|---|---|---|\n" + expected + "\n")) << expected;
}

/// Findings of two families and a file that is none.
CliRun RunOverThree(const std::string& format)
{
    return CliRun({"check", "--format", format, TestData("faults.xml"), TestData("no/file.xml"),
                   TestData("pins/pins.xml")});
}

TEST(Check, PrintsFindingsInEachFormat)
{
    for (const std::string format : {"text", "json", "sarif"}) {
        const CliRun run = RunOverThree(format);
        EXPECT_EQ(3, run.status);
        EXPECT_EQ(1, run.Messages()) << run.err;
        const std::string out = Replaced(run.out, kData + "/", "");
        ExpectGolden("faults.check." + format, Replaced(out, Utf8(kVersion), "VERSION"));
    }
}

TEST(Check, SarifHasWhatItsSchemaRequires)
{
    const json run = json::parse(RunOverThree("sarif").out).at("runs").at(0);
    const json& rules = run.at("tool").at("driver").at("rules");
    ASSERT_EQ(cli::Rules().size(), rules.size());
    std::set<std::string> fingerprints;
    for (const json& result : run.at("results")) {
        EXPECT_EQ(result.at("ruleId"),
                  rules.at(result.at("ruleIndex").get<std::size_t>()).at("id"));
        EXPECT_FALSE(result.at("message").at("text").get<std::string>().empty());
        const json& location = result.at("locations").at(0);
        const std::string uri = location.at("physicalLocation").at("artifactLocation").at("uri");
        EXPECT_TRUE(uri.starts_with("file:///")) << uri;
        EXPECT_EQ(32U,
                  result.at("partialFingerprints").at("encapPlace/v1").get<std::string>().size());
    }
    EXPECT_FALSE(run.at("invocations").at(0).at("executionSuccessful").get<bool>());
}

TEST(Check, PathsBecomeUriReferences)
{
    EXPECT_EQ("a/b%20c.xml", cli::FileUri(L"a/b c.xml"));
    EXPECT_EQ("file:///%C3%A4%23%25.xml", cli::FileUri(L"/\x00E4#%.xml"));
    EXPECT_EQ("ab%3Ac~-_.xml", cli::FileUri(L"ab:c~-_.xml"));
}

TEST(Check, StatusFollowsTheSeverityThatFails)
{
    const std::string pins = TestData("pins/pins.xml");
    const std::string faults = TestData("faults.xml");
    EXPECT_EQ(0, CliRun({"check", pins}).status) << "warnings only";
    EXPECT_EQ(1, CliRun({"check", "--fail-on", "warning", pins}).status);
    EXPECT_EQ(1, CliRun({"check", pins, faults}).status);
    EXPECT_EQ(0, CliRun({"check", "--rule", "unit-power", faults}).status);
    const CliRun two({"check", "--rule=cell-fails", "--rule=unit-power", "--format=json", faults});
    EXPECT_EQ(8, json::parse(two.out).at("errors").get<int>()) << two.out;
    EXPECT_EQ(1, json::parse(two.out).at("warnings").get<int>());
    ExpectRefusal(CliRun({"check", "--rule", "typo", faults}), 2, "no rule 'typo'");
    ExpectRefusal(CliRun({"check", "--verify-cache", faults}), 2, "--cache DIR");
}

TEST(Check, CachedValuesChangeNothingThatIsFound)
{
    const TemporaryFolder cache;
    const std::vector<std::string> files{"check", TestData("faults.xml"), TestData("pins/pins.xml"),
                                         TestData("edit/edit.xml")};
    auto cached = files;
    cached.insert(cached.end(), {"--cache", cache.Native().string()});
    const std::string plain = CliRun(files).out;
    EXPECT_EQ(plain, CliRun(cached).out);
    EXPECT_EQ(plain, CliRun(cached).out) << "with the values of the first run";
    cached.emplace_back("--verify-cache");
    EXPECT_EQ(plain, CliRun(cached).out) << "none of them is wrong";
}

TEST(Check, LongIdsCostNeitherTimeNorRoom)
{
    constexpr std::size_t kLength = 20'000;
    const TemporaryFolder folder;
    const std::string path = (folder.Native() / "long.xml").string();
    std::ofstream(path) << "<F><FamilyTable><Columns><Column ColumnId='"
                        << std::string(kLength, 'A') << "'/><Column ColumnId='B' ColumnwideValue='{"
                        << std::string(kLength, 'C') << "}'/></Columns></FamilyTable></F>";
    const ProcessorTime time;
    const CliRun run({"check", "--rule", "reference-unknown", path});
    EXPECT_LT(time.Seconds(), 5.0);
    EXPECT_EQ(1, run.status);
    EXPECT_LT(run.out.size(), 2000U);
}

TEST(Check, OtherCommandsGetTheFindingsOfAFile)
{
    cli::FamilyHost host;
    const auto findings = cli::CheckFamilyFile(platform::Utf8ToWide(TestData("faults.xml")), host);
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(cli::Rule::FormulaRefused, findings.front().rule);
    EXPECT_EQ(L"UNITS", findings.front().column);
    EXPECT_THROW((void)cli::CheckFamilyFile(L"no such file", host), cli::CommandError);
}

} // namespace
} // namespace encap::test
