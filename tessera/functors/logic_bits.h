#pragma once

#include <cstdint>

#include "tessera/core/bit_position.h"

/// Work on packed bits a word at a time, whatever the offsets of the places. Bits around the result's stay as they are.
/// A result may stand in the place of an operand, but not overlap it otherwise.
namespace MERVO::Tessera::Func {

void AndBits(BitPosition left, BitPosition right, BitPosition to, std::uint32_t count);
void OrBits(BitPosition left, BitPosition right, BitPosition to, std::uint32_t count);
void InvertBits(BitPosition from, BitPosition to, std::uint32_t count);

/// Combine bits with one and the same bit.
void AndBits(BitPosition left, bool right, BitPosition to, std::uint32_t count);
void OrBits(BitPosition left, bool right, BitPosition to, std::uint32_t count);

} // namespace MERVO::Tessera::Func
