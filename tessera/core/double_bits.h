#pragma once

#include <cstdint>

/// How a 64-bit IEEE number is laid out.
namespace MERVO::Tessera::DoubleBits {

inline constexpr int MANTISSA = 52;                                   ///< stored bits of the mantissa
inline constexpr std::uint64_t HIDDEN = std::uint64_t{1} << MANTISSA; ///< the bit of a mantissa that isn't stored
inline constexpr std::uint64_t SIGN = std::uint64_t{1} << 63;
inline constexpr int BIAS = 1023;    ///< of the exponent
inline constexpr int SPECIAL = 2047; ///< exponent of infinities and NaN

} // namespace MERVO::Tessera::DoubleBits
