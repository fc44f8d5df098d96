#pragma once

#include "tessera/core/error.h"
#include "tessera/core/series.h"

namespace MERVO::Tessera {

/**
 * Casts a column into one of another value type and the same length. Loading needs it here; it is defined beside the
 * casting functor, which does the work.
 */
[[nodiscard]] Error CastSeries(const SeriesPtr& source, const SeriesPtr& target);

} // namespace MERVO::Tessera
