#include "cli/TocCommand.h"

#include "cli/Console.h"
#include "cli/Options.h"
#include "cli/Paths.h"
#include "cli/Results.h"
#include "cli/TocFile.h"
#include "cli/TocReport.h"

namespace encap::cli {
namespace {

enum Format : int { kText, kJson };

class TocCommand : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    void PrintTree(CToc& toc, Results& results) const;
    void PrintFamilies(CToc& toc, Results& results) const;

    CString m_path;
    TocTreeOptions m_tree;
    CString m_family;
    int m_format = kText;
    CString m_output;
};

void TocCommand::Declare(Options& options)
{
    options.Argument(m_path, "TOC.xml", "The table of contents");
    options.Choice(m_format, "--format", {"text", "json"}, "What to print (default: text)");
    options.Text(m_tree.category, "--category", "NAME",
                 "Only the categories of that internal name or display name, with what is in them");
    options.Text(m_family, "--family", "NAME",
                 "The properties of the families of that internal name, display name or folder "
                 "name, and their categories");
    options.Flag(m_tree.withHidden, "--hidden", "Show hidden categories too");
    options.Text(m_output, "-o,--output", "FILE", "Write to this file instead of standard output");
    options.Footer("Names that are used twice and references to families that are not listed are "
                   "told on standard\nerror; the exit status is then 1.");
}

ExitStatus TocCommand::Run(Console& console)
{
    if (!m_family.empty() && !m_tree.category.empty()) {
        throw UsageError(L"--family and --category cannot be used together");
    }
    CToc toc = ReadToc(m_path);
    RequireNotRead(m_output, m_path);
    Results results(console, m_output);
    m_family.empty() ? PrintTree(toc, results) : PrintFamilies(toc, results);
    results.Finish();
    const std::vector<CString> problems = ProblemsOf(toc);
    for (const CString& problem : problems) {
        console.Message(m_path + L": " + problem);
    }
    return problems.empty() ? ExitStatus::Done : ExitStatus::Findings;
}

void TocCommand::PrintTree(CToc& toc, Results& results) const
{
    ShownToc shown{ReadTocTree(toc, m_tree), {}};
    if (m_tree.category.empty()) {
        shown.withoutCategory = FamiliesWithoutCategory(toc);
    } else if (shown.branches.empty()) {
        throw UsageError(m_path + L": there is no category '" + m_tree.category + L"'");
    }
    m_format == kJson ? PrintTocJson(m_path, shown, results) : PrintTocText(shown, results);
}

void TocCommand::PrintFamilies(CToc& toc, Results& results) const
{
    std::vector<ShownFamily> families;
    for (const XMLNode& entry : FindFamilies(toc, m_family)) {
        families.push_back({entry, CategoryPathsOf(toc, InternalNameOf(entry), m_tree.withHidden)});
    }
    if (families.empty()) {
        throw UsageError(m_path + L": there is no family '" + m_family + L"'");
    }
    m_format == kJson ? PrintFamiliesJson(m_path, families, results)
                      : PrintFamiliesText(families, results);
}

} // namespace

std::unique_ptr<Command> MakeTocCommand()
{
    return std::make_unique<TocCommand>();
}

} // namespace encap::cli
