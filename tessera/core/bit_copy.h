#pragma once

#include <cstdint>

#include "tessera/core/bit_position.h"

namespace MERVO::Tessera {

/// Copies bits, eight at a time where the offsets of both places differ too. The ranges don't overlap.
void CopyBits(BitPosition from, BitPosition to, std::uint32_t count);

} // namespace MERVO::Tessera
