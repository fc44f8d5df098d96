#pragma once

#include <vector>

#include "tessera/core/date_time.h"
#include "tessera/platform/export.h"

namespace MERVO::Tessera {

/**
 * Lists moments at even steps, from three of the four arguments.
 *
 * A DateTime whose stamp is 2147483647 counts as not given, and so do 0 periods. From start, end and periods the
 * interval is divided evenly, cut to whole seconds toward 0; from one period that is start itself. From start, end and
 * freq the end is reached only if it lies on the grid. Whole-number arithmetic wraps in 32 bits.
 * @param periods how many moments, up to 1000000.
 * @param freq    the step in seconds, which may be negative; 0 only together with periods.
 * @return the moments from first to last; empty if the arguments are refused, which the log tells. Throws
 *         std::bad_alloc when memory is short.
 */
[[nodiscard]] TESSERA_API std::vector<DateTime> DateRange(
    const DateTime& start, const DateTime& end, const unsigned int& periods, const DateTime& freq);

} // namespace MERVO::Tessera
