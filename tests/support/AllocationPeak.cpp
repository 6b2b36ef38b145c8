#include "tests/support/AllocationPeak.h"

#include "tests/support/ReplacedNew.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

/// In front of every block: its size, in as much room as keeps the block aligned.
constexpr std::size_t kHead = alignof(std::max_align_t);
static_assert(kHead >= sizeof(std::size_t));

thread_local std::ptrdiff_t g_current = 0;
thread_local std::ptrdiff_t g_peak = 0;

} // namespace

namespace encap::test {

void* Allocate(std::size_t size)
{
    void* block = std::malloc(kHead + size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    *static_cast<std::size_t*>(block) = size;
    g_current += static_cast<std::ptrdiff_t>(size);
    g_peak = std::max(g_peak, g_current);
    return static_cast<char*>(block) + kHead;
}

void Free(void* memory) noexcept
{
    if (memory == nullptr) {
        return;
    }
    void* block = static_cast<char*>(memory) - kHead;
    g_current -= static_cast<std::ptrdiff_t>(*static_cast<std::size_t*>(block));
    std::free(block);
}

AllocationPeak::AllocationPeak()
{
    g_current = 0;
    g_peak = 0;
}

std::size_t AllocationPeak::Bytes() const
{
    return static_cast<std::size_t>(g_peak);
}

} // namespace encap::test
