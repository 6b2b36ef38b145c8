#include "encap/platform/Guid.h"

#include "encap/platform/windows/WindowsHeaders.h"

#include <algorithm>

#include <objbase.h>

namespace encap::platform {

Guid CreateGuid()
{
    GUID made{};
    if (CoCreateGuid(&made) != S_OK) {
        return {};
    }
    Guid guid;
    guid.data1 = made.Data1;
    guid.data2 = made.Data2;
    guid.data3 = made.Data3;
    std::copy(std::begin(made.Data4), std::end(made.Data4), guid.data4.begin());
    return guid;
}

} // namespace encap::platform
