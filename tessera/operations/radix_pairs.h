#pragma once

#include <cstdint>

namespace MERVO::Tessera {

/// Keys of no more bits are sorted in one pass where there are many of them.
inline constexpr unsigned int WIDEST_DIGIT = 11;
/// As many fewer ones take in each pass.
inline constexpr unsigned int NARROW_DIGIT = 9;
/// The widest key of a pair.
inline constexpr unsigned int MOST_KEY_BITS = 3 * WIDEST_DIGIT;
/// From so many pairs on, the fewer passes of wide digits pay for clearing and adding up more counters.
inline constexpr std::uint32_t MANY_PAIRS = 4096;

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
/// Writes the sorted pairs' positions only; `pairs` and `spare` hold nothing of use afterwards. Nothing is written to
/// `spare` if there are MANY_PAIRS, whose keys have no more bits than WIDEST_DIGIT.
void SortPairs(std::uint64_t* pairs, std::uint64_t* spare, std::uint32_t count, unsigned int positionBits,
    unsigned int keyBits, std::uint32_t* positions);

} // namespace MERVO::Tessera
