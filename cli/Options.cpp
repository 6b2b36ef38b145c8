#include "cli/Options.h"

#include "cli/CommandError.h"
#include "encap/foundation/NumberText.h"

#include <algorithm>

#include <CLI/CLI.hpp>

namespace encap::cli {

struct Options::State {
    State(const std::string& command, const std::string& summary)
        : name(command), root(std::make_unique<CLI::App>(summary, "encap " + command)), app(*root)
    {
        app.allow_windows_style_options(false); // a path may begin with "/"
        app.get_formatter()->column_width(28);
        app.get_formatter()->label("REQUIRED", "");
    }
    /// Below another command, to which the subcommand belongs.
    State(const std::string& command, CLI::App& subcommand) : name(command), app(subcommand) {}

    /// An option whose values, at the end of a successful run, are given to take as they stand.
    CLI::Option* Add(const std::string& names, const std::string& valueName,
                     const std::string& help, std::function<void(const CLI::results_t&)> take)
    {
        const auto callback = [take = std::move(take)](const CLI::results_t& results) {
            take(results);
            return true;
        };
        CLI::Option* option = app.add_option(names, callback, help);
        option->type_name(valueName);
        option->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
        return option;
    }

    /// Throws UsageError when there are subcommands and the first argument is none of them.
    void RequireSubcommand(const std::vector<std::string>& arguments) const;

