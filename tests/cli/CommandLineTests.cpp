#include "cli/CommandError.h"
#include "cli/Options.h"
#include "tests/cli/CliRun.h"

#include <streambuf>

namespace encap::test {
namespace {

TEST(CommandLine, HelpIsThereForTheProgramAndForEachCommand)
{
    const CliRun all({"--help"});
    EXPECT_EQ(0, all.status);
    EXPECT_EQ(all.out, CliRun({"-h"}).out);
    for (const char* command : {"table", "info"}) {
        EXPECT_NE(std::string::npos, all.out.find(std::string("\n  ") + command + ' '));
        const CliRun help({command, "--help"});
        EXPECT_EQ(0, help.status);
        EXPECT_EQ("", help.err);
        EXPECT_NE(std::string::npos,
                  help.out.find(std::string("Usage: encap ") + command + " [OPTIONS] FAMILY.xml"));
        EXPECT_NE(std::string::npos, help.out.find("--language TAG"));
    }
    const CliRun version({"--version"});
    EXPECT_EQ(0, version.status);
    EXPECT_EQ(0U, version.out.find("encap "));
}

TEST(CommandLine, BadUsageIsOneLineWithAHint)
{
    const std::string path = TestData("pins/pins.xml");
    const struct {
        std::vector<std::string> arguments;
        const char* part;
    } cases[] = {
        {{}, "a command is missing: 'encap --help'"},
        {{"tabel", path}, "unknown command 'tabel': 'encap --help'"},
        {{"--all"}, "unknown option '--all': 'encap --help'"},
        {{"line\nbreak"},
         "'line\xE2\x90\x8A"
         "break'"},
        {{"table"}, "FAMILY.xml is required: 'encap table --help'"},
        {{"table", path, "more.xml"}, "more.xml: 'encap table --help'"},
        {{"table", path, "--formt", "csv"}, "--formt"},
        {{"table", path, "--format", "cvs"}, "'cvs' is none of text, csv, json, xml"},
        {{"table", path, "--language"}, "--language"},
        {{"info", path, "--cache", "c"}, "--cache"},
        {{"info", path, "--format", "csv"}, "'csv' is none of text, json"},
    };
    for (const auto& [arguments, part] : cases) {
        SCOPED_TRACE(part);
        ExpectRefusal(CliRun(arguments), 2, part);
    }
}

TEST(CommandLine, LastOfRepeatedValuesHolds)
{
    const CliRun run({"table", TestData("pins/pins.xml"), "--format", "json", "--format", "csv"});
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(0U, run.out.find("RowId,"));
}

/// Everything that options can hold.
struct Values {
    explicit Values(const std::vector<std::string>& arguments)
    {
        cli::Options options("test", "A test.");
        options.Argument(file, "FILE", "");
        options.Arguments(paths, "PATH", "");
        options.Flag(flag, "-f,--flag", "");
        options.Text(text, "--text", "TEXT", "");
        options.Text(perhaps, "--perhaps", "TEXT", "");
        options.Texts(texts, "--texts", "TEXT", "");
        options.Pairs(pairs, "--cell", "ROW COLUMN=VALUE", "");
        options.Choice(choice, "--choice", {"a", "b"}, "");
        options.Number(number, "--jobs", "N", 1, 64, "");
        std::string help;
        EXPECT_TRUE(options.Parse(arguments, help));
    }

    CString file;
    std::vector<CString> paths;
    bool flag = false;
    CString text = L"default";
    std::optional<CString> perhaps;
    std::vector<CString> texts;
    std::vector<std::pair<CString, CString>> pairs;
    int choice = 0;
    int number = 2;
};

TEST(Options, TakeWhatIsGivenAndKeepTheRest)
{
    const Values none({"f", "p"});
    EXPECT_EQ(L"f", none.file);
    EXPECT_EQ(std::vector<CString>{L"p"}, none.paths);
    EXPECT_EQ(L"default", none.text);
    EXPECT_FALSE(none.flag || none.perhaps);
    EXPECT_EQ(2, none.number);

    const Values all({"f",      "--texts", "[1;2]",      "p",           "--cell",   "r",
                      "A=-5",   "[q]",     "-f",         "--text",      "\xC3\xA4", "--cell",
                      "s",      "B={C}",   "--perhaps=", "--texts=x,y", "--choice", "b",
                      "--jobs", "64",      "--",         "-r"});
    EXPECT_EQ((std::vector<CString>{L"p", L"q", L"-r"}), all.paths);
    EXPECT_TRUE(all.flag);
    EXPECT_EQ(L"\xE4", all.text);
    EXPECT_EQ(L"", all.perhaps);
    EXPECT_EQ((std::vector<CString>{L"[1;2]", L"x,y"}), all.texts);
    EXPECT_EQ((std::vector<std::pair<CString, CString>>{{L"r", L"A=-5"}, {L"s", L"B={C}"}}),
              all.pairs);
    EXPECT_EQ(1, all.choice);
    EXPECT_EQ(64, all.number);
}

TEST(Options, RefuseWhatDoesNotFit)
{
    for (const std::vector<std::string>& more : {std::vector<std::string>{"--jobs", "0"},
                                                 {"--jobs", "65"},
                                                 {"--jobs", "2x"},
                                                 {"--choice", "A"},
                                                 {"--cell", "r"},
                                                 {"--flag=maybe"},
                                                 {"--text"},
                                                 {"-g"}}) {
        std::vector<std::string> arguments = {"f", "p"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        EXPECT_THROW(Values{arguments}, cli::UsageError) << more.back();
    }
    EXPECT_THROW(Values({"f"}), cli::UsageError);
}

/// A stream that takes a number of bytes and no more.
class ShortBuffer : public std::streambuf {
public:
    explicit ShortBuffer(std::streamsize size) : m_left(size) {}

protected:
    std::streamsize xsputn(const char*, std::streamsize count) override
    {
        const std::streamsize taken = std::min(count, m_left);
        m_left -= taken;
        return taken;
    }
    int_type overflow(int_type) override { return traits_type::eof(); }

private:
    std::streamsize m_left;
};

TEST(CommandLine, OutputThatIsNotTakenIsAFailure)
{
    const std::string path = TestData("pins/pins.xml");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"table", path}, {"info", path}, {"--help"}, {"table", "-h"}}) {
        ShortBuffer buffer(10);
        std::ostream out(&buffer);
        std::ostringstream err;
        std::unique_ptr<cli::Command> command;
        EXPECT_EQ(3, cli::RunCommand(arguments, out, err, command));
        EXPECT_EQ("encap: the results cannot be written: standard output is closed or full\n",
                  err.str());
    }
}

} // namespace
} // namespace encap::test
