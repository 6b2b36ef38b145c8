#pragma once

#include <string>

// A deterministic family document for measurements: 24 columns (the row's ID, a size text, twelve
// numbers, eight numeric formulas in chains of up to four, two text formulas), two in a hundred of
// the formula cells overridden. The document holds literals and overrides only: about 14.2 cells a
// row.
namespace bench {

struct TableShape {
    int rows = 10'000;
    /// The size text stands in the strings document of "en", one text a row.
    bool localizedSizes = false;
};

inline constexpr int kColumnCount = 24;
inline constexpr int kFormulaColumnCount = 10;

/// The family document as UTF-8, without a declaration.
[[nodiscard]] std::string GenerateFamily(const TableShape& shape);
/// The same table for a spreadsheet: CSV without a heading, formulas over the columns A to X.
[[nodiscard]] std::string GenerateSheet(const TableShape& shape);
/// The strings document of "en" that goes with it.
[[nodiscard]] std::string GenerateStrings(const TableShape& shape);

} // namespace bench
