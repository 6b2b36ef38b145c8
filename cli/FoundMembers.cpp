#include "cli/FoundMembers.h"

#include "cli/ColumnFacts.h"
#include "cli/Condition.h"
#include "cli/Designation.h"
#include "cli/ManyFamilies.h"
#include "cli/OpenFamily.h"
#include "encap/foundation/NumberText.h"
#include "encap/table/FamilyTable.h"

#include <utility>

namespace encap::cli {
namespace {

void AskMembers(OpenFamily& family, FamilyCondition& condition, FoundMembers& found)
{
    const Designation designation(family);
    std::vector<CString> values;
    CString failure;
    for (const CString& rowId : family.Table().GetAllRowIDs()) {
        const std::optional<bool> holds = condition.Holds(rowId, values, failure);
        if (!holds) {
            found.problem = found.unjudged++ == 0 ? failure : found.problem;
        } else if (*holds) {
            found.members.push_back({rowId, family.Table().IsRowSuppressed(rowId.c_str()),
                                     designation.Of(rowId), values});
        }
    }
}

void Fill(FoundMembers& found, const Condition& condition, const std::optional<CString>& language,
          FamilyHost& host)
{
    OpenFamily family(found.file, {{}, language}, host);
    family.Family().GetDisplayName(found.displayName);
    family.Family().GetInternalName(found.internalName);
    FamilyCondition asked(condition, family);
    found.hasColumns = asked.HasColumns();
    if (!found.hasColumns) {
        return;
    }
    for (const CEncapFamilyColumn* column : asked.Columns()) {
        const CString unit = UnitOf(*column);
        found.units.push_back(unit == L"ul" ? CString() : unit);
    }
    found.problem = asked.Misfit();
    if (found.problem.empty()) {
        AskMembers(family, asked, found);
    }
}

} // namespace

CString FoundMembers::Sentence() const
{
    if (!failure.empty() || problem.empty()) {
        return failure;
    }
    const CString count = FormatInteger(static_cast<int64_t>(unjudged));
    const CString others = unjudged > 1 ? count + L" members cannot be judged; the first: " : L"";
    return file + L": " + others + problem;
}

FoundMembers FindMembers(const ListedFamily& family, const Condition& condition,
                         const std::optional<CString>& language, FamilyHost& host)
{
    FoundMembers found;
    found.file = family.path;
    found.failure = family.problem;
    if (!found.failure.empty()) {
        return found;
    }
    found.failure = FailureOf(family, [&] { Fill(found, condition, language, host); });
    return found;
}

} // namespace encap::cli
