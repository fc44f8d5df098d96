#pragma once

#include <vector>

#include "tessera/core/block.h"

namespace MERVO::Tessera {

/// Lets lists of numbers live in blocks: what a large one gives back is there for the next operation.
template <typename T>
struct BlockAllocator {
    using value_type = T;

    BlockAllocator() = default;
    template <typename U>
    BlockAllocator(const BlockAllocator<U>&)
    {
    }

    T* allocate(std::size_t count) { return NeedBlock<T>(count).release(); }
    void deallocate(T* block, std::size_t) { FreeBlock(block); }

    friend bool operator==(const BlockAllocator&, const BlockAllocator&) { return true; }
};

template <typename T>
using BlockVector = std::vector<T, BlockAllocator<T>>;

} // namespace MERVO::Tessera
