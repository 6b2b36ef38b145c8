#include "encap/platform/CodePages.h"

namespace encap::platform {

std::span<const SystemEncoding> SystemEncodings()
{
    return {};
}

} // namespace encap::platform
