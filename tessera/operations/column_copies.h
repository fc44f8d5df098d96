#pragma once

#include <cstdint>
#include <span>

#include "tessera/core/data_frame.h"

namespace MERVO::Tessera {

/**
 * Copies columns of a window, cut to its rows, in the order of `positions`, which count in the window.
 * @return code 0 with the copies in `copies`; or what went wrong with the first that could not be copied.
 */
Error CopyColumns(const DataFrameRef& window, std::span<const std::uint32_t> positions, DataFrameView::Columns& copies);

} // namespace MERVO::Tessera
