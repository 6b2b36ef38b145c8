#pragma once

#include <cstddef>

// A test program that links ReplacedNew.cpp has its operator new and delete replaced by these two,
// which it defines itself.
namespace encap::test {

/// Throws std::bad_alloc; never null.
[[nodiscard]] void* Allocate(std::size_t size);
/// memory: null, or from Allocate.
void Free(void* memory) noexcept;

} // namespace encap::test
