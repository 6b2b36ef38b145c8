#include "cli/Commands.h"

#include "cli/InfoCommand.h"
#include "cli/TableCommand.h"

namespace encap::cli {
namespace {

constexpr CommandEntry kCommands[] = {
    {"table", "Evaluates every cell of a family and prints the table.", MakeTableCommand},
    {"info", "Prints a family's properties, languages, counts and columns.", MakeInfoCommand},
};

} // namespace

std::span<const CommandEntry> Commands()
{
    return kCommands;
}

} // namespace encap::cli
