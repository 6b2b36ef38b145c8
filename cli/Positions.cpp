#include "cli/Positions.h"

#include "cli/CommandError.h"
#include "encap/foundation/NumberText.h"

namespace encap::cli {

int IndexOfPosition(int position, uint64_t last, const wchar_t* option)
{
    if (static_cast<uint64_t>(position) > last) {
        throw UsageError(CString(option) + L": there is no position " + FormatInteger(position) +
                         L", the last one is " + FormatInteger(static_cast<int64_t>(last)));
    }
    return position - 1;
}

void AllowArgument(bool isGiven, bool isTaken, const wchar_t* argument, const CString& action)
{
    if (isGiven && !isTaken) {
        throw UsageError(L"'" + action + L"' takes no " + argument);
    }
}

void RequireArgument(bool isTaken, bool isGiven, const wchar_t* argument, const CString& action)
{
    AllowArgument(isGiven, isTaken, argument, action);
    if (isTaken && !isGiven) {
        throw UsageError(L"'" + action + L"' needs " + argument);
    }
}

} // namespace encap::cli
