#include "tests/cli/CliRun.h"

namespace encap::test {
namespace {

TEST(MappingReport, PrintsTextAndJson)
{
    for (const std::string name : {"rings", "damaged"}) {
        for (const std::string format : {"text", "json"}) {
            const CliRun run(
                {"info", TestData("mapping/" + name + ".xml"), "--mapping", "--format", format});
            EXPECT_EQ(0, run.status);
            EXPECT_EQ("", run.err);
            ExpectGolden("mapping/" + name + ".info." + format,
                         Replaced(run.out, TestData(""), ""));
        }
    }
}

TEST(MappingReport, IsPrintedOnRequestOnly)
{
    const std::string path = TestData("mapping/rings.xml");
    const std::string text = CliRun({"info", path}).out;
    EXPECT_TRUE(CliRun({"info", path, "--mapping"}).out.starts_with(text));
    const std::string json = CliRun({"info", path, "--format", "json"}).out;
    EXPECT_EQ(std::string::npos, json.find("mapping\":"));
}

TEST(MappingReport, AFamilyWithoutMapsHasEmptyOnes)
{
    const TemporaryFolder folder;
    const std::string path = WriteFile(folder, L"f.xml", "<F><FamilyTable/></F>");
    EXPECT_TRUE(CliRun({"info", path, "--mapping"})
                    .out.ends_with("\nTemplate parameters that columns drive: none\n"
                                   "\nCategory parameters that columns supply: none\n"
                                   "\nTemplates: none\n"
                                   "\nConstants of category parameters: none\n"));
    EXPECT_NE(std::string::npos,
              CliRun({"info", path, "--mapping", "--format", "json"})
                  .out.find("\n \"mapping\": {\n  \"columns\": [],\n  \"templates\": [],\n"
                            "  \"constants\": []}}\n"));
}

TEST(MappingReport, ParametersMayBeNestedDeep)
{
    constexpr int kDepth = 200;
    std::string parameters;
    for (int id = 0; id < kDepth; ++id) {
        parameters += "<GeneralizedParameter Id='" + std::to_string(id) + "'>";
    }
    for (int id = 0; id < kDepth; ++id) {
        parameters += "</GeneralizedParameter>";
    }
    const TemporaryFolder folder;
    const std::string path =
        WriteFile(folder, L"f.xml",
                  "<F><FamilyTable/><FamilyTemplates><FamilyTemplate Name='T'>" + parameters +
                      "</FamilyTemplate></FamilyTemplates></F>");
    const std::string lastId = '\n' + std::string(2 * (kDepth - 1), ' ') + "199\n";
    EXPECT_TRUE(CliRun({"info", path, "--mapping"}).out.find(lastId) != std::string::npos);
    const std::string json = CliRun({"info", path, "--mapping", "--format", "json"}).out;
    const std::size_t last = json.find("\"id\": \"199\"");
    ASSERT_NE(std::string::npos, last);
    std::string closed = "\"parameters\": []}";
    for (int id = 1; id < kDepth; ++id) {
        closed += "]}";
    }
    EXPECT_NE(std::string::npos, json.find(closed, last));
}

} // namespace
} // namespace encap::test
