#pragma once

#include <cstddef>
#include <memory>

namespace encap::platform {

/// Gives back what NewMemoryBlock gave.
struct MemoryBlockDeleter {
    bool hasLargePages = false;
    void operator()(std::byte* memory) const;
};
using MemoryBlock = std::unique_ptr<std::byte[], MemoryBlockDeleter>;

/// Memory of that size for many small objects, its bytes unset. Where the system has large pages
/// for a block of some megabytes it is asked for them: a fresh block then costs a few page faults
/// instead of hundreds. Throws std::bad_alloc.
[[nodiscard]] MemoryBlock NewMemoryBlock(std::size_t size);

} // namespace encap::platform
