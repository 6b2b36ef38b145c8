#pragma once

#include <cstddef>

// A test program that links this has its operator new replaced, so that what is allocated counts.
namespace encap::test {

/// The most memory that this thread's operator new had handed out at one time since the object was
/// made, beyond what it had then. What other libraries get from malloc is not counted. One at a
/// time.
class AllocationPeak {
public:
    AllocationPeak();
    [[nodiscard]] std::size_t Bytes() const;
};

} // namespace encap::test
