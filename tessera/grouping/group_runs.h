#pragma once

#include <cstdint>
#include <span>

#include "tessera/functors/functor_base.h"

namespace MERVO::Tessera {

/**
 * Runs a functor, with its checks, on each group of a column's rows for itself. One pair of cursors goes from group to
 * group; groups of few rows are reduced in one pass, where the functor can do that, with 4 bytes per row.
 *
 * Group g is rows begins[g] to before begins[g + 1] of src; its results are rows dstBegins[g] to before
 * dstBegins[g + 1] of dst.
 * @return the first failure, and no more is run; 5 also for rows that a cursor does not have. Throws std::bad_alloc.
 */
Error ProcessRuns(const Func::UnaryBase& functor, const Cursor& src, std::span<const std::uint32_t> begins,
    const Cursor& dst, std::span<const std::uint32_t> dstBegins);

} // namespace MERVO::Tessera
