#include "tests/faults/FailingAllocation.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

struct Countdown {
    long left = 0; ///< allocations to the failing one; 0: none fails
    bool goesOn = false;
    bool hasFailed = false;
};

thread_local Countdown g_countdown;
thread_local long g_live = 0;

void* Allocate(std::size_t size)
{
    Countdown& countdown = g_countdown;
    if (countdown.left > 0 && --countdown.left == 0) {
        countdown.hasFailed = true;
        countdown.left = countdown.goesOn ? 1 : 0;
        throw std::bad_alloc();
    }
    void* memory = std::malloc(size > 0 ? size : 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    ++g_live;
    return memory;
}

void Free(void* memory)
{
    g_live -= memory != nullptr ? 1 : 0;
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size)
{
    return Allocate(size);
}
void* operator new[](std::size_t size)
{
    return Allocate(size);
}
void operator delete(void* memory) noexcept
{
    Free(memory);
}
void operator delete[](void* memory) noexcept
{
    Free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    Free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    Free(memory);
}

namespace encap::test {

long LiveAllocations()
{
    return g_live;
}

FailingAllocation::FailingAllocation(long n, Failing failing)
{
    g_countdown = {n, failing == Failing::FromThenOn, false};
}

FailingAllocation::~FailingAllocation()
{
    g_countdown = {};
}

bool FailingAllocation::HasFailed() const
{
    return g_countdown.hasFailed;
}

} // namespace encap::test
