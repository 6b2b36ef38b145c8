#pragma once

// A test program that links this has its operator new replaced: an allocation can be made to fail.
namespace encap::test {

/// What fails on this thread: one allocation, or it and all behind it.
enum class Failing { Once, FromThenOn };

/// How many allocations of this thread are not freed.
[[nodiscard]] long LiveAllocations();

/// While it lives, the n-th (from 1) coming operator new of this thread throws std::bad_alloc. What
/// other libraries get from malloc is not counted.
class FailingAllocation {
public:
    FailingAllocation(long n, Failing failing);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    [[nodiscard]] bool HasFailed() const;
};

} // namespace encap::test
