#include "encap/platform/MemoryBlock.h"

#include <new>

namespace encap::platform {

void MemoryBlockDeleter::operator()(std::byte* memory) const
{
    ::operator delete(memory);
}

// Large pages need a privilege there that users do not have.
MemoryBlock NewMemoryBlock(std::size_t size)
{
    return MemoryBlock(static_cast<std::byte*>(::operator new(size)));
}

} // namespace encap::platform
