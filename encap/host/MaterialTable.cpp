#include "encap/host/MaterialTable.h"

#include <algorithm>

namespace encap::host {

namespace {

using Cells = std::vector<CString>;

bool IsLineEnd(wchar_t c)
{
    return c == L'\n' || c == L'\r';
}

/// Reads the lines of a text in the form of RFC 4180.
class CsvReader {
public:
    explicit CsvReader(std::wstring_view text) : m_text(text) {}

    [[nodiscard]] bool AtEnd() const { return m_position >= m_text.size(); }
    /// False where quotes do not match. REQUIRES: not AtEnd().
    bool ReadLine(Cells& cells);

private:
    [[nodiscard]] wchar_t Peek() const { return AtEnd() ? L'\n' : m_text[m_position]; }
    bool ReadCell(CString& cell);
    bool ReadQuotedCell(CString& cell);

    std::wstring_view m_text;
    std::size_t m_position = 0;
};

bool CsvReader::ReadLine(Cells& cells)
{
    cells.clear();
    for (;;) {
        if (!ReadCell(cells.emplace_back())) {
            return false;
        }
        if (Peek() != L',') {
            break;
        }
        ++m_position;
    }
    const bool isPair = m_text.substr(m_position, 2) == L"\r\n";
    m_position += isPair ? 2 : 1;
    return true;
}

bool CsvReader::ReadCell(CString& cell)
{
    if (Peek() == L'"') {
        return ReadQuotedCell(cell);
    }
    for (; Peek() != L',' && !IsLineEnd(Peek()); ++m_position) {
        if (Peek() == L'"') {
            return false;
        }
        cell += Peek();
    }
    return true;
}

bool CsvReader::ReadQuotedCell(CString& cell)
{
    for (++m_position; !AtEnd(); ++m_position) {
        if (Peek() != L'"') {
            cell += Peek();
            continue;
        }
        ++m_position;
        if (Peek() != L'"') {
            return Peek() == L',' || IsLineEnd(Peek());
        }
        cell += L'"';
    }
    return false;
}

bool EqualsIgnoringAsciiCase(std::wstring_view text, std::wstring_view lowerCase)
{
    return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(),
                      [](wchar_t c, wchar_t lower) {
                          return c == lower || (c >= L'A' && c <= L'Z' && c + 32 == lower);
                      });
}

bool IsHeading(const Cells& cells)
{
    return EqualsIgnoringAsciiCase(cells[0], L"key") && EqualsIgnoringAsciiCase(cells[1], L"name");
}

} // namespace

bool MaterialTable::Load(std::wstring_view csvText, EvaluationError& error)
{
    if (!csvText.empty() && csvText.front() == L'\uFEFF') {
        csvText.remove_prefix(1);
    }
    std::vector<Cells> lines;
    Cells cells;
    for (CsvReader reader(csvText); !reader.AtEnd();) {
        const bool isWellFormed = reader.ReadLine(cells);
        if (!isWellFormed || cells.size() != 2) {
            error.kind = isWellFormed ? ErrorKind::MaterialCells : ErrorKind::MaterialQuotes;
            error.source = ErrorSource::None;
            error.token.Assign(std::to_wstring(lines.size() + 1));
            return false;
        }
        lines.push_back(cells);
    }
    Map names;
    for (std::size_t i = !lines.empty() && IsHeading(lines[0]) ? 1 : 0; i < lines.size(); ++i) {
        names[lines[i][0]] = lines[i][1];
    }
    Map keys;
    for (const Cells& line : lines) {
        const auto named = names.find(line[0]);
        if (named != names.end() && named->second == line[1]) {
            keys[line[1]] = line[0];
        }
    }
    m_names = std::move(names);
    m_keys = std::move(keys);
    return true;
}

const CString* MaterialTable::NameOf(std::wstring_view key) const
{
    const auto found = m_names.find(key);
    return found != m_names.end() ? &found->second : nullptr;
}

const CString* MaterialTable::KeyOf(std::wstring_view name) const
{
    const auto found = m_keys.find(name);
    return found != m_keys.end() ? &found->second : nullptr;
}

} // namespace encap::host
