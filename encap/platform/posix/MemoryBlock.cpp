#include "encap/platform/MemoryBlock.h"

#include <new>

#include <sys/mman.h>

namespace encap::platform {
namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20U;
constexpr std::align_val_t kAlignment{kLargePage};

} // namespace

void MemoryBlockDeleter::operator()(std::byte* memory) const
{
    if (hasLargePages) {
        ::operator delete(memory, kAlignment);
    } else {
        ::operator delete(memory);
    }
}

MemoryBlock NewMemoryBlock(std::size_t size)
{
    if (size < kLargePage) {
        return MemoryBlock(static_cast<std::byte*>(::operator new(size)));
    }
    MemoryBlock block(static_cast<std::byte*>(::operator new(size, kAlignment)), {true});
#if defined(MADV_HUGEPAGE)
    // Without them the block is as good, only slower to touch.
    static_cast<void>(madvise(block.get(), size, MADV_HUGEPAGE));
#endif
    return block;
}

} // namespace encap::platform
