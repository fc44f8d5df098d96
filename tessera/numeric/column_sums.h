#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "tessera/core/bit_scan.h"
#include "tessera/core/linked_list.h"
#include "tessera/numeric/plain_nan.h"

namespace MERVO::Tessera::Func {

/// The NaN that a sum ends in; see AddTerm.
template <typename Total, typename Position>
Total NanOfSum(Position head, Position tail)
{
    Total total{0};
    for (; head != tail && total == total; ++head) {
        AddTerm(total, static_cast<Total>(*head));
    }
    return total;
}

/// Adds floats or doubles from the first to the last, each converted to Total before. NaN goes through to the result.
template <typename Total, typename Position>
Total SumOfReals(Position head, const Position tail)
{
    Total total{0};
    for (Position place = head; place != tail; ++place) {
        total += static_cast<Total>(*place);
    }
    return total == total ? total : NanOfSum<Total>(head, tail);
}

/// A sum without its NaN elements, and how many it has of the others.
struct PresentSum {
    double total = 0.0; ///< NaN where infinities of both signs met
    std::uint32_t count = 0;
};

/// Adds the floats or doubles that are not NaN, in double, from the first to the last.
template <typename Real>
PresentSum SumOfPresent(ListPosition<Real> head, const ListPosition<Real> tail)
{
    PresentSum sum;
    for (; head != tail; ++head) {
        const double value = *head;
        if (value == value) {
            sum.total += value;
            ++sum.count;
        }
    }
    return sum;
}

/**
 * The same from an array, without a branch that a rare NaN would mislead.
 *
 * Zeros stand in for NaN. They alter no bit: a total that starts at +0.0 never becomes -0.0, the one value that +0.0
 * would alter. The batch is short, so that preparing the next one hides behind the additions, each of which waits for
 * the one before.
 */
template <typename Real>
[[gnu::noinline]] PresentSum SumOfPresent(const Real* head, const Real* const tail)
{
    constexpr std::ptrdiff_t BATCH = 16;
    double total = 0.0;
    std::int64_t missing = 0;
    const auto length = tail - head;
    for (; tail - head >= BATCH; head += BATCH) {
        double present[BATCH];
        for (std::ptrdiff_t i = 0; i < BATCH; ++i) {
            const double value = head[i];
            missing += value != value ? 1 : 0;
            present[i] = value == value ? value : 0.0;
        }
        for (const double value : present) {
            total += value;
        }
    }
    for (; head != tail; ++head) {
        const double value = *head;
        missing += value != value ? 1 : 0;
        total += value == value ? value : 0.0;
    }
    return {total, static_cast<std::uint32_t>(length - missing)};
}

/// The exact sum of a few integers, and a bound on the magnitude of every partial sum, in any order.
struct BlockSum {
    std::int64_t sum;
    double bound;
};

/// Integers of up to 32 bits: the bound follows from the type and the number of elements.
template <typename Integer>
BlockSum SumOfBlock(const Integer* head, const Integer* tail)
{
    using Lane = std::conditional_t<sizeof(Integer) <= sizeof(std::int16_t), std::int32_t, std::int64_t>;
    constexpr double LARGEST = static_cast<double>(std::uint64_t{1} << (8 * sizeof(Integer)));
    Lane sum = 0;
    const auto bound = static_cast<double>(tail - head) * LARGEST;
    for (; head != tail; ++head) {
        sum += *head;
    }
    return {sum, bound};
}

/// Integers of 64 bits: the bound is looked up. Where it is useless the sum may have wrapped, and is useless too.
template <typename Integer>
requires(sizeof(Integer) == sizeof(std::uint64_t)) BlockSum SumOfBlock(const Integer* head, const Integer* tail)
{
    std::uint64_t sum = 0;
    std::uint64_t magnitudes = 0; // no element is farther from zero than this and one
    const auto length = static_cast<double>(tail - head);
    for (; head != tail; ++head) {
        const Integer value = *head;
        sum += static_cast<std::uint64_t>(value);
        magnitudes |= static_cast<std::uint64_t>(value < 0 ? ~value : value);
    }
    return {static_cast<std::int64_t>(sum), length * (static_cast<double>(magnitudes) + 1.0)};
}

/// Adds integers to a total, in double, from the first to the last. A value beyond 2^53 is rounded before it is added.
template <typename Integer>
double SumOfIntegers(double total, ListPosition<Integer> head, const ListPosition<Integer> tail)
{
    for (; head != tail; ++head) {
        total += static_cast<double>(*head);
    }
    return total;
}

/// Adds a block of integers to a total in any order, if no partial sum can reach 2^53: then none is rounded, and the
/// order does not matter. False, and nothing added, otherwise.
template <typename Integer>
bool AddExactly(double& total, const Integer* head, const Integer* tail)
{
    constexpr double EXACT_BELOW = 9007199254740992.0;
    if (std::abs(total) >= EXACT_BELOW) {
        return false;
    }
    const BlockSum block = SumOfBlock(head, tail);
    if (std::abs(total) + block.bound >= EXACT_BELOW) {
        return false;
    }
    total += static_cast<double>(block.sum);
    return true;
}

/// The same from an array, with the same bits, at full width where that can be.
template <typename Integer>
[[gnu::noinline]] double SumOfIntegers(double total, const Integer* head, const Integer* const tail)
{
    constexpr std::ptrdiff_t BLOCK = 4096;
    while (head != tail) {
        const Integer* const end = head + std::min(BLOCK, tail - head);
        if (AddExactly(total, head, end)) {
            head = end;
        }
        for (; head != end; ++head) {
            total += static_cast<double>(*head);
        }
    }
    return total;
}

inline std::uint32_t CountTrue(BitPosition head, BitPosition tail) { return CountBits(head, tail); }

inline std::uint32_t CountTrue(ListPosition<bool> head, ListPosition<bool> tail)
{
    std::uint32_t count = 0;
    for (; head != tail; ++head) {
        count += *head ? 1U : 0U;
    }
    return count;
}

} // namespace MERVO::Tessera::Func
