#include "cli/CheckCommand.h"

#include "cli/Console.h"
#include "cli/OpenFamily.h"
#include "cli/Options.h"
#include "cli/Paths.h"
#include "cli/Results.h"
#include "cli/check/FindingWriter.h"
#include "encap/foundation/TextFormat.h"

namespace encap::cli {
namespace {

enum Format : int { kText, kJson, kSarif };

constexpr std::unique_ptr<FindingWriter> (*kWriters[])(Results&) = {
    MakeTextFindings, MakeJsonFindings, MakeSarifFindings}; // by Format

class CheckCommand : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    void SelectRules();
    void Check(const CString& path, FamilyHost& host, FindingWriter& writer, CheckTotals& totals);
    [[nodiscard]] ExitStatus StatusOf(const CheckTotals& totals) const;

    std::vector<CString> m_paths;
    HostOptions m_host;
    int m_format = kText;
    int m_failOn = 0; ///< 0: error, 1: warning
    std::vector<CString> m_ruleIds;
    bool m_verifyCache = false;
    CString m_output;
    std::vector<bool> m_isSelected; ///< by Rule
};

void CheckCommand::Declare(Options& options)
{
    options.Choice(m_format, "--format", {"text", "json", "sarif"},
                   "What to print (default: text)");
    options.Choice(m_failOn, "--fail-on", {"error", "warning"},
                   "The exit status is 1 when there is a finding at least this severe (default: "
                   "error)");
    options.Texts(m_ruleIds, "--rule", "ID",
                  "Only this rule's findings; docs/checks.md lists the rules");
    options.Flag(m_verifyCache, "--verify-cache",
                 "Compute cached values anew, and list those that differ");
    m_host.Declare(options);
    options.Text(m_output, "-o,--output", "FILE", "Write to this file instead of standard output");
    options.Arguments(m_paths, "FAMILY.xml...", "The family documents");
    options.Footer("Every family is checked in every language. A file that cannot be read does not "
                   "stop the\nothers; the exit status is then 3.");
}

void CheckCommand::SelectRules()
{
    m_isSelected.assign(Rules().size(), m_ruleIds.empty());
    for (const CString& id : m_ruleIds) {
        const RuleEntry* rule = FindRule(id);
        if (rule == nullptr) {
            CString known;
            for (const RuleEntry& entry : Rules()) {
                known.append(known.empty() ? L"" : L", ").append(entry.id);
            }
            throw UsageError(FormatText(L"there is no rule '%s': there are %s", {id, known}));
        }
        m_isSelected[static_cast<std::size_t>(rule->rule)] = true;
    }
}

ExitStatus CheckCommand::Run(Console& console)
{
    if (m_verifyCache && m_host.cache.empty()) {
        throw UsageError(L"--verify-cache needs --cache DIR: the folder whose values are verified");
    }
    SelectRules();
    for (const CString& path : m_paths) {
        RequireNotRead(m_output, path);
    }
    FamilyHost host(m_host);
    Results results(console, m_output);
    const std::unique_ptr<FindingWriter> writer = kWriters[m_format](results);
    CheckTotals totals;
    writer->Begin();
    for (const CString& path : m_paths) {
        try {
            Check(path, host, *writer, totals);
        } catch (const FileError& error) {
            ++totals.unread;
            console.Message(error.what());
            writer->WriteUnread(path, platform::Utf8ToWide(error.what()));
        }
    }
    writer->End(totals);
    results.Finish();
    return StatusOf(totals);
}

void CheckCommand::Check(const CString& path, FamilyHost& host, FindingWriter& writer,
                         CheckTotals& totals)
{
    CheckOptions options;
    options.verifyCache = m_verifyCache;
    OpenFamily family(path, {}, host, &options.stringsProblems);
    FindingCounts counts;
    writer.BeginFamily(path);
    CheckFamily(family, options, [&](const Finding& finding) {
        if (m_isSelected[static_cast<std::size_t>(finding.rule)]) {
            counts.Count(finding.Entry().severity);
            totals.findings.Count(finding.Entry().severity);
            writer.Write(finding);
        }
    });
    writer.EndFamily(counts);
    ++totals.families;
}

ExitStatus CheckCommand::StatusOf(const CheckTotals& totals) const
{
    if (totals.unread > 0) {
        return ExitStatus::Failed;
    }
    const bool hasFailed =
        totals.findings.errors > 0 || (m_failOn == 1 && totals.findings.warnings > 0);
    return hasFailed ? ExitStatus::Findings : ExitStatus::Done;
}

} // namespace

std::unique_ptr<Command> MakeCheckCommand()
{
    return std::make_unique<CheckCommand>();
}

} // namespace encap::cli
