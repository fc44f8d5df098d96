#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera {

/// Which of several equal rows is the one that is not a repeat.
enum class KeptRow : std::uint8_t { FIRST, LAST, NONE };

/// Whether equality of a column's cells is that of their bits, so that rows can be numbered instead of sorted: an array
/// of anything but floating numbers, which are compared with a tolerance, and nested tables.
bool IsComparedByBits(const Cursor& column);

/**
 * Marks with 1 the rows that are equal to another one in all columns, but for the kept one; with 0 all others.
 *
 * All columns are compared by bits and have one length, which the marks have too. Throws std::bad_alloc.
 */
void MarkRepeats(std::span<const Cursor> columns, KeptRow kept, std::span<std::uint8_t> marks);

} // namespace MERVO::Tessera
