#include "Floor.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

// floor FAMILY.xml CSV: reads the generated family, computes it and writes it as CSV.
int main(int count, char** arguments)
{
    if (count != 3) {
        std::fputs("usage: encap_floor FAMILY.xml CSV\n", stderr);
        return 2;
    }
    std::ifstream in(arguments[1], std::ios::binary);
    const std::string family{std::istreambuf_iterator<char>(in), {}};
    bench::FloorTable table;
    if (!bench::ReadFloorTable(family, table)) {
        std::fputs("encap_floor: the family does not parse\n", stderr);
        return 3;
    }
    bench::FloorValues values;
    bench::EvaluateFloorTable(table, values);
    std::ofstream out(arguments[2], std::ios::binary);
    out << bench::WriteFloorCsv(values, table.rows);
    return out.flush() ? 0 : 3;
}
