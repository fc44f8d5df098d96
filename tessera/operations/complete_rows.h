#pragma once

#include <optional>
#include <span>

#include "tessera/core/data_frame.h"
#include "tessera/operations/nan_counts.h"

namespace MERVO::Tessera {

/**
 * The rows of a large table in which none of some columns is NaN, in one pass over it: such a table comes from memory
 * each time it is read, and that takes longer than all that is done with it.
 *
 * How much room they need is guessed from samples; the columns' blocks are up to a fiftieth larger than they need to
 * be.
 * @return none where it is not served: a column that is no array of numbers of 4 or 8 bytes, a processor without wide
 *         vectors, few rows, no complete row, a guess that was too low, no memory. Other ways then tell what is to be
 *         told.
 */
std::optional<DataFrame> CompleteRows(const DataFrameRef& table, std::span<const NanSource> sources);

} // namespace MERVO::Tessera
