// Holds powers against exact ones, in whole numbers of any length.

#include "tessera/numeric/power.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace MERVO::Tessera::Func {
namespace {

/// A whole number of any length, 32 bits a digit, the lowest first.
using Whole = std::vector<std::uint32_t>;

Whole WholeOf(std::uint64_t value)
{
    return {static_cast<std::uint32_t>(value), static_cast<std::uint32_t>(value >> 32)};
}

Whole Times(const Whole& left, const Whole& right)
{
    Whole product(left.size() + right.size(), 0);
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::uint64_t carry = 0;
        for (std::size_t j = 0; j < right.size(); ++j) {
            carry += product[i + j] + std::uint64_t{left[i]} * right[j];
            product[i + j] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        product[i + right.size()] = static_cast<std::uint32_t>(carry);
    }
    return product;
}

Whole Shifted(const Whole& number, std::size_t bits)
{
    return Times(number, [bits] {
        Whole power(bits / 32 + 1, 0);
        power[bits / 32] = 1U << bits % 32;
        return power;
    }());
}

bool IsSet(const Whole& number, std::size_t bit) { return (number[bit / 32] >> bit % 32 & 1U) != 0; }

/// True where left is greater.
bool IsAbove(Whole left, Whole right)
{
    left.resize(std::max(left.size(), right.size()), 0);
    right.resize(left.size(), 0);
    return std::lexicographical_compare(right.rbegin(), right.rend(), left.rbegin(), left.rend());
}

/// A double as a whole number times a power of two.
struct Parts {
    std::uint64_t mantissa;
    int exponent;
};

Parts PartsOf(double value)
{
    int exponent = 0;
    const double fraction = std::frexp(std::abs(value), &exponent);
    return {static_cast<std::uint64_t>(std::ldexp(fraction, 53)), exponent - 53};
}

/// The double nearest to a whole number times a power of two, of two equally near ones the even one.
double Nearest(const Whole& number, int exponent)
{
    std::size_t top = number.size() * 32 - 1;
    while (!IsSet(number, top)) {
        --top;
    }
    std::uint64_t mantissa = 0;
    for (std::size_t i = 0; i < 53; ++i) {
        mantissa = mantissa << 1 | (i <= top && IsSet(number, top - i) ? 1U : 0U);
    }
    bool isAboveHalf = false;
    for (std::size_t bit = 0; top >= 53 && bit < top - 53; ++bit) {
        isAboveHalf = isAboveHalf || IsSet(number, bit);
    }
    const bool isHalf = top >= 53 && IsSet(number, top - 53);
    mantissa += isHalf && (isAboveHalf || (mantissa & 1U) != 0) ? 1 : 0;
    return std::ldexp(static_cast<double>(mantissa), exponent + static_cast<int>(top) - 52);
}

double ExactPower(double base, std::uint32_t exponent)
{
    const Parts parts = PartsOf(base);
    Whole power{1};
    for (std::uint32_t i = 0; i < exponent; ++i) {
        power = Times(power, WholeOf(parts.mantissa));
    }
    const double magnitude = Nearest(power, parts.exponent * static_cast<int>(exponent));
    return std::signbit(base) && exponent % 2 == 1 ? -magnitude : magnitude;
}

double RandomBase(std::mt19937_64& random, int spread)
{
    const auto fraction = static_cast<double>(static_cast<std::int64_t>(random())) / 9223372036854775808.0;
    return std::ldexp(fraction, static_cast<int>(random() % static_cast<unsigned int>(spread)) - spread / 2);
}

TEST(WholePowers, AreTheNearestDoubles)
{
    std::mt19937_64 random(3);
    for (const std::uint32_t exponent : {1U, 2U, 3U, 4U, 5U, 7U, 12U, 31U}) {
        for (int i = 0; i < 2000; ++i) {
            const double base = RandomBase(random, 20);
            ASSERT_EQ(WholePower(base, exponent), ExactPower(base, exponent))
                << std::hexfloat << base << " to the power " << exponent;
        }
    }
}

TEST(WholePowers, FollowPowWhereThereIsNoNumber)
{
    const double infinite = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double base : {0.0, -0.0, infinite, -infinite, 1e200, -1e200, 1e-200, -1e-200, 5e-324, nan}) {
        for (const std::uint32_t exponent : {0U, 1U, 2U, 3U, 1001U, 4294967295U}) {
            const double power = WholePower(base, exponent);
            const double expected = std::pow(base, static_cast<double>(exponent));
            EXPECT_TRUE(power == expected || (std::isnan(power) && std::isnan(expected))) << base << ' ' << exponent;
            EXPECT_EQ(std::signbit(power), std::signbit(expected)) << base << ' ' << exponent;
        }
    }
}

TEST(WholePowers, KeepTheirDigitsAtGreatExponents)
{
    EXPECT_EQ(WholePower(2.0, 800), 0x1p800);
    EXPECT_EQ(WholePower(-0.5, 801), -0x1p-801);
    EXPECT_EQ(WholePower(1.0 + 0x1p-20, 64), ExactPower(1.0 + 0x1p-20, 64));
    EXPECT_NEAR(WholePower(1.0 + 0x1p-32, 4294967295U), std::exp(4294967295.0 * std::log1p(0x1p-32)), 1e-13);
}

// The power p of x is nearest where x^3 lies between the squares of p less and plus half a unit.
TEST(PowersOfOneAndAHalf, AreTheNearestDoubles)
{
    std::mt19937_64 random(6);
    for (int i = 0; i < 4000; ++i) {
        const double base = std::abs(RandomBase(random, 40));
        const Parts power = PartsOf(PowerOneAndAHalf(base));
        const Parts parts = PartsOf(base);
        const int shift = 3 * parts.exponent + 2 - 2 * power.exponent; // (2 p)^2 against 4 x^3, at one scale
        Whole cube = Times(Times(WholeOf(parts.mantissa), WholeOf(parts.mantissa)), WholeOf(parts.mantissa));
        Whole below = Times(WholeOf(2 * power.mantissa - 1), WholeOf(2 * power.mantissa - 1));
        Whole above = Times(WholeOf(2 * power.mantissa + 1), WholeOf(2 * power.mantissa + 1));
        if (shift >= 0) {
            cube = Shifted(cube, static_cast<std::size_t>(shift));
        } else {
            below = Shifted(below, static_cast<std::size_t>(-shift));
            above = Shifted(above, static_cast<std::size_t>(-shift));
        }
        ASSERT_TRUE(IsAbove(cube, below) && IsAbove(above, cube)) << std::hexfloat << base;
    }
}

TEST(PowersOfOneAndAHalf, FollowPowWhereThereIsNoNumber)
{
    for (const double base : {0.0, 1e-300, 1e250, std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(PowerOneAndAHalf(base), std::pow(base, 1.5)) << base;
    }
    EXPECT_TRUE(std::isnan(PowerOneAndAHalf(std::numeric_limits<double>::quiet_NaN())));
}

} // namespace
} // namespace MERVO::Tessera::Func
