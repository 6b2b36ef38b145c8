#include "fuzz/EditScript.h"
#include "fuzz/Targets.h"

namespace encap::fuzz {

void RunEdits(std::string_view input)
{
    EditScript(input).Run();
}

} // namespace encap::fuzz
