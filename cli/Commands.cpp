#include "cli/Commands.h"

#include "cli/ColumnCommand.h"
#include "cli/InfoCommand.h"
#include "cli/RowCommand.h"
#include "cli/SetCommand.h"
#include "cli/TableCommand.h"

namespace encap::cli {
namespace {

constexpr CommandEntry kCommands[] = {
    {"table", "Evaluates every cell of a family and prints the table.", MakeTableCommand},
    {"info", "Prints a family's properties, languages, counts and columns.", MakeInfoCommand},
    {"set", "Writes cells, column formulas and properties of a family.", MakeSetCommand},
    {"row", "Adds, deletes, copies and moves the rows of a family.", MakeRowCommand},
    {"column", "Adds, deletes, copies, moves and renames the columns of a family.",
     MakeColumnCommand},
};

} // namespace

std::span<const CommandEntry> Commands()
{
    return kCommands;
}

} // namespace encap::cli
