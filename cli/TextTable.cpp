#include "cli/TextTable.h"

#include "cli/DisplayText.h"
#include "cli/Results.h"

#include <algorithm>

namespace encap::cli {
namespace {

constexpr std::size_t kGap = 2;

void EndLine(std::string& out)
{
    out.erase(out.find_last_not_of(' ') + 1);
    out += '\n';
}

} // namespace

void TextTable::AddColumn(Alignment alignment, const std::vector<CString>& heading)
{
    Column column;
    column.alignment = alignment;
    for (const CString& line : heading) {
        column.heading.push_back(Enter(line, column));
    }
    m_columns.push_back(std::move(column));
}

void TextTable::AddCell(std::wstring_view text)
{
    m_cells.push_back(Enter(text, m_columns[m_cells.size() % m_columns.size()]));
}

TextTable::Cell TextTable::Enter(std::wstring_view text, Column& column)
{
    Cell cell;
    cell.offset = m_text.size();
    cell.width = AppendForDisplay(m_text, text);
    cell.bytes = m_text.size() - cell.offset;
    column.width = std::max(column.width, cell.width);
    return cell;
}

void TextTable::AppendCell(std::string& out, const Cell& cell, const Column& column) const
{
    const std::size_t blanks = column.width - cell.width;
    if (column.alignment == Alignment::Right) {
        out.append(blanks, ' ');
    }
    out.append(m_text, cell.offset, cell.bytes);
    if (column.alignment == Alignment::Left) {
        out.append(blanks, ' ');
    }
    out.append(kGap, ' ');
}

void TextTable::PrintHeading(std::string& out) const
{
    std::size_t lines = 0;
    for (const Column& column : m_columns) {
        for (std::size_t line = lines; line < column.heading.size(); ++line) {
            lines = column.heading[line].width > 0 ? line + 1 : lines;
        }
    }
    for (std::size_t line = 0; line < lines; ++line) {
        for (const Column& column : m_columns) {
            AppendCell(out, line < column.heading.size() ? column.heading[line] : Cell{}, column);
        }
        EndLine(out);
    }
    if (lines > 0) {
        for (const Column& column : m_columns) {
            out.append(column.width, '-').append(kGap, ' ');
        }
        EndLine(out);
    }
}

void TextTable::Print(Results& results) const
{
    PrintHeading(results.Text());
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        const std::size_t column = i % m_columns.size();
        AppendCell(results.Text(), m_cells[i], m_columns[column]);
        if (column + 1 == m_columns.size()) {
            EndLine(results.Text());
            results.Pass();
        }
    }
}

} // namespace encap::cli
