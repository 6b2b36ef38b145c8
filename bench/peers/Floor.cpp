#include "Floor.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include <expat.h>

namespace bench {

namespace {

constexpr std::array<std::string_view, kFloorColumns> kColumns{
    "RID", "SIZE", "C01", "C02", "C03", "C04", "C05", "C06", "C07", "C08", "C09", "C10",
    "C11", "C12",  "F1",  "F2",  "F3",  "F4",  "F5",  "F6",  "F7",  "F8",  "T1",  "T2"};

enum Column : uint8_t {
    kRowId,
    kSize,
    kC01,
    kC02,
    kC03,
    kC04,
    kC05,
    kC06,
    kC07,
    kC08,
    kC09,
    kC10,
    kC11,
    kC12,
    kF1,
    kF2,
    kF3,
    kF4,
    kF5,
    kF6,
    kF7,
    kF8,
    kT1,
    kT2
};

/// Follows expat through the document.
struct Reader {
    FloorTable* table = nullptr;
    int column = -1;
};

int ColumnOf(std::string_view id)
{
    const auto found = std::find(kColumns.begin(), kColumns.end(), id);
    return found == kColumns.end() ? -1 : static_cast<int>(found - kColumns.begin());
}

void StartElement(void* data, const char* name, const char** attributes)
{
    auto& reader = *static_cast<Reader*>(data);
    if (std::strcmp(name, "Row") == 0) {
        for (auto& column : reader.table->texts) {
            column.emplace_back();
        }
        ++reader.table->rows;
    } else if (std::strcmp(name, "Cell") == 0 && attributes[0] != nullptr) {
        reader.column = ColumnOf(attributes[1]);
        if (reader.column >= 0) {
            auto& span = reader.table->texts[static_cast<std::size_t>(reader.column)].back();
            span.offset = static_cast<uint32_t>(reader.table->characters.size());
        }
    }
}

void EndElement(void* data, const char*)
{
    static_cast<Reader*>(data)->column = -1;
}

void Characters(void* data, const char* text, int length)
{
    auto& reader = *static_cast<Reader*>(data);
    if (reader.column >= 0) {
        reader.table->characters.append(text, static_cast<std::size_t>(length));
        reader.table->texts[static_cast<std::size_t>(reader.column)].back().length +=
            static_cast<uint32_t>(length);
    }
}

std::string_view TextOf(const FloorTable& table, int column, std::size_t row)
{
    const auto& span = table.texts[static_cast<std::size_t>(column)][row];
    return {table.characters.data() + span.offset, span.length};
}

/// The column's numbers: those of its own cells, and elsewhere what the formula gives.
template <class Formula>
void FillNumbers(FloorTable& table, Column column, const Formula& formula)
{
    const auto rows = static_cast<std::size_t>(table.rows);
    auto& numbers = table.numbers[column];
    numbers.resize(rows);
    for (std::size_t row = 0; row < rows; ++row) {
        const std::string_view own = TextOf(table, column, row);
        if (own.empty()) {
            numbers[row] = formula(row);
        } else {
            std::from_chars(own.data(), own.data() + own.size(), numbers[row]);
        }
    }
}

void ComputeNumbers(FloorTable& table)
{
    for (int column = kC01; column <= kC12; ++column) {
        FillNumbers(table, static_cast<Column>(column), [](std::size_t) { return 0.0; });
    }
    const auto& n = table.numbers;
    FillNumbers(table, kF1, [&n](std::size_t r) { return n[kC01][r] * 2 + n[kC02][r]; });
    FillNumbers(table, kF2, [&n](std::size_t r) { return n[kF1][r] + n[kC03][r] / 4; });
    FillNumbers(table, kF3, [&n](std::size_t r) { return (n[kF2][r] - n[kC04][r]) * 1.25; });
    FillNumbers(table, kF4, [&n](std::size_t r) { return n[kF3][r] * 0.5 + n[kC05][r] - 1.5; });
    FillNumbers(table, kF5, [&n](std::size_t r) { return n[kC06][r] + n[kC07][r] + n[kC08][r]; });
    FillNumbers(table, kF6, [&n](std::size_t r) { return n[kF5][r] / 3 + 2 * n[kC09][r]; });
    FillNumbers(table, kF7, [&n](std::size_t r) { return n[kF6][r] - n[kC10][r] * 0.1; });
    FillNumbers(table, kF8, [&n](std::size_t r) {
        return (n[kF7][r] + n[kC11][r]) * (n[kC12][r] / n[kC01][r]);
    });
}

void AppendNumber(std::string& out, double value)
{
    std::array<char, 32> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 8);
    out.append(text.data(), end.ptr);
}

std::string_view ValueOf(const FloorValues& values, std::size_t column, std::size_t row)
{
    const auto& ends = values.ends[column];
    const uint32_t start = row == 0 ? 0 : ends[row - 1];
    return {values.characters[column].data() + start, ends[row] - start};
}

/// What a cell without a text of its own shows.
void AppendComputed(const FloorTable& table, std::size_t column, std::size_t row, FloorValues& out)
{
    std::string& characters = out.characters[column];
    if (column == kT1) {
        characters.append("Size ").append(TextOf(table, kSize, row)).append(" x ");
        characters.append(TextOf(table, kC02, row));
    } else if (column == kT2) {
        characters.append(ValueOf(out, kT1, row)).append(" / ").append(TextOf(table, kC03, row));
    } else if (column >= kFloorLiterals) {
        AppendNumber(characters, table.numbers[column][row]);
    }
}

} // namespace

bool ReadFloorTable(std::string_view family, FloorTable& out)
{
    Reader reader{&out};
    XML_Parser parser = XML_ParserCreate("UTF-8");
    XML_SetUserData(parser, &reader);
    XML_SetElementHandler(parser, StartElement, EndElement);
    XML_SetCharacterDataHandler(parser, Characters);
    const bool parsed =
        XML_Parse(parser, family.data(), static_cast<int>(family.size()), 1) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return parsed;
}

void EvaluateFloorTable(FloorTable& table, FloorValues& out)
{
    ComputeNumbers(table);
    const auto rows = static_cast<std::size_t>(table.rows);
    for (std::size_t column = 0; column < kFloorColumns; ++column) {
        auto& ends = out.ends[column];
        ends.resize(rows);
        for (std::size_t row = 0; row < rows; ++row) {
            const std::string_view own = TextOf(table, static_cast<int>(column), row);
            if (own.empty()) {
                AppendComputed(table, column, row, out);
            } else {
                out.characters[column].append(own);
            }
            ends[row] = static_cast<uint32_t>(out.characters[column].size());
        }
    }
}

std::string WriteFloorCsv(const FloorValues& values, int rows)
{
    std::string out = "RowId";
    for (const std::string_view id : kColumns) {
        out.append(",").append(id);
    }
    out.append("\r\n");
    for (std::size_t row = 0; row < static_cast<std::size_t>(rows); ++row) {
        out.append(ValueOf(values, kRowId, row));
        for (std::size_t column = 0; column < kFloorColumns; ++column) {
            out.append(",").append(ValueOf(values, column, row));
        }
        out.append("\r\n");
    }
    return out;
}

} // namespace bench
