#include "tests/cli/CliRun.h"

namespace encap::test {
namespace {

/// A command of a manual page with the output that the page shows.
struct Example {
    std::string command;
    std::vector<std::string> lines;
};

std::vector<std::string> LinesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        lines.push_back(line);
    }
    return lines;
}

std::vector<Example> ExamplesOf(const std::string& page)
{
    std::vector<Example> examples;
    bool isInside = false;
    for (const std::string& line : LinesOf(page)) {
        if (line.starts_with("```")) {
            isInside = line == "```console";
        } else if (isInside && line.starts_with("$ encap ")) {
            examples.push_back({line.substr(8), {}});
        } else if (isInside && !examples.empty()) {
            examples.back().lines.push_back(line);
        }
    }
    return examples;
}

/// The arguments between blanks, single quotes around one left out, files of the repository by
/// their full paths.
std::vector<std::string> ArgumentsOf(const std::string& command, const std::string& root)
{
    std::vector<std::string> arguments;
    for (std::size_t at = 0; at < command.size();) {
        const char end = command[at] == '\'' ? '\'' : ' ';
        at += end == ' ' ? 0 : 1;
        const std::size_t behind = std::min(command.find(end, at), command.size());
        const std::string word = command.substr(at, behind - at);
        const bool isFile = word.starts_with("samples/") || word.starts_with("tests/");
        arguments.push_back(isFile ? root + word : word);
        at = command.find_first_not_of(' ', behind + (end == ' ' ? 0 : 1));
    }
    return arguments;
}

/// "..." stands for any number of lines.
bool Matches(const std::vector<std::string>& shown, std::size_t i,
             const std::vector<std::string>& lines, std::size_t k)
{
    for (; i < shown.size(); ++i, ++k) {
        if (shown[i] == "...") {
            for (std::size_t next = k; next <= lines.size(); ++next) {
                if (Matches(shown, i + 1, lines, next)) {
                    return true;
                }
            }
            return false;
        }
        if (k >= lines.size() || shown[i] != lines[k]) {
            return false;
        }
    }
    return k == lines.size();
}

TEST(Documentation, ExamplesOfTheManualAreWhatTheProgramPrints)
{
    const std::string data = ENCAP_TEST_DATA;
    const std::string root = data.substr(0, data.size() - std::string("tests/data").size());
    const auto examples = ExamplesOf(ReadFile(root + "docs/command-line.md"));
    EXPECT_LE(5U, examples.size());
    for (const Example& example : examples) {
        const CliRun run(ArgumentsOf(example.command, root));
        const std::string output = Replaced(run.out + run.err, root, "");
        EXPECT_TRUE(Matches(example.lines, 0, LinesOf(output), 0))
            << "$ encap " << example.command << '\n'
            << output;
    }
}

} // namespace
} // namespace encap::test
