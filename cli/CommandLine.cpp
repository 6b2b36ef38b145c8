#include "cli/CommandLine.h"

#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/Options.h"
#include "encap/foundation/Version.h"

#include <algorithm>
#include <exception>
#include <new>

namespace encap::cli {
namespace {

constexpr std::string_view kHelpHead =
    "Reads, evaluates, edits and prints families of standard parts.\n"
    "Usage: encap COMMAND [OPTIONS] FILE...\n"
    "\n"
    "Commands:\n";
constexpr std::string_view kHelpFoot =
    "\n"
    "Options:\n"
    "  -h,--help       Print this text; after a command, print its options\n"
    "  --version       Print the version\n"
    "\n"
    "Results go to standard output, messages to standard error. Exit status:\n"
    "  0  done, and nothing is wrong\n"
    "  1  done, and something was found wrong, for example a cell that has no value\n"
    "  2  bad usage\n"
    "  3  a file cannot be read, parsed or written, or is not a family document\n";
constexpr std::size_t kSummaryColumn = 18;

void PrintHelp(Console& console)
{
    std::string text(kHelpHead);
    for (const CommandEntry& entry : Commands()) {
        std::string line = "  " + std::string(entry.name);
        line.resize(std::max(line.size() + 1, kSummaryColumn), ' ');
        text += line + entry.summary + '\n';
    }
    console.Write(text + std::string(kHelpFoot));
}

const CommandEntry* FindCommand(std::string_view name)
{
    const auto commands = Commands();
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const CommandEntry& entry) { return entry.name == name; });
    return found != commands.end() ? &*found : nullptr;
}

ExitStatus RunEntry(const CommandEntry& entry, const std::vector<std::string>& arguments,
                    Console& console, std::unique_ptr<Command>& command)
{
    command = entry.make();
    Options options(entry.name, entry.summary);
    command->Declare(options);
    std::string help;
    if (!options.Parse(arguments, help)) {
        console.Write(help);
        return ExitStatus::Done;
    }
    return command->Run(console);
}

ExitStatus Dispatch(const std::vector<std::string>& arguments, Console& console,
                    std::unique_ptr<Command>& command)
{
    if (arguments.empty()) {
        throw UsageError(L"a command is missing: 'encap --help' lists the commands");
    }
    const std::string& first = arguments.front();
    if (first == "--help" || first == "-h") {
        PrintHelp(console);
        return ExitStatus::Done;
    }
    if (first == "--version") {
        console.Write("encap " + platform::WideToUtf8(kVersion) + "\n");
        return ExitStatus::Done;
    }
    const CommandEntry* entry = FindCommand(first);
    if (entry == nullptr) {
        const bool isOption = first.starts_with('-');
        throw UsageError(std::wstring(isOption ? L"unknown option '" : L"unknown command '") +
                         platform::Utf8ToWide(first) + L"': 'encap --help' lists what there is");
    }
    return RunEntry(*entry, {arguments.begin() + 1, arguments.end()}, console, command);
}

ExitStatus RunReporting(const std::vector<std::string>& arguments, Console& console,
                        std::unique_ptr<Command>& command)
{
    try {
        const ExitStatus status = Dispatch(arguments, console, command);
        console.Finish();
        return status;
    } catch (const CommandError& error) {
        console.Message(error.what());
        return error.Status();
    } catch (const std::bad_alloc&) {
        console.Message("there is not enough memory");
        return ExitStatus::Failed;
    } catch (const std::exception& error) {
        console.Message(error.what());
        return ExitStatus::Failed;
    }
}

} // namespace

int RunCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
               std::unique_ptr<Command>& command) noexcept
{
    try {
        Console console(out, err);
        return static_cast<int>(RunReporting(arguments, console, command));
    } catch (...) {
        // Not even the message could be made.
        return static_cast<int>(ExitStatus::Failed);
    }
}

} // namespace encap::cli
