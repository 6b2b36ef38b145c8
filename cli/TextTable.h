#pragma once

#include "encap/foundation/Types.h"

#include <string>
#include <string_view>
#include <vector>

namespace encap::cli {

class Results;

/// A table for people: columns aligned by the width that their texts have on a terminal. Filled
/// cell by cell, printed once all widths are known.
class TextTable {
public:
    enum class Alignment { Left, Right };

    /// A column with its heading: one text a line, of which later lines are left out when no column
    /// has one. REQUIRES: no cell was added.
    void AddColumn(Alignment alignment, const std::vector<CString>& heading);
    /// The next cell, row by row. REQUIRES: there are columns.
    void AddCell(std::wstring_view text);
    /// The cells' rows, below the headings and a rule when there are headings. REQUIRES: the last
    /// row is complete.
    void Print(Results& results) const;

private:
    struct Cell {
        std::size_t offset = 0; ///< into m_text
        std::size_t bytes = 0;
        std::size_t width = 0;
    };
    struct Column {
        Alignment alignment = Alignment::Left;
        std::vector<Cell> heading;
        std::size_t width = 0;
    };

    Cell Enter(std::wstring_view text, Column& column);
    void AppendCell(std::string& out, const Cell& cell, const Column& column) const;
    void PrintHeading(std::string& out) const;

    std::string m_text;
    std::vector<Column> m_columns;
    std::vector<Cell> m_cells;
};

} // namespace encap::cli
