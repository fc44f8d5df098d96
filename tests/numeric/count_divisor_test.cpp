// Quotients by multiplication are the processor's own.

#include "tessera/numeric/count_divisor.h"

#include <cmath>

#include <gtest/gtest.h>

#include "tests/support/random.h"

namespace MERVO::Tessera::Func {
namespace {

/// A double of any sign, and of a magnitude from 2^-899 to 2^1000, often with long runs of equal digits.
double AnyServed(Random& random)
{
    const std::uint64_t digits = std::uint64_t{random.Below(1U << 26)} << 26 | random.Below(1U << 26);
    const std::uint64_t shaped = random.Below(3) == 0 ? digits >> random.Below(52) : digits;
    const double significand = static_cast<double>((std::uint64_t{1} << 52) + shaped);
    const double value = std::ldexp(significand, static_cast<int>(random.Below(1899)) - 52 - 899);
    return random.Below(2) == 0 ? value : -value;
}

TEST(CountDivisor, GivesTheBitsOfDivision)
{
    Random random(5);
    for (int i = 0; i < 300000; ++i) {
        const std::uint32_t count =
            i % 8 == 0 ? 0xFFFFFFFFU - random.Below(1000) : 1 + random.Below(1U << 31 >> i % 31);
        double value = AnyServed(random);
        if (i % 4 == 0) { // next to a multiple, and to the middle between two
            value = std::nextafter(std::nextafter(value, 0.0) * count, value);
        }
        const CountDivisor divisor(count);
        ASSERT_EQ(divisor.FusedQuotient(value), divisor.Quotient(value)) << value << " / " << count;
    }
    EXPECT_EQ(CountDivisor(7).FusedQuotient(0.0), 0.0);
}

TEST(CountDivisor, FindsWhatLosesDigits)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double served[] = {0.0, -0.0, 1e-200, -1e-200, 1e300, none};
    EXPECT_TRUE(AreZeroOrAtLeast(1e-200, served, std::size(served)));
    for (const double small : {9e-201, -9e-201, 5e-324}) {
        const double values[] = {1.0, small, 2.0};
        EXPECT_FALSE(AreZeroOrAtLeast(1e-200, values, std::size(values))) << small;
    }
}

} // namespace
} // namespace MERVO::Tessera::Func
