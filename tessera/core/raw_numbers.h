#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "tessera/core/block.h"
#include "tessera/core/series.h"

namespace MERVO::Tessera {

/// A column, an array, of the numbers at the start of a block, which may be larger; null without memory. For results
/// whose length shows only when they are written.
/// @param type that of numbers, but not bool.
SeriesPtr AdoptNumbers(MERVO_TESSERA_TYPEID type, std::uint32_t count, Block<std::byte> numbers, std::string name);

} // namespace MERVO::Tessera
