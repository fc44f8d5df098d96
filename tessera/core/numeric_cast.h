#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

namespace MERVO::Tessera {

/// Truncates toward zero as 32-bit ARM hardware does: beyond an end of Integer that end, and 0 for NaN.
/// Integer has 32 or 64 bits. Comparisons and selections only, so that a loop over it can be vectorised.
template <typename Integer, typename Real>
constexpr Integer ClampToInteger(Real value) noexcept
{
    static_assert(std::is_floating_point_v<Real> && sizeof(Integer) >= sizeof(std::int32_t));
    using Limits = std::numeric_limits<Integer>;
    // Powers of two, which Real holds exactly; the largest integer itself would be rounded by a float.
    constexpr Real end = static_cast<Real>(Limits::max() / 2 + 1) * Real{2};
    constexpr Real begin = std::is_signed_v<Integer> ? -end : Real{0};
    const Real raised = value >= begin ? value : begin; // NaN too
    const Integer inside = static_cast<Integer>(raised < end ? raised : Real{0});
    const Integer clamped = raised < end ? inside : Limits::max();
    return value == value ? clamped : Integer{0};
}

/**
 * Converts between any two arithmetic types, with one result on every machine.
 *
 * Integers wrap to the target's width, and bool counts as 0 or 1. From float and double to integers the result is that
 * of ClampToInteger; targets of 8 and 16 bits take the low bits of a 32-bit conversion of their own signedness, so that
 * 300.0 gives 44 in 8 bits and -1.0 gives 0 in any unsigned target. All else is the language's own conversion.
 */
template <typename To, typename From>
constexpr To ConvertNumber(From value) noexcept
{
    static_assert(std::is_arithmetic_v<To> && std::is_arithmetic_v<From>);
    static_assert(!std::is_same_v<To, bool>, "which numbers are true is a question of its own");
    if constexpr (std::is_floating_point_v<From> && std::is_integral_v<To>) {
        using Narrow = std::conditional_t<std::is_signed_v<To>, std::int32_t, std::uint32_t>;
        using Wide = std::conditional_t<(sizeof(To) > sizeof(Narrow)), To, Narrow>;
        return static_cast<To>(ClampToInteger<Wide>(value));
    } else {
        return static_cast<To>(value);
    }
}

} // namespace MERVO::Tessera
