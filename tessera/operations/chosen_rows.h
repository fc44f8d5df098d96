#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "tessera/core/data_frame.h"

/**
 * Whole tables of chosen rows of another one, named as that is: the way of the library's own calls, which know that all
 * columns get the same rows. Without memory the table has code 3. None where a column is no array, a row does not
 * exist, or none is chosen: then the functors tell what comes of it. Throws std::bad_alloc where a long text has no
 * room.
 */
namespace MERVO::Tessera {

std::optional<DataFrame> RowsAt(const DataFrameRef& table, std::span<const std::uint32_t> rows);

/// The rows whose mark is as wanted. `marks` is an array of bools, one for each row. Working set: 264 KiB.
std::optional<DataFrame> RowsMarked(const DataFrameRef& table, const Cursor& marks, bool wanted);

} // namespace MERVO::Tessera
