#include "tests/cli/LibraryFolder.h"

namespace encap::test {
namespace {

constexpr const char* kToc = R"(<TableOfContents>
  <Families>
    <Family InternalName="nut" DisplayName="Hex nut" Standard="ISO 4032" FolderName="iso-4032"/>
    <Family InternalName="bolt" DisplayName="old"/>
    <Family InternalName="bolt" DisplayName="Hex bolt"/>
    <Family DisplayName="nameless"/>
    <Family InternalName="loose"/>
  </Families>
  <Categories>
    <Category InternalName="c1" DisplayName="Fasteners">
      <FamilyReference InternalName="bolt"/>
      <FamilyReference InternalName="gone"/>
      <Category InternalName="c2" DisplayName="Nuts" Hidden="true">
        <FamilyReference InternalName="nut"/>
        <Category InternalName="c3" DisplayName="Hexagon">
          <FamilyReference InternalName="nut"/>
        </Category>
      </Category>
    </Category>
    <Category InternalName="c4" DisplayName="nuts"/>
  </Categories>
</TableOfContents>)";

constexpr const char* kProblems =
    "encap: toc.xml: there is more than one family with the internal name \"bolt\": the last one "
    "holds\n"
    "encap: toc.xml: 1 family entry has no internal name and cannot be found\n"
    "encap: toc.xml: the category \"Fasteners\" refers to the family \"gone\", which is not "
    "listed\n";

class TocCommand : public ::testing::Test {
protected:
    CliRun Run(std::vector<std::string> options)
    {
        options.insert(options.begin(), {"toc", m_path});
        CliRun run(options);
        run.out = m_folder.Short(run.out);
        run.err = m_folder.Short(run.err);
        return run;
    }

    LibraryFolder m_folder;
    std::string m_path = m_folder.AddFile("toc.xml", kToc);
};

TEST_F(TocCommand, PrintsTheTreeAndWhatDoesNotFit)
{
    const CliRun run = Run({});
    EXPECT_EQ(1, run.status);
    EXPECT_EQ("Name              Standard  Families  Internal name\n"
              "----------------  --------  --------  -------------\n"
              "Fasteners                          2  c1\n"
              "  Hex bolt                            bolt\n"
              "  (not listed)                        gone\n"
              "nuts                               0  c4\n"
              "(in no category)                   1\n"
              "  loose                               loose\n",
              run.out);
    EXPECT_EQ(kProblems, run.err);
}

TEST_F(TocCommand, ShowsHiddenAndNamedCategories)
{
    EXPECT_EQ("Name              Standard  Families  Internal name\n"
              "----------------  --------  --------  -------------\n"
              "Fasteners                          3  c1\n"
              "  Hex bolt                            bolt\n"
              "  (not listed)                        gone\n"
              "  Nuts (hidden)                    1  c2\n"
              "    Hex nut       ISO 4032            nut\n"
              "    Hexagon                        1  c3\n"
              "      Hex nut     ISO 4032            nut\n"
              "nuts                               0  c4\n"
              "(in no category)                   1\n"
              "  loose                               loose\n",
              Run({"--hidden"}).out);
    EXPECT_EQ("Name             Standard  Families  Internal name\n"
              "---------------  --------  --------  -------------\n"
              "Fasteners                         1  c1\n"
              "  Nuts (hidden)                   1  c2\n"
              "    Hex nut      ISO 4032            nut\n"
              "    Hexagon                       1  c3\n"
              "      Hex nut    ISO 4032            nut\n"
              "nuts                              0  c4\n",
              Run({"--category", "NUTS"}).out);
    EXPECT_EQ("Name  Standard  Families  Internal name\n"
              "----  --------  --------  -------------\n"
              "nuts                   0  c4\n",
              Run({"--category", "c4"}).out);
}

TEST_F(TocCommand, ShowsFamiliesWithTheirCategories)
{
    EXPECT_EQ("Internal name  nut\n"
              "Display name   Hex nut\n"
              "Standard       ISO 4032\n"
              "Folder         iso-4032\n"
              "Categories     Fasteners / Nuts\n"
              "               Fasteners / Nuts / Hexagon\n",
              Run({"--family", "ISO-4032", "--hidden"}).out);
    EXPECT_EQ(std::string::npos, Run({"--family", "hex NUT"}).out.find("Categories"));
    const std::string json = Run({"--family", "bolt", "--format", "json"}).out;
    EXPECT_NE(std::string::npos, json.find("\"displayName\": \"Hex bolt\", \"description\": null"))
        << json;
    EXPECT_NE(std::string::npos, json.find("\"categories\": [[\"Fasteners\"]]")) << json;
}

TEST_F(TocCommand, PrintsTheTreeAsJson)
{
    const std::string json = Run({"--format", "json", "--hidden"}).out;
    EXPECT_NE(std::string::npos, json.find("{\"internalName\": \"gone\", \"listed\": false}]"))
        << json;
    EXPECT_NE(
        std::string::npos,
        json.find("  {\"internalName\": \"c1\", \"displayName\": \"Fasteners\", \"revisionId\": "
                  "null, \"library\": null, \"domain\": null, \"hidden\": false, "
                  "\"specialAuthoring\": false,\n   \"families\": [\n    {"))
        << json;
    EXPECT_EQ(std::count(json.begin(), json.end(), '{'), std::count(json.begin(), json.end(), '}'));
}

TEST_F(TocCommand, RefusesWhatItDoesNotFind)
{
    ExpectRefusal(Run({"--category", "none"}), 2, "there is no category 'none'");
    ExpectRefusal(Run({"--family", "none"}), 2, "there is no family 'none'");
    ExpectRefusal(Run({"--family", "nut", "--category", "c1"}), 2, "cannot be used together");
    const std::string empty = m_folder.AddFile("empty.xml", "<TableOfContents/>");
    ExpectRefusal(CliRun({"toc", empty, "-o", empty}), 2, "-o names a file that is read");
    ExpectRefusal(CliRun({"toc", m_folder.AddFamily("pin", {"1"})}), 3,
                  "not a table of contents: its document element is \"Family\"");
    ExpectRefusal(CliRun({"toc", m_folder.AddFile("cut.xml", "<TableOfContents>")}), 3,
                  "not a table of contents: it is not well-formed XML");
}

} // namespace
} // namespace encap::test
