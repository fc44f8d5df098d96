#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace MERVO::Tessera {

/**
 * Calls visit(i, place) with place = placeOf(i), the address of an element, for each i below a count. While one element
 * is visited, memory is asked for those that come later, unless they lie close behind each other.
 *
 * This is for elements that lie scattered over more memory than the caches hold. Of what is asked for the innermost
 * cache, only few lines can be on their way at a time; so a line is asked for the next cache first, early enough to
 * come from anywhere. Both functions are taken as copies, which no write to an element can touch.
 */
template <typename PlaceOf, typename Visit>
void VisitScattered(std::size_t count, PlaceOf placeOf, Visit visit)
{
    constexpr std::size_t FAR = 96;
    constexpr std::size_t NEAR = 16;
    constexpr std::size_t STRIDE = 128; ///< elements between looks at how they lie
    constexpr std::size_t CLOSE = 4 * STRIDE * sizeof(*placeOf(0));
    constexpr int FOR_READING = 0;
    constexpr int NOT_INNERMOST = 1;
    const auto addressOf = [placeOf](std::size_t i) { return reinterpret_cast<std::uintptr_t>(placeOf(i)); };
    for (std::size_t i = 0; i < count;) {
        const std::size_t end = std::min(i + STRIDE, count);
        if (end + FAR <= count && addressOf(end - 1) - addressOf(i) > CLOSE) {
            for (; i < end; ++i) {
                __builtin_prefetch(placeOf(i + FAR), FOR_READING, NOT_INNERMOST);
                __builtin_prefetch(placeOf(i + NEAR));
                visit(i, placeOf(i));
            }
        }
        for (; i < end; ++i) {
            visit(i, placeOf(i));
        }
    }
}

} // namespace MERVO::Tessera
