#include "tests/faults/FailingAllocation.h"

#include "tests/support/ReplacedNew.h"

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

} // namespace

namespace encap::test {

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

void Free(void* memory) noexcept
{
    g_live -= memory != nullptr ? 1 : 0;
    std::free(memory);
}

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
