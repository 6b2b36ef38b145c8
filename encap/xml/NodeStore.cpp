#include "encap/xml/NodeStore.h"

#include "encap/platform/MemoryUse.h"

#include <algorithm>
#include <new>

// Under the address sanitizer, what is not handed out may not be touched.
#if defined(__SANITIZE_ADDRESS__)
#define ENCAP_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ENCAP_ADDRESS_SANITIZER
#endif
#endif
#if defined(ENCAP_ADDRESS_SANITIZER)
#include <sanitizer/asan_interface.h>
#endif

namespace encap {
namespace {

// A small document should not cost a large block.
constexpr std::size_t kFirstBlock = std::size_t{8} << 10U;
constexpr std::size_t kLargestBlock = std::size_t{4} << 20U;

void Close([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size)
{
#if defined(ENCAP_ADDRESS_SANITIZER)
    __asan_poison_memory_region(memory, size);
#endif
}

void Open([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size)
{
#if defined(ENCAP_ADDRESS_SANITIZER)
    __asan_unpoison_memory_region(memory, size);
#endif
}

} // namespace

NodeStore::~NodeStore()
{
    while (m_large != nullptr) {
        GiveLarge(m_large + 1);
    }
}

void* NodeStore::Take(std::size_t size)
{
    if (size > kLargestPiece) {
        return TakeLarge(size);
    }
    const std::size_t steps = (size + kStep - 1) / kStep;
    if (FreePiece* piece = m_free[steps]) {
        Open(piece, steps * kStep);
        m_free[steps] = piece->next;
        return piece;
    }
    const std::size_t room = steps * kStep;
    if (m_left < room) {
        AddBlock();
    }
    void* memory = m_next;
    m_next += room;
    m_left -= room;
    Open(memory, room);
    return memory;
}

void NodeStore::Give(void* memory, std::size_t size) noexcept
{
    if (size > kLargestPiece) {
        GiveLarge(memory);
        return;
    }
    const std::size_t steps = (size + kStep - 1) / kStep;
    Open(memory, steps * kStep);
    FreePiece*& first = m_free[steps];
    auto* piece = static_cast<FreePiece*>(memory);
    piece->next = first;
    first = piece;
    Close(memory, steps * kStep);
}

void* NodeStore::TakeLarge(std::size_t size)
{
    auto* piece = static_cast<LargePiece*>(::operator new(sizeof(LargePiece) + size));
    piece->previous = nullptr;
    piece->next = m_large;
    if (m_large != nullptr) {
        m_large->previous = piece;
    }
    m_large = piece;
    return piece + 1;
}

void NodeStore::GiveLarge(void* memory) noexcept
{
    LargePiece* piece = static_cast<LargePiece*>(memory) - 1;
    (piece->previous != nullptr ? piece->previous->next : m_large) = piece->next;
    if (piece->next != nullptr) {
        piece->next->previous = piece->previous;
    }
    ::operator delete(piece);
}

// Blocks double, so that their number stays small and half of the memory at most is unused.
void NodeStore::AddBlock()
{
    const std::size_t size = std::clamp(m_blockSize * 2, kFirstBlock, kLargestBlock);
    std::unique_ptr<std::byte[]> block(new std::byte[size]); // its bytes are set piece by piece
    if (size == kLargestBlock) {
        platform::ExpectWrites(block.get(), size);
    }
    m_blocks.push_back(std::move(block));
    m_blockSize = size;
    m_next = m_blocks.back().get();
    m_left = size;
    Close(m_next, size);
}

} // namespace encap
