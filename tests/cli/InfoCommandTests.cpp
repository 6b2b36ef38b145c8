#include "tests/cli/CliRun.h"

namespace encap::test {
namespace {

TEST(InfoCommand, PrintsTextAndJson)
{
    const std::string path = TestData("pins/pins.xml");
    for (const char* format : {"text", "json"}) {
        const CliRun run({"info", path, "--format", format, "--language", "de"});
        EXPECT_EQ(0, run.status);
        EXPECT_EQ("", run.err);
        ExpectGolden(std::string("pins/de.info.") + format, Replaced(run.out, TestData(""), ""));
    }
}

TEST(InfoCommand, TellsOfALink)
{
    const TemporaryFolder folder;
    const std::string path =
        WriteFile(folder, L"f.xml",
                  "<F FromSource='lib' SourceMoniker='src' SrcActive='false'><FamilyTable/></F>");
    EXPECT_NE(std::string::npos, CliRun({"info", path}).out.find("to src of lib (not active)\n"));
    EXPECT_NE(std::string::npos,
              CliRun({"info", path, "--format", "json"})
                  .out.find("{\"library\": \"lib\", \"family\": \"src\", \"active\": false}"));
}

TEST(InfoCommand, DoesNotEvaluate)
{
    const CliRun run({"info", TestData("faults.xml")});
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.err);
}

} // namespace
} // namespace encap::test
