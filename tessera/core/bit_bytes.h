#pragma once

#include <cstdint>

#include "tessera/core/bit_position.h"

namespace MERVO::Tessera {

/// Spread packed bits to a bool each, whole bytes at a time where they are whole; `to` has room for `count`.
void UnpackBits(BitPosition from, bool* to, std::uint32_t count);
/// Packs a bool each into bits. Bits of the same byte that lie outside the `count` stay as they are.
void PackBits(const bool* from, BitPosition to, std::uint32_t count);

} // namespace MERVO::Tessera
