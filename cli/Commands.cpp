#include "cli/Commands.h"

#include "cli/BatchCommand.h"
#include "cli/CheckCommand.h"
#include "cli/ColumnCommand.h"
#include "cli/FindCommand.h"
#include "cli/IconCommand.h"
#include "cli/InfoCommand.h"
#include "cli/RowCommand.h"
#include "cli/SetCommand.h"
#include "cli/TableCommand.h"
#include "cli/TocCommand.h"

namespace encap::cli {
namespace {

constexpr CommandEntry kCommands[] = {
    {"table", "Evaluates every cell of a family and prints the table.", MakeTableCommand},
    {"info", "Prints a family's properties, languages, counts and columns.", MakeInfoCommand},
    {"check", "Finds what is wrong with families, cell by cell and in their documents.",
     MakeCheckCommand},
    {"set", "Writes cells, column formulas and properties of a family.", MakeSetCommand},
    {"row", "Adds, deletes, copies and moves the rows of a family.", MakeRowCommand},
    {"column", "Adds, deletes, copies, moves and renames the columns of a family.",
     MakeColumnCommand},
    {"toc", "Prints the categories and families of a table of contents.", MakeTocCommand},
    {"batch", "Evaluates or checks many families and prints what each comes to.", MakeBatchCommand},
    {"find", "Finds members of many families by a condition over columns.", MakeFindCommand},
    {"icon", "Reads, writes, converts and shows icons: ICO, BMP and PNG files, executables.",
     MakeIconCommand},
};

} // namespace

std::span<const CommandEntry> Commands()
{
    return kCommands;
}

} // namespace encap::cli
