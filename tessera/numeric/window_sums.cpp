#include "tessera/numeric/window_sums.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "tessera/numeric/count_divisor.h"
#include "tessera/numeric/first_best.h"
#include "tessera/numeric/plain_nan.h"
#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera::Func {
namespace {

template <typename Real, std::size_t BYTES>
struct LanesOf {
    using Type [[gnu::vector_size(BYTES)]] = Real;
};

/// Lanes is a vector of Reals, or one Real.
template <typename Lanes, typename Real>
inline constexpr std::size_t WIDTH_OF = sizeof(Lanes) / sizeof(Real);

/// Adds one vector of neighbouring elements to the totals from FIRST to LAST.
template <std::size_t FIRST, std::size_t LAST, typename Lanes, typename Real, std::size_t COUNT>
[[gnu::always_inline]] inline void TakeElements(Lanes (&totals)[COUNT], const Real* place)
{
    Lanes values;
    std::memcpy(&values, place, sizeof values);
    [&]<std::size_t... I>(std::index_sequence<I...>) __attribute__((always_inline))
    {
        ((totals[FIRST + I] += values), ...);
    }
    (std::make_index_sequence<LAST - FIRST + 1>{});
}

/// Adds a vector's width of elements, from `newest` downwards, to some of the totals.
template <std::size_t FIRST, std::size_t LAST, typename Lanes, typename Real, std::size_t COUNT>
[[gnu::always_inline]] inline void TakeStep(Lanes (&totals)[COUNT], const Real* newest)
{
    for (std::size_t i = 0; i < WIDTH_OF<Lanes, Real>; ++i) {
        TakeElements<FIRST, LAST>(totals, newest - i);
    }
}

/**
 * Adds up as many windows as COUNT vectors hold, each total those of neighbouring ones. An element belongs to a total
 * while it lies in its windows: first the newest ones come, to the last totals alone; then most, to all; then the
 * oldest, to the first totals alone.
 */
template <typename Lanes, typename Real, std::size_t... I>
[[gnu::always_inline]] inline void AddGroup(
    const Real* oldest, std::size_t window, Real* sums, std::index_sequence<I...>)
{
    constexpr std::size_t COUNT = sizeof...(I) + 1;
    constexpr std::size_t WIDTH = WIDTH_OF<Lanes, Real>;
    constexpr std::size_t LAST = COUNT - 1;
    Lanes totals[COUNT] = {};
    const Real* const newest = oldest + window - 1;
    (TakeStep<LAST - I, LAST>(totals, newest + (LAST - I) * WIDTH), ...);
    for (std::size_t i = LAST * WIDTH; i < window; ++i) {
        TakeElements<0, LAST>(totals, newest + LAST * WIDTH - i);
    }
    (TakeStep<0, LAST - 1 - I>(totals, oldest + (LAST - I) * WIDTH - 1), ...);
    std::memcpy(sums, totals, sizeof totals);
}

template <typename Lanes, std::size_t COUNT, typename Real>
[[gnu::always_inline]] inline void AddGroups(const Real* values, std::size_t count, std::size_t window, Real* sums)
{
    constexpr std::size_t WINDOWS = COUNT * WIDTH_OF<Lanes, Real>;
    static_assert(WINDOWS <= WINDOW_SLACK);
    for (std::size_t i = 0; i < count; i += WINDOWS) {
        AddGroup<Lanes>(values + i, window, sums + i, std::make_index_sequence<COUNT - 1>{});
    }
}

/// A window must reach over all totals of a group but the last.
template <typename Lanes, typename Real>
[[gnu::always_inline]] inline void AddWindowsBy(const Real* values, std::size_t count, std::size_t window, Real* sums)
{
    constexpr std::size_t WIDTH = WIDTH_OF<Lanes, Real>;
    if (window >= 7 * WIDTH) {
        AddGroups<Lanes, 8>(values, count, window, sums);
    } else if (window >= 3 * WIDTH) {
        AddGroups<Lanes, 4>(values, count, window, sums);
    } else if (window >= WIDTH) {
        AddGroups<Lanes, 2>(values, count, window, sums);
    } else {
        AddGroups<Lanes, 1>(values, count, window, sums);
    }
}

template <typename Real>
void AddWindowsHere(const Real* values, std::size_t count, std::size_t window, Real* sums)
{
    AddWindowsBy<typename NumbersAtOnce<Real>::Type>(values, count, window, sums);
}

#ifdef TESSERA_WIDE_VECTOR_BYTES
template <typename Real>
TESSERA_WIDE_VECTORS void AddWindowsWide(const Real* values, std::size_t count, std::size_t window, Real* sums)
{
    AddWindowsBy<typename LanesOf<Real, TESSERA_WIDE_VECTOR_BYTES>::Type>(values, count, window, sums);
}
#endif

template <typename Real>
void PickAddWindows(
    const Real* values, std::size_t count, std::size_t window, Real* sums, [[maybe_unused]] bool mayGoWide)
{
#ifdef TESSERA_WIDE_VECTOR_BYTES
    if (mayGoWide && HasWideVectors()) {
        AddWindowsWide(values, count, window, sums);
        return;
    }
#endif
    AddWindowsHere(values, count, window, sums);
}

template <typename Real>
void FinishSumsHere(const Real* sums, std::size_t count, std::uint32_t divisor, Real* results)
{
    if (divisor == 1) {
        std::transform(sums, sums + count, results, [](Real sum) { return WithPlainNan(sum); });
        return;
    }
    const auto each = static_cast<Real>(divisor);
    std::transform(sums, sums + count, results, [each](Real sum) { return WithPlainNan(sum / each); });
}

#ifdef TESSERA_WIDE_VECTOR_BYTES
TESSERA_WIDE_VECTORS void DivideWide(const double* sums, std::size_t count, std::uint32_t divisor, double* results)
{
    const CountDivisor divided(divisor);
    for (std::size_t i = 0; i < count; ++i) {
        const double quotient = divided.FusedQuotient(sums[i]);
        results[i] = quotient == quotient ? quotient : WithPlainNan(sums[i]); // an infinite sum is its own quotient
    }
}

TESSERA_WIDE_VECTORS bool AreFusable(const double* sums, std::size_t count)
{
    return AreZeroOrAtLeast(CountDivisor::FUSED_FROM, sums, count);
}
#endif

template <typename Real>
void PickFinishSums(const Real* sums, std::size_t count, std::uint32_t divisor, Real* results)
{
#ifdef TESSERA_WIDE_VECTOR_BYTES
    if constexpr (std::is_same_v<Real, double>) {
        if (HasWideVectors() && AreFusable(sums, count)) { // no sum is -0, which a fused quotient would lose
            DivideWide(sums, count, divisor, results);
            return;
        }
    }
#endif
    FinishSumsHere(sums, count, divisor, results);
}

/// The largest magnitude; any number where NaN is among the values.
template <typename Real>
Real LargestMagnitude(const Real* values, std::size_t count)
{
    const Real largest = BestOf(values, values + count, Real{0}, IsGreater{});
    const Real smallest = BestOf(values, values + count, Real{0}, IsLess{});
    return std::max(largest, -smallest);
}

template <typename Real>
bool AreMultiples(const Real* values, std::size_t count, std::size_t window)
{
    constexpr int DIGITS = std::numeric_limits<Real>::digits;
    constexpr int SMALLEST = std::numeric_limits<Real>::min_exponent + 2 * DIGITS;
    int exponent = 0; // of a power of two above any sum of magnitudes, however the product is rounded
    const Real largest = LargestMagnitude(values, count) * static_cast<Real>(window);
    if (!(largest < std::numeric_limits<Real>::max() / 8)) {
        return false;
    }
    std::frexp(largest, &exponent);
    const int above = std::max(exponent, SMALLEST) + 1;
    // A number that ends at the unit's place is still the same after a detour to where the unit is the last place.
    const Real detour = std::ldexp(Real{1.5}, above - 1);
    std::size_t others = 0;
    for (std::size_t i = 0; i < count; ++i) {
        others += (values[i] + detour) - detour != values[i] ? 1 : 0;
    }
    return others == 0;
}

/// A few values tell soon that most columns are no such multiples: theirs is the smaller unit.
template <typename Real>
bool HaveExactSumsOf(const Real* values, std::size_t count, std::size_t window)
{
    constexpr std::size_t FEW = 32;
    const std::size_t few = std::min(count, FEW);
    return AreMultiples(values + (count - few), few, window) && AreMultiples(values, count, window);
}

template <typename Real>
void Slide(const Real* values, std::size_t count, std::size_t window, Real* sums)
{
    const Real* const newest = values + window - 1;
    Real total{0};
    for (const Real* value = values; value != newest; ++value) {
        total += *value;
    }
    for (std::size_t i = 0; i < count; ++i) {
        total += newest[i];
        sums[i] = total;
        total -= values[i];
    }
}

} // namespace

void AddWindows(const float* values, std::size_t count, std::size_t window, float* sums, bool mayGoWide)
{
    PickAddWindows(values, count, window, sums, mayGoWide);
}

void AddWindows(const double* values, std::size_t count, std::size_t window, double* sums, bool mayGoWide)
{
    PickAddWindows(values, count, window, sums, mayGoWide);
}

void FinishSums(const float* sums, std::size_t count, std::uint32_t divisor, float* results)
{
    PickFinishSums(sums, count, divisor, results);
}

void FinishSums(const double* sums, std::size_t count, std::uint32_t divisor, double* results)
{
    PickFinishSums(sums, count, divisor, results);
}

bool HaveExactSums(const float* values, std::size_t count, std::size_t window)
{
    return HaveExactSumsOf(values, count, window);
}

bool HaveExactSums(const double* values, std::size_t count, std::size_t window)
{
    return HaveExactSumsOf(values, count, window);
}

void SlideWindows(const float* values, std::size_t count, std::size_t window, float* sums)
{
    Slide(values, count, window, sums);
}

void SlideWindows(const double* values, std::size_t count, std::size_t window, double* sums)
{
    Slide(values, count, window, sums);
}

} // namespace MERVO::Tessera::Func
