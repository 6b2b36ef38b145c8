#include "cli/check/Rules.h"

#include <algorithm>
#include <cstddef>

namespace encap::cli {
namespace {

constexpr Severity kError = Severity::Error;
constexpr Severity kWarning = Severity::Warning;

constexpr RuleEntry kRules[] = {
    {Rule::StringsMissing, L"strings-missing", kError,
     L"a strings document that the family names is missing, or does not parse", L"%s",
     L"Put the file where the family names it, or take its reference out of \"FamilyStrings\"."},
    {Rule::StringsIncomplete, L"strings-incomplete", kWarning,
     L"a text is there in one language and not in another",
     L"the %s is there in %s and missing in %s", L"Add the text in the languages that lack it."},
    {Rule::StringsUnknown, L"strings-unknown", kWarning,
     L"a strings document has texts for a column or a row that there is not",
     L"the strings have texts for a %s that there is not",
     L"Remove the texts, or correct the ID that they name; IDs are compared exactly there."},
    {Rule::IdDuplicate, L"id-duplicate", kError,
     L"two columns or two rows have one ID, without regard to case, or a row has two cells of one "
     L"column",
     L"%s", L"Give every column and every row an ID of its own, and a row one cell a column."},
    {Rule::IdMissing, L"id-missing", kError, L"a column, a row or a cell has no ID", L"%s",
     L"Give it its ID, or remove it."},
    {Rule::FormulaSyntax, L"formula-syntax", kError, L"the braces of a formula do not pair up",
     L"in \"%s\" the \"%s\" at character %d has no partner",
     L"Close every { of the formula with a }."},
    {Rule::FormulaRefused, L"formula-refused", kError,
     L"the host does not take a column's formula, and no row gets a value from it",
     L"the formula \"%s\" gives no row a value: %s",
     L"Correct the formula, or the type or the unit of the column."},
    {Rule::ReferenceUnknown, L"reference-unknown", kError,
     L"a formula refers to a column that there is not",
     L"\"%s\" refers to {%s}, and there is no such column; %s",
     L"Correct the ID in braces, or add the column."},
    {Rule::ReferenceCycle, L"reference-cycle", kError, L"a formula depends on itself",
     L"the value depends on itself: %s", L"Change one of the formulas on the path."},
    {Rule::UnitPower, L"unit-power", kWarning,
     L"a \"^\" stands directly behind a reference to a column with a unit",
     L"in \"%s\" a \"^\" stands directly behind {%s}, whose value goes in with its unit %s: write "
     L"({%s})^%s",
     L"Put the reference into parentheses: ({D})^2."},
    {Rule::RangeParts, L"range-parts", kError,
     L"the parts of a range contradict each other, or have no value", L"%s",
     L"Correct the range [minimum;maximum;step;default]."},
    {Rule::RangeValue, L"range-value", kError,
     L"a value of a custom column is outside of its range, or off the grid of its steps",
     L"the value %s does not fit the range %s: it is %s",
     L"Choose a value of the range, or change the range."},
    {Rule::CustomFileName, L"custom-file-name", kWarning,
     L"the file name of a custom part does not depend on a custom column, so that two parts can "
     L"get "
     L"one name",
     L"%s", L"Let the formula of the file name refer to every custom column."},
    {Rule::MappingBroken, L"mapping-broken", kWarning,
     L"an entry of the templates or of the maps has no effect", L"%s",
     L"Correct the entry, or remove it; encap info --mapping shows all of them."},
    {Rule::CellUnknownColumn, L"cell-unknown-column", kError,
     L"a cell is for a column that there is not", L"there is no column %s; %s",
     L"Remove the cell, or correct its ColumnId; it is compared exactly."},
    {Rule::ExpressionOverride, L"expression-override", kWarning,
     L"a row has a text of its own in a column with a formula",
     L"the row's own \"%s\" takes the place of the formula \"%s\"",
     L"Clear the cell if the row is to follow the formula."},
    {Rule::CellFails, L"cell-fails", kError, L"a cell has no value", L"%s",
     L"Correct the text that the cell is computed from, or the cells that it refers to."},
    {Rule::CellUnitless, L"cell-unitless", kWarning, L"a cell was computed without units", L"%s",
     L"Write the formula so that its units fit together; a power as ({D})^2."},
    {Rule::KeyDuplicate, L"key-duplicate", kError,
     L"two rows have the same values of all key "
     L"columns",
     L"the key %s is that of row %s already", L"Change a value of the key, or remove one row."},
    {Rule::CacheDiffers, L"cache-differs", kError,
     L"a value of the cache is not the one that the cell has (--verify-cache)",
     L"the cache has \"%s\", the cell %s", L"Nothing: the cache has been corrected."},
};

constexpr bool IsInOrder()
{
    for (std::size_t i = 0; i < std::size(kRules); ++i) {
        if (kRules[i].rule != static_cast<Rule>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(IsInOrder());

} // namespace

std::span<const RuleEntry> Rules()
{
    return kRules;
}

const RuleEntry& EntryOf(Rule rule)
{
    return kRules[static_cast<std::size_t>(rule)];
}

const RuleEntry* FindRule(std::wstring_view id)
{
    const auto* found = std::find_if(std::begin(kRules), std::end(kRules),
                                     [&](const RuleEntry& entry) { return entry.id == id; });
    return found != std::end(kRules) ? found : nullptr;
}

const wchar_t* WordOf(Severity severity)
{
    return severity == Severity::Error ? L"error" : L"warning";
}

} // namespace encap::cli
