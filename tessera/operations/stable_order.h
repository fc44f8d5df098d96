#pragma once

#include <cstdint>
#include <span>

#include "tessera/operations/sort_keys.h"

namespace MERVO::Tessera {

/**
 * Brings positions into the order of the elements there, as std::stable_sort with `<` (descending: `>`) on the elements
 * does it. Elements that are neither less nor greater, like 0.0 and -0.0, keep the order of their positions; with NaN
 * among them the order is the one that this algorithm's merges come to.
 *
 * Keys are sorted by radix, as many of their leading bits as three passes take; what is equal in them is sorted by the
 * rest. Sorted input is noticed at once. Working set: 16 bytes per position, with NaN 24. Where that can't be had, the
 * work is done in place, which takes longer; among floating numbers std::bad_alloc is thrown if that has no room
 * either.
 */
void OrderStably(const SortKeys& keys, bool ascending, std::span<std::uint32_t> positions);
/// Also sets flag i to 1 where the elements at positions i - 1 and i have different keys then. Not for floating
/// numbers, of which those with different keys can be as good as equal.
void OrderStably(
    const SortKeys& keys, bool ascending, std::span<std::uint32_t> positions, std::span<std::uint8_t> flags);

} // namespace MERVO::Tessera
