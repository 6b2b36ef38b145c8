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
};

// Two chains of four, and two texts.
constexpr std::array<FormulaColumn, kFormulaColumnCount> kFormulas{{
    {"F1", "double", "mm", "{C01}*2+{C02}"},
    {"F2", "double", "mm", "{F1}+{C03}/4"},
    {"F3", "double", "mm", "({F2}-{C04})*1.25"},
    {"F4", "double", "mm", "{F3}*0.5+{C05}-1.5"},
    {"F5", "double", "mm", "{C06}+{C07}+{C08}"},
    {"F6", "double", "mm", "{F5}/3+2*{C09}"},
    {"F7", "double", "mm", "{F6}-{C10}*0.1"},
    {"F8", "double", "mm", "({F7}+{C11})*({C12}/{C01})"},
    {"T1", "string", "ul", "&quot;Size &quot;&amp;{SIZE}&amp;&quot; x &quot;&amp;{C02}"},
    {"T2", "string", "ul", "{T1}&amp;&quot; / &quot;&amp;{C03}"},
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
    AppendColumn(out, "RID", {"", "string", "ul", ""});
    AppendColumn(out, "SIZE", {"", "string", "ul", ""});
    for (int index = 1; index <= kNumberColumns; ++index) {
        AppendColumn(out, NumberColumnId(index), {"", "double", "mm", ""});
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

void AppendRow(std::string& out, int row)
{
    Sequence sequence(static_cast<uint32_t>(row) + 7U);
    const std::string id = RowId(row);
    out.append("<Row RowId=\"").append(id).append("\">");
    AppendCell(out, "RID", id);
    AppendCell(out, "SIZE", SizeText(row));
    for (int index = 1; index <= kNumberColumns; ++index) {
        std::string number;
        AppendNumber(number, 1.0 + sequence.Below(4000) / 16.0);
        AppendCell(out, NumberColumnId(index), number);
    }
    for (const FormulaColumn& column : kFormulas) {
        if (sequence.Below(100) < kOverridesPerHundred) {
            AppendCell(out, column.id, column.type == "double" ? "77.5" : "special");
        }
    }
    out.append("</Row>\n");
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
