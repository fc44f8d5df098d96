#pragma once

#include <cstdint>
#include <span>

#include "tessera/core/cursor.h"
#include "tessera/functors/missing_cell.h"

namespace MERVO::Tessera::Func {

/// Tells whether each row, but for NO_ROW, is a position below `bound`.
bool AreRowsBelow(std::span<const std::uint32_t> rows, std::uint32_t bound);

/**
 * Copies elements by row number as Gather does; where a row is NO_ROW, dst keeps the cell that it has.
 *
 * The caller has made sure that both hold one value type, that dst is another column, as long as `rows`, and that the
 * rows are below src's length. Both containers are served; of a source in a list a copy is made. Throws std::bad_alloc,
 * after which dst may stand elsewhere.
 */
void GatherPresent(const Cursor& src, std::span<const std::uint32_t> rows, const Cursor& dst);

} // namespace MERVO::Tessera::Func
