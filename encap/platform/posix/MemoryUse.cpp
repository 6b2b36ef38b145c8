#include "encap/platform/MemoryUse.h"

#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace encap::platform {

// Large pages would be quicker still, but on virtual machines that give unused ones back to their
// host they are slower: each is then fetched anew.
void ExpectWrites([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size)
{
#if defined(MADV_POPULATE_WRITE)
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(memory) % page;
    // A kernel that does not know it refuses, and nothing is lost.
    static_cast<void>(
        madvise(static_cast<std::byte*>(memory) - offset, size + offset, MADV_POPULATE_WRITE));
#endif
}

} // namespace encap::platform
