#include "cli/FindCommand.h"

#include "cli/Condition.h"
#include "cli/FindFormats.h"
#include "cli/ManyFamilies.h"
#include "cli/Options.h"
#include "cli/Results.h"

namespace encap::cli {
namespace {

constexpr MakeFindFormat kFormats[] = {MakeFindText, MakeFindCsv, MakeFindJson};

/// What all families of a run come to.
struct FindSummary {
    void Add(const FoundMembers& found);
    [[nodiscard]] std::string Text() const;
    [[nodiscard]] ExitStatus Status() const;

    std::size_t families = 0;
    std::size_t withColumns = 0;
    std::size_t withMembers = 0;
    std::size_t members = 0;
    std::size_t problems = 0;
    std::size_t notOpened = 0;
};

void FindSummary::Add(const FoundMembers& found)
{
    ++families;
    withColumns += found.hasColumns ? 1 : 0;
    withMembers += found.members.empty() ? 0 : 1;
    members += found.members.size();
    problems += found.problem.empty() ? 0 : 1;
    notOpened += found.failure.empty() ? 0 : 1;
}

std::string FindSummary::Text() const
{
    std::string text = CountedText(members, "member", "members");
    text.append(" in ").append(CountedText(withMembers, "family", "families"));
    text.append("; of ").append(CountedText(families, "family", "families"));
    text.append(", ").append(std::to_string(withColumns));
    text.append(withColumns == 1 ? " has" : " have").append(" the columns");
    if (notOpened > 0) {
        text.append(", ").append(std::to_string(notOpened));
        text.append(notOpened == 1 ? " was" : " were").append(" not opened");
    }
    return text;
}

ExitStatus FindSummary::Status() const
{
    if (notOpened > 0) {
        return ExitStatus::Failed;
    }
    return problems > 0 ? ExitStatus::Findings : ExitStatus::Done;
}

class FindCommand : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    /// Takes the condition from behind the paths.
    [[nodiscard]] Condition TakeCondition();

    std::vector<CString> m_words;
    ManyFamiliesOptions m_families;
    int m_format = 0;
    CString m_output;
};

void FindCommand::Declare(Options& options)
{
    options.Arguments(m_words, "PATH... CONDITION",
                      "Family documents, folders of them, tables of contents, patterns in quotes; "
                      "last the condition, as '{D} >= 8mm and {L} < 2in'");
    options.Choice(m_format, "--format", {"text", "csv", "json"}, "What to print (default: text)");
    m_families.Declare(options);
    options.Text(m_output, "-o,--output", "FILE", "Write to this file instead of standard output");
    options.Footer("Columns stand in braces. Families without one of them are left out. Columns of "
                   "texts are\ncompared, by == and !=, with a text in double quotes.");
}

ExitStatus FindCommand::Run(Console& console)
{
    const Condition condition = TakeCondition();
    FamilyHost host(m_families.host);
    condition.RequireUnderstood(host.Provider());
    const std::vector<ListedFamily> families = ListFamilies(m_words, m_families.list);
    RequireOutput(m_output, m_words, families);
    Results results(console, m_output);
    const auto format = kFormats[m_format](condition.Columns(), results);
    FindSummary summary;
    const auto work = [&](const ListedFamily& family, FamilyHost& threadsHost) {
        return FindMembers(family, condition, m_families.language, threadsHost);
    };
    const auto take = [&](const FoundMembers& found) {
        summary.Add(found);
        format->Add(found);
        if (const CString sentence = found.Sentence(); !sentence.empty()) {
            console.Message(sentence);
        }
    };
    ForEachFamily<FoundMembers>(families, m_families, console, work, take);
    format->Finish();
    results.Finish();
    console.Message(summary.Text());
    return summary.Status();
}

Condition FindCommand::TakeCondition()
{
    if (m_words.size() < 2) {
        throw UsageError(L"a path and a condition are asked for, as in encap find families "
                         L"'{D} >= 8mm'");
    }
    Condition condition(m_words.back());
    m_words.pop_back();
    return condition;
}

} // namespace

std::unique_ptr<Command> MakeFindCommand()
{
    return std::make_unique<FindCommand>();
}

} // namespace encap::cli
