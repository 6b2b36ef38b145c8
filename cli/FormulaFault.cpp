#include "cli/FormulaFault.h"

#include "cli/ColumnFacts.h"
#include "cli/FailureReport.h"
#include "cli/FormulaText.h"
#include "cli/OpenFamily.h"
#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/NumberText.h"
#include "encap/foundation/TextFormat.h"
#include "encap/table/FamilyTable.h"

#include <algorithm>
#include <deque>
#include <map>
#include <numeric>

namespace encap::cli {
namespace {

/// Longer IDs are like no other: comparing them would cost too much.
constexpr std::size_t kLongestCompared = 100;

/// The number of characters to add, drop or replace to turn one text into the other (Levenshtein's
/// distance).
std::size_t DistanceOf(const CString& left, const CString& right)
{
    std::vector<std::size_t> costs(right.size() + 1);
    std::iota(costs.begin(), costs.end(), std::size_t{0});
    for (const wchar_t character : left) {
        std::size_t diagonal = costs[0]++;
        for (std::size_t k = 0; k < right.size(); ++k) {
            const std::size_t replace = diagonal + (character == right[k] ? 0U : 1U);
            diagonal = costs[k + 1];
            costs[k + 1] = std::min({replace, costs[k] + 1, costs[k + 1] + 1});
        }
    }
    return costs.back();
}

bool IsSimilar(const CString& id, const CString& foldedWrong)
{
    if (id.size() > kLongestCompared || foldedWrong.size() > kLongestCompared) {
        return false;
    }
    const CString folded = FoldCase(id);
    const bool isPart = foldedWrong.size() > 1 && (folded.find(foldedWrong) != CString::npos ||
                                                   foldedWrong.find(folded) == 0);
    return isPart ||
           DistanceOf(folded, foldedWrong) <= std::max<std::size_t>(1, foldedWrong.size() / 3);
}

CString Listed(const std::vector<CString>& ids)
{
    constexpr std::size_t kMost = 20;
    CString list;
    for (std::size_t i = 0; i < ids.size() && i < kMost; ++i) {
        list.append(list.empty() ? L"" : L", ").append(Shortened(ids[i]));
    }
    return list + (ids.size() > kMost ? L", ..." : L"");
}

CString PlaceOf(const BraceFault& fault)
{
    return FormatText(L"the \"%s\" at character %d has no partner",
                      {CString(1, fault.brace), static_cast<int32_t>(fault.position + 1)});
}

CString UnknownColumns(const OpenFamily& family, const CString& formula)
{
    for (const CString& id : ReferencesOf(formula)) {
        if (family.Table().GetFamilyColumnByID(id.c_str()) == nullptr) {
            return FormatText(L"there is no column \"%s\"; %s", {id, SuggestColumns(family, id)});
        }
    }
    return {};
}

/// The first column of a type that formulas of another one do not take.
CString UnfitReference(const OpenFamily& family, const CEncapFamilyColumn& column,
                       const CString& formula)
{
    if (!HoldsNumbers(column)) {
        return {};
    }
    for (const CString& id : ReferencesOf(formula)) {
        const CEncapFamilyColumn& other = *family.Table().GetFamilyColumnByID(id.c_str());
        const bool isWidened = column.GetDataType() == DataTypes::ColumnDataTypeReal &&
                               other.GetDataType() == DataTypes::ColumnDataTypeInteger;
        if (other.GetDataType() != column.GetDataType() && !isWidened) {
            return FormatText(L"column %s is of the type %s, a formula of the type %s cannot refer "
                              L"to it",
                              {IdOf(other), TypeWordOf(other), TypeWordOf(column)});
        }
    }
    return {};
}

/// The columns whose formulas refer to a column, in table order.
std::vector<CEncapFamilyColumn*> Dependents(const OpenFamily& family,
                                            const CEncapFamilyColumn& column)
{
    std::vector<CEncapFamilyColumn*> ordered;
    for (CEncapFamilyColumn* other : ColumnsOf(family.Table())) {
        if (column.GetDependantColumns().contains(other)) {
            ordered.push_back(other);
        }
    }
    return ordered;
}

/// The shortest way on which the formula would lead back to its column: "A -> C -> B -> A", each
/// referring to the next.
CString CycleOf(const OpenFamily& family, CEncapFamilyColumn& column, const CString& formula)
{
    std::map<CEncapFamilyColumn*, CEncapFamilyColumn*> cameFrom{{&column, nullptr}};
    std::deque<CEncapFamilyColumn*> open{&column};
    std::vector<CEncapFamilyColumn*> references;
    for (const CString& id : ReferencesOf(formula)) {
        references.push_back(family.Table().GetFamilyColumnByID(id.c_str()));
    }
    while (!open.empty()) {
        CEncapFamilyColumn* const current = open.front();
        open.pop_front();
        if (std::find(references.begin(), references.end(), current) != references.end()) {
            CString path = IdOf(column);
            for (CEncapFamilyColumn* step = current; step != nullptr; step = cameFrom[step]) {
                path += L" -> " + IdOf(*step);
            }
            return path;
        }
        for (CEncapFamilyColumn* next : Dependents(family, *current)) {
            if (cameFrom.emplace(next, current).second) {
                open.push_back(next);
            }
        }
    }
    return {};
}

CString DetailOf(const OpenFamily& family, CEncapFamilyColumn& column, const CString& formula,
                 CTableEvaluator::EvaluateResult result)
{
    if (const auto fault = FindBraceFault(formula)) {
        return PlaceOf(*fault);
    }
    if (result == CTableEvaluator::EvaluateCircularReference) {
        return CycleOf(family, column, formula);
    }
    if (CString unknown = UnknownColumns(family, formula); !unknown.empty()) {
        return unknown;
    }
    if (CString unfit = UnfitReference(family, column, formula); !unfit.empty()) {
        return unfit;
    }
    if (const FailedQuestion* cause = family.Provider().LastFailure()) {
        return FormatText(L"asked to %s: %s", {cause->text, cause->reason});
    }
    return result == CTableEvaluator::EvaluateTypeMismatch
               ? L"its values are of the type " + TypeWordOf(column)
               : CString();
}

bool IsRawColumn(const CEncapFamilyColumn& column)
{
    return column.IsStatusColumn() || EqualNoCase(IdOf(column), L"RID");
}

[[noreturn]] void RefuseCellText(const OpenFamily& family, const CString& rowId,
                                 const CEncapFamilyColumn& column, const CString& text,
                                 const CString& reason)
{
    throw RefusedEdit(family, FormatText(L"row %s, column %s does not take the value \"%s\": %s",
                                         {rowId, IdOf(column), text, reason}));
}

} // namespace

RefusedEdit::RefusedEdit(const OpenFamily& family, std::wstring_view reason)
    : CommandError(ExitStatus::Findings,
                   family.File().Path() + L": " + CString(reason) + L"; nothing was changed")
{
}

CString SuggestColumns(const OpenFamily& family, const CString& wrong)
{
    const std::vector<CString>& all = family.Table().GetAllColumnIDs();
    const CString folded = FoldCase(wrong);
    std::vector<CString> similar;
    std::copy_if(all.begin(), all.end(), std::back_inserter(similar),
                 [&](const CString& id) { return IsSimilar(id, folded); });
    if (!similar.empty()) {
        return L"similar: " + Listed(similar);
    }
    return all.empty() ? CString(L"the table has no columns") : L"there are " + Listed(all);
}

CString FaultOfFormula(const OpenFamily& family, CEncapFamilyColumn& column, const CString& formula,
                       CTableEvaluator::EvaluateResult result)
{
    const CString detail = DetailOf(family, column, formula, result);
    return FormatText(L"result %d, %s",
                      {static_cast<int32_t>(result), CString(SentenceOf(result))}) +
           (detail.empty() ? CString() : L": " + detail);
}

void SetCheckedFormula(OpenFamily& family, CEncapFamilyColumn& column, const CString& formula)
{
    if (formula.empty()) {
        column.SetEmptyFormula();
        return;
    }
    family.Provider().Forget();
    const auto result = column.SetFormula(formula.c_str(), family.Language().c_str());
    if (result != CTableEvaluator::EvaluateOK) {
        throw RefusedEdit(family, FormatText(L"column %s does not take the formula \"%s\": %s",
                                             {IdOf(column), formula,
                                              FaultOfFormula(family, column, formula, result)}));
    }
}

void CheckCellText(OpenFamily& family, const CString& rowId, CEncapFamilyColumn& column,
                   const CString& text)
{
    if (text.empty() || IsRawColumn(column)) {
        return;
    }
    if (TrimView(text).empty()) {
        RefuseCellText(family, rowId, column, text, L"documents keep no text of blanks only");
    }
    const bool isFormula = text.find_first_of(L"{}") != CString::npos;
    const bool fits =
        family.Table().IsCellValueValid(rowId.c_str(), IdOf(column).c_str(), text.c_str());
    if (fits && !isFormula) {
        return;
    }
    if (column.IsCustom()) {
        if (!fits) {
            RefuseCellText(family, rowId, column, text,
                           L"it is none of the column's range " + FormulaOf(column));
        }
        return;
    }
    // The check puts numbers without a unit in for references: what it refuses may have a value in
    // the row all the same.
    family.Provider().Forget();
    const auto result = family.Table().CheckFormulaSyntax(
        text.c_str(), DataTypes::NormalFormula, column.GetDataType(), UnitOf(column).c_str());
    CString value;
    if (result != CTableEvaluator::EvaluateOK &&
        family.Table().Evaluate(text.c_str(), DataTypes::NormalFormula, column.GetDataType(),
                                rowId.c_str(), UnitOf(column).c_str(),
                                value) != CTableEvaluator::EvaluateOK) {
        RefuseCellText(family, rowId, column, text, FaultOfFormula(family, column, text, result));
    }
}

} // namespace encap::cli
