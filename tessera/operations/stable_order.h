#pragma once

#include <cstdint>
#include <span>

#include "tessera/operations/sort_keys.h"

namespace MERVO::Tessera {

/// How much room a sort of few elements takes: less is slower there. Many are sorted in little room, which is faster.
enum class SortRoom : std::uint8_t { AMPLE, SCARCE };

/**
 * Brings positions into the order of the elements there, as std::stable_sort with `<` (descending: `>`) on the elements
 * does it. Elements that are neither less nor greater, like 0.0 and -0.0, keep the order of their positions; with NaN
 * among them the order is the one that this algorithm's merges come to.
 *
 * Keys are sorted by radix, as many of their leading bits as three digits take; what is equal in them is sorted by the
 * rest. Sorted input is noticed at once. Working set: 9 bytes per position, or up to 17 where many keys begin with the
 * same digit; 16 for fewer positions than 2^19 (with SCARCE room: 2^13); with NaN 24. Where that can't be had, the work
 * is done in place, which takes longer; among floating numbers std::bad_alloc is thrown if that has no room either.
 * @param flags as many as positions, or none: flag i is set to 1 where the elements at positions i - 1 and i have
 *              different keys then. None for floating numbers, of which those with different keys can be as good as
 *              equal.
 */
void OrderStably(const SortKeys& keys, bool ascending, std::span<std::uint32_t> positions,
    std::span<std::uint8_t> flags = {}, SortRoom room = SortRoom::AMPLE);

} // namespace MERVO::Tessera
