#include "cli/FormulaText.h"

#include "encap/foundation/CaseFolding.h"
#include "encap/foundation/TextFormat.h"

namespace encap::cli {
namespace {

/// Visits the trimmed text between each pair of braces; the fault where they do not pair up.
template <class Visitor>
std::optional<BraceFault> ForEachReference(const CString& formula, Visitor visit)
{
    std::size_t end = 0;
    while (true) {
        const std::size_t open = formula.find_first_of(L"{}", end);
        if (open == CString::npos) {
            return std::nullopt;
        }
        const std::size_t close = formula.find(L'}', open + 1);
        if (formula[open] == L'}' || close == CString::npos) {
            return BraceFault{formula[open], open};
        }
        visit(TrimView(std::wstring_view(formula).substr(open + 1, close - open - 1)));
        end = close + 1;
    }
}

} // namespace

std::optional<BraceFault> FindBraceFault(const CString& formula)
{
    return ForEachReference(formula, [](std::wstring_view) {});
}

std::vector<CString> ReferencesOf(const CString& formula)
{
    std::vector<CString> references;
    const auto fault = ForEachReference(
        formula, [&](std::wstring_view reference) { references.emplace_back(reference); });
    return fault ? std::vector<CString>() : references;
}

CString RenameReferences(const CString& formula, const CString& from, const CString& to)
{
    CString renamed;
    std::size_t copied = 0;
    const auto fault = ForEachReference(formula, [&](std::wstring_view reference) {
        if (EqualNoCase(reference, from)) {
            const auto position = static_cast<std::size_t>(reference.data() - formula.data());
            renamed.append(formula, copied, position - copied);
            renamed += to;
            copied = position + reference.size();
        }
    });
    return fault ? formula : renamed.append(formula, copied);
}

} // namespace encap::cli
