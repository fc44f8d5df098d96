#pragma once

#include <cstdint>

#include "tessera/core/bit_position.h"

namespace MERVO::Tessera {

/// The number of set bits from `head` to before `tail`.
std::uint32_t CountBits(BitPosition head, BitPosition tail);

/// The first place from `head` to before `tail` whose bit is as wanted; `tail` where there is none.
BitPosition FindBit(BitPosition head, BitPosition tail, bool wanted);

} // namespace MERVO::Tessera
