#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace encap {

/// The memory of one tree's nodes and texts, in large blocks that are let go all at once: a table's
/// document has a million small pieces. What is given back in between is handed out again for
/// pieces of the same size. Owned by the tree.
class NodeStore {
public:
    NodeStore() = default;
    ~NodeStore();
    NodeStore(const NodeStore&) = delete;
    NodeStore& operator=(const NodeStore&) = delete;

    /// Memory for an object of this size, aligned for pointers.
    [[nodiscard]] void* Take(std::size_t size);
    /// Takes the memory back. REQUIRES: it was taken here, with this size.
    void Give(void* memory, std::size_t size) noexcept;

private:
    struct FreePiece {
        FreePiece* next;
    };
    /// Stands before each piece that is too large for the blocks.
    struct alignas(std::max_align_t) LargePiece {
        LargePiece* previous;
        LargePiece* next;
    };

    static constexpr std::size_t kStep = alignof(std::max_align_t) / 2;
    static constexpr std::size_t kLargestPiece = 256;

    [[nodiscard]] void* TakeLarge(std::size_t size);
    void GiveLarge(void* memory) noexcept;
    void AddBlock();

    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
    std::byte* m_next = nullptr; ///< the unused rest of the last block
    std::size_t m_left = 0;
    std::size_t m_blockSize = 0;
    /// By size in steps: what was given back.
    std::array<FreePiece*, kLargestPiece / kStep + 1> m_free{};
    LargePiece* m_large = nullptr;
};

} // namespace encap
