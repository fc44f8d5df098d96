#pragma once

#include <cstdint>
#include <span>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera::Func {

/// Tells whether each position is less than `bound`.
bool AreBelow(std::span<const std::uint32_t> positions, std::uint32_t bound);

/**
 * Copies elements by position: element i of dst becomes the one that positions[i] names in src, counted from the
 * cursor's head. Repeats and any order are allowed.
 *
 * The caller has made sure that both hold one value type, that dst is another column, as long as `positions`, and that
 * each position is below src's length. Both containers are served; a list is walked from one position to the next. The
 * cursors stay where they are. Throws std::bad_alloc where a long text has no room.
 */
void Gather(const Cursor& src, std::span<const std::uint32_t> positions, const Cursor& dst);

/// The same between arrays, with the cell of missing_cell.h where a position is NO_ROW.
void GatherOrMissing(const Cursor& src, std::span<const std::uint32_t> positions, const Cursor& dst);

/// The same between arrays, with what the second list names in the second column where the first list has NO_ROW.
void GatherEither(const Cursor& lhs, std::span<const std::uint32_t> leftPositions, const Cursor& rhs,
    std::span<const std::uint32_t> rightPositions, const Cursor& dst);

} // namespace MERVO::Tessera::Func
