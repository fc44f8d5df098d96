#pragma once

#include <cstddef>

#include "tessera/functors/row_choice.h"
#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera::Func {

#ifdef TESSERA_WIDE_VECTOR_BYTES
/// Whether CompressNumbers serves cells of so many bytes on this processor.
inline bool CanCompress(std::size_t cellSize)
{
    return HasWideVectors() && (cellSize == sizeof(std::uint32_t) || cellSize == sizeof(std::uint64_t));
}
#else
constexpr bool CanCompress(std::size_t) { return false; }
#endif

/**
 * Copies the chosen ones of the numbers of an array, one behind the other: whole vectors at a time, as many of whose
 * cells as are chosen are moved to the front. It takes the same time however the choice falls.
 *
 * Only where CanCompress; nothing is done elsewhere.
 * @param numbers the first cell of the array, that of row 0.
 * @param isStreamed writes past the caches.
 * @return the place behind the last copied cell.
 */
std::byte* CompressNumbers(
    std::size_t cellSize, const std::byte* numbers, const RowChoice& rows, std::byte* to, bool isStreamed);

} // namespace MERVO::Tessera::Func
