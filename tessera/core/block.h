#pragma once

#include <cstddef>

namespace MERVO::Tessera {

/**
 * The raw memory of a column.
 *
 * Filling a fresh large block costs mostly its page faults, one for every 4 KiB; so large blocks that were freed are
 * kept for those that come next (see KeptBlocks), and a fresh one asks the system for huge pages. Those lie within the
 * block: it takes up no more memory than without them. A block of 64 bytes or more begins where a line of the cache
 * begins, so that strings and stamps, which are half a line and a line long, don't lie across two.
 * @return null where memory is short, or where so many elements have no room in the address space.
 */
void* AllocateBlock(std::size_t count, std::size_t elementSize) noexcept;
void FreeBlock(void* block) noexcept;

} // namespace MERVO::Tessera
