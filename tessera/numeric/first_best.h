#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

#include "tessera/core/bit_scan.h"
#include "tessera/core/date_time.h"

namespace MERVO::Tessera::Func {

/// What an element needs to take the place of the best so far. Between equals the earlier one stays, and NaN neither
/// takes a place nor loses one. They compare single values, and vectors of them element by element.
struct IsGreater {
    template <typename T>
    auto operator()(const T& value, const T& best) const
    {
        return best < value;
    }
    bool operator()(const DateTime& value, const DateTime& best) const { return best.TimeStamp() < value.TimeStamp(); }
};

struct IsLess {
    template <typename T>
    auto operator()(const T& value, const T& best) const
    {
        return value < best;
    }
    bool operator()(const DateTime& value, const DateTime& best) const { return value.TimeStamp() < best.TimeStamp(); }
};

/// Elements between two looks at the best of them. A block stays in the first-level cache.
template <typename Number>
inline constexpr std::ptrdiff_t BLOCK_OF = 16 * 1024 / sizeof(Number);

/// True where the processors that a build is for compare vectors of such numbers, whatever they are besides.
template <typename Number>
inline constexpr bool HAS_VECTORS =
#if defined(__SSE2__)
    std::is_floating_point_v<Number> || sizeof(Number) < sizeof(std::int64_t);
#elif defined(__aarch64__)
    true;
#elif defined(__ARM_NEON)
    std::is_integral_v<Number> && sizeof(Number) < sizeof(std::int64_t); // its float vectors lose subnormal numbers
#else
    false;
#endif

/// Numbers that are compared at once.
template <typename Number, bool = HAS_VECTORS<Number>>
struct NumbersAtOnce {
    using Type [[gnu::vector_size(16)]] = Number;
};

template <typename Number>
struct NumbersAtOnce<Number, false> {
    using Type = Number;
};

/// The best of some numbers and one found before. Of zeros of both signs it is any; FirstBest tells which came first.
template <typename Number, typename Better>
Number BestOf(const Number* head, const Number* tail, Number best, Better better)
{
    using Lanes = typename NumbersAtOnce<Number>::Type;
    constexpr std::ptrdiff_t WIDTH = sizeof(Lanes) / sizeof(Number);
    const auto take = [better](Lanes& lanes, const Number* place) {
        Lanes values;
        std::memcpy(&values, place, sizeof values);
        lanes = better(values, lanes) ? values : lanes;
    };
    if (tail - head >= 4 * WIDTH) {
        // Four that don't wait for each other.
        Number start[WIDTH];
        std::fill_n(start, WIDTH, best);
        Lanes first;
        std::memcpy(&first, start, sizeof first);
        Lanes second = first;
        Lanes third = first;
        Lanes fourth = first;
        for (; tail - head >= 4 * WIDTH; head += 4 * WIDTH) {
            take(first, head);
            take(second, head + WIDTH);
            take(third, head + 2 * WIDTH);
            take(fourth, head + 3 * WIDTH);
        }
        first = better(second, first) ? second : first;
        third = better(fourth, third) ? fourth : third;
        first = better(third, first) ? third : first;
        Number found[WIDTH];
        std::memcpy(found, &first, sizeof first);
        for (const Number number : found) {
            best = better(number, best) ? number : best;
        }
    }
    for (; head != tail; ++head) {
        best = better(*head, best) ? *head : best;
    }
    return best;
}

template <typename Number, typename Better>
[[gnu::noinline]] const Number* FirstBestNumber(const Number* const head, const Number* const tail, Better better)
{
    Number best = *head;
    const Number* blockOfBest = head;
    for (const Number* block = head; block != tail;) {
        const Number* const end = block + std::min(BLOCK_OF<Number>, tail - block);
        const Number bestHere = BestOf(block, end, best, better);
        if (better(bestHere, best)) {
            best = bestHere;
            blockOfBest = block;
        }
        block = end;
    }
    // A NaN in front equals nothing, and was never replaced.
    return best == best ? std::find(blockOfBest, tail, best) : head;
}

/// The first place from `head` to before `tail` whose element no other one is better than; a NaN in front stays the
/// best. The range is not empty.
template <typename Position, typename Better>
Position FirstBest(Position head, Position tail, Better better)
{
    if constexpr (std::is_same_v<Position, BitPosition>) {
        const BitPosition place = FindBit(head, tail, better(true, false));
        return place == tail ? head : place;
    } else if constexpr (std::is_pointer_v<Position> && std::is_arithmetic_v<std::remove_pointer_t<Position>>) {
        return head + (FirstBestNumber(head, tail, better) - head);
    } else {
        Position best = head;
        while (++head != tail) {
            if (better(*head, *best)) {
                best = head;
            }
        }
        return best;
    }
}

} // namespace MERVO::Tessera::Func
