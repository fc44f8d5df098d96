#pragma once

#include <cstdint>

namespace MERVO::Tessera {

/// The widest key of a pair: three digits of eleven bits.
inline constexpr unsigned int MOST_KEY_BITS = 33;

/**
 * Sort at least one pair stably by key. A pair has its key in bits positionBits to positionBits + keyBits - 1, and a
 * position below.
 *
 * Passes go from the low digit to the high one; a digit that all keys share is passed over.
 * @param spare room for as many pairs.
 * @return the sorted pairs, which are in `pairs` or in `spare`.
 */
std::uint64_t* SortPairs(
    std::uint64_t* pairs, std::uint64_t* spare, std::uint32_t count, unsigned int positionBits, unsigned int keyBits);
/// Writes the sorted pairs' positions only; `pairs` and `spare` hold nothing of use afterwards.
void SortPairs(std::uint64_t* pairs, std::uint64_t* spare, std::uint32_t count, unsigned int positionBits,
    unsigned int keyBits, std::uint32_t* positions);

} // namespace MERVO::Tessera
