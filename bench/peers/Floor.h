#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

// What the generated table costs a program that knows its formulas beforehand: no documents kept,
// no look-ups by name, no units, no edits. Its times are what the library's are compared with.
namespace bench {

inline constexpr int kFloorColumns = 24;
inline constexpr int kFloorLiterals = 14;

/// The table as columns of texts and numbers.
struct FloorTable {
    /// The cells' texts of the document, one after the other.
    std::string characters;
    struct Span {
        uint32_t offset = 0;
        uint32_t length = 0;
    };
    /// By column, then by row; an absent cell has no length.
    std::array<std::vector<Span>, kFloorColumns> texts;
    std::array<std::vector<double>, kFloorColumns> numbers;
    int rows = 0;
};

/// Reads the generated family document with expat; false when it does not parse.
[[nodiscard]] bool ReadFloorTable(std::string_view family, FloorTable& out);

/// The value texts of all cells, column after column.
struct FloorValues {
    std::array<std::string, kFloorColumns> characters;
    /// By column: where each row's text ends.
    std::array<std::vector<uint32_t>, kFloorColumns> ends;
};

/// Computes every cell: arithmetic in loops over columns, numbers in eight significant digits.
void EvaluateFloorTable(FloorTable& table, FloorValues& out);

/// The values as CSV with a heading, in memory.
[[nodiscard]] std::string WriteFloorCsv(const FloorValues& values, int rows);

} // namespace bench