    std::string name;
    std::unique_ptr<CLI::App> root; ///< null below another command
    CLI::App& app;
    std::vector<std::unique_ptr<Options>> subcommands;
};

namespace {

CString Wide(const std::string& text)
{
    return platform::Utf8ToWide(text);
}

/// From the end, as CLI11 takes them. Of "--name=" with nothing behind, CLI11 would take the next
/// argument for the value.
std::vector<std::string> Reversed(const std::vector<std::string>& arguments)
{
    std::vector<std::string> reversed;
    bool isBehindOptions = false;
    for (const std::string& argument : arguments) {
        isBehindOptions = isBehindOptions || argument == "--";
        if (!isBehindOptions && argument.starts_with("--") && argument.ends_with('=')) {
            reversed.push_back(argument.substr(0, argument.size() - 1));
            reversed.emplace_back();
        } else {
            reversed.push_back(argument);
        }
    }
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

std::string Joined(const std::vector<std::string>& words, const char* separator)
{
    return CLI::detail::join(words, separator);
}

} // namespace

Options::Options(const std::string& command, const std::string& summary)
    : m_state(std::make_unique<State>(command, summary))
{
}

Options::Options(std::unique_ptr<State> state) : m_state(std::move(state)) {}

Options::~Options() = default;

void Options::Argument(CString& value, const std::string& name, const std::string& help)
{
    m_state
        ->Add(name, "", help,
              [&value](const CLI::results_t& results) { value = Wide(results.back()); })
        ->required();
}

void Options::Arguments(std::vector<CString>& values, const std::string& name,
                        const std::string& help)
{
    m_state
        ->Add(name, "", help,
              [&values](const CLI::results_t& results) {
                  values.clear();
                  std::transform(results.begin(), results.end(), std::back_inserter(values), Wide);
              })
        ->required()
        ->expected(-1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void Options::Flag(bool& value, const std::string& names, const std::string& help)
{
    m_state->app.add_flag_callback(
        names, [&value] { value = true; }, help);
}

void Options::Text(CString& value, const std::string& names, const std::string& valueName,
                   const std::string& help)
{
    m_state->Add(names, valueName, help,
                 [&value](const CLI::results_t& results) { value = Wide(results.back()); });
}

void Options::Text(std::optional<CString>& value, const std::string& names,
                   const std::string& valueName, const std::string& help)
{
    m_state->Add(names, valueName, help,
                 [&value](const CLI::results_t& results) { value = Wide(results.back()); });
}

void Options::Texts(std::vector<CString>& values, const std::string& names,
                    const std::string& valueName, const std::string& help)
{
    m_state
        ->Add(names, valueName, help,
              [&values](const CLI::results_t& results) {
                  values.clear();
                  std::transform(results.begin(), results.end(), std::back_inserter(values), Wide);
              })
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void Options::Pairs(std::vector<std::pair<CString, CString>>& values, const std::string& names,
                    const std::string& valueNames, const std::string& help)
{
    m_state
        ->Add(names, valueNames, help,
              [&values](const CLI::results_t& results) {
                  values.clear();
                  for (std::size_t i = 0; i + 1 < results.size(); i += 2) {
                      values.emplace_back(Wide(results[i]), Wide(results[i + 1]));
                  }
              })
        ->type_size(2)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void Options::Choice(int& index, const std::string& names, const std::vector<std::string>& words,
                     const std::string& help)
{
    const auto find = [words](const std::string& word) {
        return std::find(words.begin(), words.end(), word) - words.begin();
    };
    const auto check = [words, find](const std::string& word) -> std::string {
        const bool isKnown = find(word) < static_cast<std::ptrdiff_t>(words.size());
        return isKnown ? std::string() : "'" + word + "' is none of " + Joined(words, ", ");
    };
    m_state
        ->Add(names, Joined(words, "|"), help,
              [&index, find](const CLI::results_t& results) {
                  index = static_cast<int>(find(results.back()));
              })
        ->check(check, "", "");
}

void Options::Number(int& value, const std::string& names, const std::string& valueName, int least,
                     int most, const std::string& help)
{
    const auto check = [least, most](const std::string& text) -> std::string {
        const auto number = ReadInteger(Wide(text));
        const bool fits = number && *number >= least && *number <= most;
        return fits ? std::string()
                    : "'" + text + "' is no whole number from " + std::to_string(least) + " to " +
                          std::to_string(most);
    };
    m_state
        ->Add(names, valueName, help,
              [&value](const CLI::results_t& results) {
                  value = ReadInteger(Wide(results.back())).value_or(0);
              })
        ->check(check, "", "");
}

Options& Options::Subcommand(const std::string& name, const std::string& summary,
                             std::function<void()> chosen)
{
    CLI::App* const app = m_state->app.add_subcommand(name, summary);
    app->callback(std::move(chosen));
    m_state->app.require_subcommand(1);
    auto state = std::make_unique<State>(m_state->name + ' ' + name, *app);
    // The constructor is not for everybody, std::make_unique included.
    m_state->subcommands.push_back(std::unique_ptr<Options>(new Options(std::move(state))));
    return *m_state->subcommands.back();
}

void Options::Footer(const std::string& text)
{
    m_state->app.footer(text);
}

void Options::State::RequireSubcommand(const std::vector<std::string>& arguments) const
{
    std::vector<std::string> names;
    for (const CLI::App* subcommand : app.get_subcommands(nullptr)) {
        names.push_back(subcommand->get_name());
    }
    const std::string first = arguments.empty() ? "" : arguments.front();
    const bool isKnown = std::find(names.begin(), names.end(), first) != names.end();
    if (names.empty() || isKnown || first == "-h" || first == "--help") {
        return;
    }
    const std::string all = Joined(names, ", ");
    throw UsageError(Wide(first.empty() ? "an action is missing, one of " + all
                                        : "'" + first + "' is none of " + all) +
                     L": 'encap " + Wide(name) + L" --help' tells more");
}

bool Options::Parse(const std::vector<std::string>& arguments, std::string& help)
{
    m_state->RequireSubcommand(arguments);
    try {
        m_state->app.parse(Reversed(arguments));
        return true;
    } catch (const CLI::CallForHelp&) {
        help = m_state->app.help();
        return false;
    } catch (const CLI::ParseError& error) {
        std::string name = m_state->name;
        for (const CLI::App* subcommand : m_state->app.get_subcommands()) {
            name.append(" ").append(subcommand->get_name());
        }
        throw UsageError(Wide(error.what()) + L": 'encap " + Wide(name) +
                         L" --help' lists what it takes");
    }
}

} // namespace encap::cli
