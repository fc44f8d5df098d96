#pragma once

#include "tessera/core/cursor.h"

namespace MERVO::Tessera::Func {

/**
 * The mean of a column of numbers or bools: the sum in double, from the first element to the last, over their count.
 * @param skipNan leaves NaN elements out of the sum and of the count. Without it they go through to the result.
 * @return quiet NaN when nothing is counted, and for strings, stamps and nested tables.
 */
double CalMean(const Cursor& column, bool skipNan);

/// The mean of elements that add up to a total; quiet NaN for none.
double MeanFrom(double total, std::uint32_t count);

} // namespace MERVO::Tessera::Func
