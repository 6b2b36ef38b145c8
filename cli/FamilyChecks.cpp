#include "cli/FamilyChecks.h"

#include "cli/check/FamilyCheck.h"

namespace encap::cli {
namespace {

// In the order in which the findings of one place stand.
constexpr MakeFamilyCheck kChecks[] = {
    MakeStringsCheck, MakeMappingCheck, MakeIdCheck,   MakeFormulaCheck,
    MakeCycleCheck,   MakeRangeCheck,   MakeCellCheck, MakeKeyCheck,
};

} // namespace

void CheckFamily(OpenFamily& family, const CheckOptions& options, const FindingSink& sink)
{
    const CheckedFamily checked(family, options);
    const FindingReport report(sink);
    std::vector<std::unique_ptr<FamilyCheck>> checks;
    for (const MakeFamilyCheck make : kChecks) {
        checks.push_back(make(checked));
        checks.back()->Begin(report);
    }
    for (const CheckedColumn& column : checked.Columns()) {
        for (const auto& check : checks) {
            check->VisitColumn(column, report);
        }
    }
    // The library's table is the first of them, with or without rows.
    XMLNode table;
    XMLNode rows;
    family.Family().GetFamilyXML().GetRootNode().GetChildNode(L"FamilyTable", table);
    table.GetChildNode(L"Rows", rows);
    RowReader reader(checked);
    CheckedRow row;
    ForEachChild(rows, L"Row", [&](const XMLNode& element) {
        reader.Read(element, row);
        for (const auto& check : checks) {
            check->VisitRow(row, report);
        }
    });
}

std::vector<Finding> CheckFamilyFile(const CString& path, FamilyHost& host)
{
    CheckOptions options;
    OpenFamily family(path, {}, host, &options.stringsProblems);
    std::vector<Finding> findings;
    CheckFamily(family, options, [&](const Finding& finding) { findings.push_back(finding); });
    return findings;
}

} // namespace encap::cli
