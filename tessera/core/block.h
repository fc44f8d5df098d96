#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace MERVO::Tessera {

/**
 * The raw memory of a column.
 *
 * Filling a fresh large block costs mostly its page faults, one for every 4 KiB; so large blocks that were freed are
 * kept for those that come next (see KeptBlocks), and a fresh one asks the system for huge pages. Those lie within the
 * block: it takes up no more memory than without them. A block of 64 bytes or more begins where a line of the cache
 * begins, so that strings and stamps, which are half a line and a line long, don't lie across two; large ones begin at
 * different offsets in a page, for columns are read side by side.
 * @return null where memory is short, or where so many elements have no room in the address space.
 */
void* AllocateBlock(std::size_t count, std::size_t elementSize) noexcept;
void FreeBlock(void* block) noexcept;
/// Gives a block back to the system at once, when it is larger than what comes next can use.
void DropBlock(void* block) noexcept;

struct BlockRelease {
    void operator()(void* block) const noexcept { FreeBlock(block); }
};

/// Owns a block, but not what was constructed in it: no destructor is called.
template <typename T>
using Block = std::unique_ptr<T[], BlockRelease>;

/// A block for so many elements, none of which is constructed; null as AllocateBlock.
template <typename T>
Block<T> MakeBlock(std::size_t count) noexcept
{
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
    return Block<T>(static_cast<T*>(AllocateBlock(count, sizeof(T))));
}

/// The same, but throws std::bad_alloc.
template <typename T>
Block<T> NeedBlock(std::size_t count)
{
    Block<T> block = MakeBlock<T>(count);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

} // namespace MERVO::Tessera
