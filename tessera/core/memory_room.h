#pragma once

#include <cstdint>
#include <span>

#include "tessera/core/series.h"

namespace MERVO::Tessera {

/**
 * Whether so many elements of so many bytes would lie in this machine's memory if nothing else did.
 *
 * It is asked before a result is built whose size the caller's values decide: a system that promises more memory than
 * it has would not refuse the block, but end the process while it is filled.
 */
bool HasRoomFor(std::uint64_t count, std::uint64_t elementSize);

/// The bytes of an element in an array, not counting what it holds elsewhere; 0 for no value type.
std::uint64_t CellSizeOf(MERVO_TESSERA_TYPEID type);
/// The same of a row of columns, as arrays.
std::uint64_t RowSizeOf(std::span<const SeriesPtr> columns);

} // namespace MERVO::Tessera
