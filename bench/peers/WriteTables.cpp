#include "bench/TableGenerator.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

// encap_peer_tables ROWS FOLDER: one generated table as the family document FOLDER/family.xml and
// as FOLDER/sheet.csv, whose formulas are those of a spreadsheet.
namespace {

bool WriteFile(const std::string& path, std::string_view text)
{
    std::ofstream out(path, std::ios::binary);
    out << text;
    return static_cast<bool>(out.flush());
}

} // namespace

int main(int count, char** arguments)
{
    const int rows = count == 3 ? std::atoi(arguments[1]) : 0;
    if (rows <= 0) {
        std::fputs("usage: encap_peer_tables ROWS FOLDER\n", stderr);
        return 2;
    }
    const bench::TableShape shape{rows, false};
    const std::string folder = std::string(arguments[2]).append("/");
    const bool written = WriteFile(folder + "family.xml", bench::GenerateFamily(shape)) &&
                         WriteFile(folder + "sheet.csv", bench::GenerateSheet(shape));
    return written ? 0 : 3;
}
