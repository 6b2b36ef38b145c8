#include "tests/support/ReplacedNew.h"

void* operator new(std::size_t size)
{
    return encap::test::Allocate(size);
}
void* operator new[](std::size_t size)
{
    return encap::test::Allocate(size);
}
void operator delete(void* memory) noexcept
{
    encap::test::Free(memory);
}
void operator delete[](void* memory) noexcept
{
    encap::test::Free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    encap::test::Free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    encap::test::Free(memory);
}
