#include "cli/BatchCommand.h"

#include "cli/FamilyRecord.h"
#include "cli/JsonWriter.h"
#include "cli/ManyFamilies.h"
#include "cli/Options.h"
#include "cli/Results.h"

#include <algorithm>

namespace encap::cli {
namespace {

/// What all families of a run come to.
class BatchSummary {
public:
    void Add(const FamilyRecord& record);
    /// One line. A time below 0 is left out.
    [[nodiscard]] std::string Text(double seconds) const;
    [[nodiscard]] ExitStatus Status(bool warningsCount) const;

private:
    void AppendCounts(std::string& text) const;

    std::size_t m_families = 0;
    std::size_t m_notOpened = 0;
    std::size_t m_rows = 0;
    std::size_t m_cells = 0;
    std::size_t m_withProblem = 0;
    std::size_t m_failedCells = 0;
    std::size_t m_unitlessCells = 0;
    std::size_t m_errors = 0;
    std::size_t m_warnings = 0;
};

void BatchSummary::Add(const FamilyRecord& record)
{
    ++m_families;
    m_notOpened += record.WasOpened() ? 0 : 1;
    m_rows += record.rows;
    m_cells += record.Cells();
    m_withProblem += record.problem.empty() ? 0 : 1;
    m_failedCells += record.Failed();
    m_unitlessCells += record.Unitless();
    m_errors += record.errors;
    m_warnings += record.warnings;
}

std::string BatchSummary::Text(double seconds) const
{
    std::string text = CountedText(m_families, "family", "families");
    text.append(", ").append(CountedText(m_rows, "member", "members"));
    text.append(", ").append(CountedText(m_cells, "cell", "cells"));
    if (seconds >= 0) {
        text.append(" in ").append(SecondsText(seconds)).append(" (");
        text.append(RateText(static_cast<double>(m_families), seconds)).append(" families/s, ");
        text.append(RateText(static_cast<double>(m_cells), seconds)).append(" cells/s)");
    }
    AppendCounts(text);
    return text;
}

void BatchSummary::AppendCounts(std::string& text) const
{
    const char* separator = "; ";
    const auto add = [&](std::size_t count, const char* one, const char* many) {
        if (count > 0) {
            text.append(separator).append(CountedText(count, one, many));
            separator = ", ";
        }
    };
    add(m_errors, "error", "errors");
    add(m_warnings, "warning", "warnings");
    add(m_failedCells, "cell has no value", "cells have no value");
    add(m_unitlessCells, "cell was computed without units", "cells were computed without units");
    if (m_withProblem > 0) {
        text.append(" in ").append(CountedText(m_withProblem, "family", "families"));
    }
    add(m_notOpened, "family was not opened", "families were not opened");
}

ExitStatus BatchSummary::Status(bool warningsCount) const
{
    if (m_notOpened > 0) {
        return ExitStatus::Failed;
    }
    const bool isWrong =
        m_errors + m_failedCells + m_unitlessCells > 0 || (warningsCount && m_warnings > 0);
    return isWrong ? ExitStatus::Findings : ExitStatus::Done;
}

enum FailOn : int { kError, kWarning };

class BatchCommand : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    void Tell(const FamilyRecord& record, Console& console) const;

    std::vector<CString> m_paths;
    ManyFamiliesOptions m_families;
    RecordOptions m_record;
    int m_failOn = kError;
    bool m_noTimes = false;
    CString m_output;
};

void BatchCommand::Declare(Options& options)
{
    options.Arguments(m_paths, "PATH...",
                      "Family documents, folders of them, tables of contents, patterns in quotes");
    m_families.Declare(options);
    options.Flag(m_record.isCheck, "--check",
                 "Run the checks of encap check instead of evaluating one language");
    options.Choice(m_failOn, "--fail-on", {"error", "warning"},
                   "With --check: findings that make the exit status 1 (default: error)");
    options.Flag(m_noTimes, "--no-times", "Leave out the times: equal runs print equal bytes");
    options.Text(m_output, "-o,--output", "FILE", "Write to this file instead of standard output");
    options.Footer("Prints a line of JSON for each family, in the order of their paths. What is "
                   "wrong with a\nfamily, and at the end what all come to, goes to standard "
                   "error. The exit status is 3 when\na family could not be opened, else 1 when "
                   "something is wrong in one.");
}

ExitStatus BatchCommand::Run(Console& console)
{
    const std::vector<ListedFamily> families = ListFamilies(m_paths, m_families.list);
    m_record.language = m_families.language;
    RequireOutput(m_output, m_paths, families);
    Results results(console, m_output);
    BatchSummary summary;
    const auto work = [this](const ListedFamily& family, FamilyHost& host) {
        return MakeFamilyRecord(family, m_record, host);
    };
    const auto take = [&](const FamilyRecord& record) {
        summary.Add(record);
        JsonWriter line(results.Text());
        WriteFamilyRecord(line, record, m_record, !m_noTimes);
        results.Text() += '\n';
        results.PassNow();
        Tell(record, console);
    };
    const double seconds = ForEachFamily<FamilyRecord>(families, m_families, console, work, take);
    results.Finish();
    console.Message(summary.Text(m_noTimes ? -1.0 : seconds));
    return summary.Status(m_failOn == kWarning);
}

// Warnings that do not count are in the records only: most families of a library may have some.
void BatchCommand::Tell(const FamilyRecord& record, Console& console) const
{
    const bool hasWarningsOnly = record.warnings > 0 && record.errors == 0;
    const CString sentence = record.Sentence();
    if (!sentence.empty() && !(hasWarningsOnly && m_failOn == kError)) {
        console.Message(sentence);
    }
}

} // namespace

std::unique_ptr<Command> MakeBatchCommand()
{
    return std::make_unique<BatchCommand>();
}

} // namespace encap::cli
