#include "encap/platform/MemoryUse.h"

namespace encap::platform {

// There is no such call.
void ExpectWrites(void*, std::size_t) {}

} // namespace encap::platform
