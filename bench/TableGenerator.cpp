#include "TableGenerator.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>

namespace bench {

namespace {

constexpr int kNumberColumns = 12;
constexpr int kOverridesPerHundred = 2;

struct FormulaColumn {
    std::string_view id;
    std::string_view type;
    std::string_view unit;
    std::string_view formula;
    /// The same for a spreadsheet whose columns are A to X; "#" stands for the row's number.
    std::string_view sheet;
};

// Two chains of four, and two texts.
constexpr std::array<FormulaColumn, kFormulaColumnCount> kFormulas{{
    {"F1", "double", "mm", "{C01}*2+{C02}", "=C#*2+D#"},
    {"F2", "double", "mm", "{F1}+{C03}/4", "=O#+E#/4"},
    {"F3", "double", "mm", "({F2}-{C04})*1.25", "=(P#-F#)*1.25"},
    {"F4", "double", "mm", "{F3}*0.5+{C05}-1.5", "=Q#*0.5+G#-1.5"},
    {"F5", "double", "mm", "{C06}+{C07}+{C08}", "=H#+I#+J#"},
    {"F6", "double", "mm", "{F5}/3+2*{C09}", "=S#/3+2*K#"},
    {"F7", "double", "mm", "{F6}-{C10}*0.1", "=T#-L#*0.1"},
    {"F8", "double", "mm", "({F7}+{C11})*({C12}/{C01})", "=(U#+M#)*(N#/C#)"},
    {"T1", "string", "ul", "&quot;Size &quot;&amp;{SIZE}&amp;&quot; x &quot;&amp;{C02}",
     R"(=""Size ""&B#&"" x ""&D#)"},
    {"T2", "string", "ul", "{T1}&amp;&quot; / &quot;&amp;{C03}", R"(=W#&"" / ""&E#)"},
}};

/// Numbers that look random and are the same everywhere.
class Sequence {
public:
    explicit Sequence(uint32_t seed) : m_state(seed * 2654435761U + 1U) {}

    uint32_t Below(uint32_t bound)
    {
        m_state ^= m_state << 13U;
        m_state ^= m_state >> 17U;
        m_state ^= m_state << 5U;
        return m_state % bound;
    }

private:
    uint32_t m_state;
};

void AppendNumber(std::string& out, double value)
{
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value);
    out.append(text.data(), end.ptr);
}

void AppendColumn(std::string& out, std::string_view id, const FormulaColumn& column)
{
    out.append("<Column ColumnId=\"").append(id).append("\" Title=\"").append(id);
    out.append("\" ColumnwideValue=\"").append(column.formula);
    out.append("\" Custom=\"false\" Hidden=\"false\" KeyWeight=\"0\" ValueType=\"");
    out.append(column.type).append("\" UnitType=\"").append(column.unit).append("\"/>");
}

std::string NumberColumnId(int index)
{
    std::string id = "C";
    id += static_cast<char>('0' + index / 10);
    id += static_cast<char>('0' + index % 10);
    return id;
}

void AppendColumns(std::string& out)
{
    AppendColumn(out, "RID", {"", "string", "ul", "", ""});
    AppendColumn(out, "SIZE", {"", "string", "ul", "", ""});
    for (int index = 1; index <= kNumberColumns; ++index) {
        AppendColumn(out, NumberColumnId(index), {"", "double", "mm", "", ""});
    }
    for (const FormulaColumn& column : kFormulas) {
        AppendColumn(out, column.id, column);
    }
}

void AppendCell(std::string& out, std::string_view column, std::string_view text)
{
    out.append("<Cell ColumnId=\"").append(column).append("\">").append(text).append("</Cell>");
}

std::string RowId(int row)
{
    return std::string("row-").append(std::to_string(row));
}

std::string SizeText(int row)
{
    return std::string("M").append(std::to_string(row % 64 + 1));
}

/// The texts of one row: twelve numbers, and what the formula cells hold of their own.
struct RowTexts {
    explicit RowTexts(int row) : id(RowId(row)), size(SizeText(row))
    {
        Sequence sequence(static_cast<uint32_t>(row) + 7U);
        for (std::string& number : numbers) {
            AppendNumber(number, 1.0 + sequence.Below(4000) / 16.0);
        }
        for (std::size_t index = 0; index < kFormulas.size(); ++index) {
            if (sequence.Below(100) < kOverridesPerHundred) {
                overrides[index] = kFormulas[index].type == "double" ? "77.5" : "special";
            }
        }
    }

    std::string id;
    std::string size;
    std::array<std::string, kNumberColumns> numbers;
    std::array<std::string_view, kFormulaColumnCount> overrides;
};

void AppendRow(std::string& out, int row)
{
    const RowTexts texts(row);
    out.append("<Row RowId=\"").append(texts.id).append("\">");
    AppendCell(out, "RID", texts.id);
    AppendCell(out, "SIZE", texts.size);
    for (int index = 1; index <= kNumberColumns; ++index) {
        AppendCell(out, NumberColumnId(index), texts.numbers[static_cast<std::size_t>(index - 1)]);
    }
    for (std::size_t index = 0; index < kFormulas.size(); ++index) {
        if (!texts.overrides[index].empty()) {
            AppendCell(out, kFormulas[index].id, texts.overrides[index]);
        }
    }
    out.append("</Row>\n");
}

/// The formula with the number of the line in place of "#", quoted as CSV.
void AppendSheetFormula(std::string& out, std::string_view formula, const std::string& line)
{
    out.append("\"");
    for (const char c : formula) {
        c == '#' ? out.append(line) : out.append(1, c);
    }
    out.append("\"");
}

void AppendSheetRow(std::string& out, int row)
{
    const RowTexts texts(row);
    const std::string line = std::to_string(row + 1);
    out.append(texts.id).append(",").append(texts.size);
    for (const std::string& number : texts.numbers) {
        out.append(",").append(number);
    }
    for (std::size_t index = 0; index < kFormulas.size(); ++index) {
        out.append(",");
        if (texts.overrides[index].empty()) {
            AppendSheetFormula(out, kFormulas[index].sheet, line);
        } else {
            out.append(texts.overrides[index]);
        }
    }
    out.append("\n");
}

} // namespace

std::string GenerateFamily(const TableShape& shape)
{
    std::string out;
    out.reserve(static_cast<std::size_t>(shape.rows) * 560 + 8192);
    out.append("<Family InternalName=\"bench\" DisplayName=\"Benchmark\">\n<FamilyTable>\n");
    out.append("<Columns>");
    AppendColumns(out);
    out.append("</Columns>\n<Rows>\n");
    for (int row = 0; row < shape.rows; ++row) {
        AppendRow(out, row);
    }
    out.append("</Rows>\n</FamilyTable>\n</Family>\n");
    return out;
}

std::string GenerateSheet(const TableShape& shape)
{
    std::string out;
    for (int row = 0; row < shape.rows; ++row) {
        AppendSheetRow(out, row);
    }
    return out;
}

std::string GenerateStrings(const TableShape& shape)
{
    std::string out = "<Strings xml:lang=\"en\"><Table>";
    if (shape.localizedSizes) {
        out.append("<ColumnStrings ColumnId=\"SIZE\"><Rows>");
        for (int row = 0; row < shape.rows; ++row) {
            out.append("<CellString RowId=\"").append(RowId(row)).append("\">");
            out.append(SizeText(row)).append("</CellString>");
        }
        out.append("</Rows></ColumnStrings>");
    }
    out.append("</Table></Strings>");
    return out;
}

} // namespace bench
