#include "cli/TableCommand.h"

#include "cli/CellReader.h"
#include "cli/OpenFamily.h"
#include "cli/Options.h"
#include "cli/Results.h"
#include "cli/TableFormats.h"

#include <future>
#include <optional>

namespace encap::cli {
namespace {

enum Format : int { kText, kCsv, kJson, kXml };

class TableCommand : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    CString m_path;
    FamilyOptions m_family;
    HostOptions m_host;
    // What was opened stays with the command.
    std::optional<FamilyHost> m_openHost;
    std::optional<OpenFamily> m_openFamily;
    int m_format = kText;
    CString m_output;
};

void TableCommand::Declare(Options& options)
{
    options.Argument(m_path, "FAMILY.xml", "The family document");
    options.Choice(m_format, "--format", {"text", "csv", "json", "xml"},
                   "What to print (default: text)");
    m_family.Declare(options);
    m_host.Declare(options);
    options.Text(m_output, "-o,--output", "FILE", "Write to this file instead of standard output");
    options.Footer("A cell that has no value is printed as # and its result code, and is told on "
                   "standard error\nwith the reason; the exit status is then 1.");
}

ExitStatus TableCommand::Run(Console& console)
{
    FamilyHost& host = m_openHost.emplace(m_host);
    // Reading the units takes as long as reading 500 rows, and hardly a table does without.
    auto units = std::async([&host] { host.ReadUnits(); });
    // A family with a cache saves its values when it closes, however this ends.
    std::optional<OpenFamily> closing;
    OpenFamily& family = (host.HasCache() ? closing : m_openFamily).emplace(m_path, m_family, host);
    units.get();
    family.File().RequireNotRead(m_output);
    Results results(console, m_output);
    CellReader cells(family, console);
    switch (m_format) {
    case kCsv: PrintTableCsv(cells, results); break;
    case kJson: PrintTableJson(cells, family, results); break;
    case kXml: PrintTableXml(cells, family, results); break;
    default: PrintTableText(cells, family, results);
    }
    results.Finish();
    cells.Failures().Summarize(cells.RowIds().size() * cells.Columns().size());
    return cells.Failures().Status();
}

} // namespace

std::unique_ptr<Command> MakeTableCommand()
{
    return std::make_unique<TableCommand>();
}

} // namespace encap::cli
