#include "tessera/core/numeric_cast.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace MERVO::Tessera {
namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t MIN64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t MAX64 = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t MAX_UNSIGNED64 = std::numeric_limits<std::uint64_t>::max();

/// What a real number becomes in each integer type.
struct RealCase {
    double value;
    std::int8_t int8;
    std::uint8_t uint8;
    std::int16_t int16;
    std::uint16_t uint16;
    std::int32_t int32;
    std::uint32_t uint32;
    std::int64_t int64;
    std::uint64_t uint64;
};

// Up to 32 bits these are what arm-linux-gnueabihf-g++ -O2 made of a plain conversion: vcvt.s32 or vcvt.u32 by the sign
// of the target, then its low bits. Signed 64-bit targets clamp, where that compiler's runtime wraps.
const RealCase REAL_CASES[] = {
    {NOT_A_NUMBER, 0, 0, 0, 0, 0, 0, 0, 0},
    {-NOT_A_NUMBER, 0, 0, 0, 0, 0, 0, 0, 0},
    {INFINITE, -1, 255, -1, 65535, 2147483647, 4294967295, MAX64, MAX_UNSIGNED64},
    {-INFINITE, 0, 0, 0, 0, -2147483647 - 1, 0, MIN64, 0},
    {-0.0, 0, 0, 0, 0, 0, 0, 0, 0},
    {0.9990234375, 0, 0, 0, 0, 0, 0, 0, 0},
    {1.9375, 1, 1, 1, 1, 1, 1, 1, 1},
    {-0.5, 0, 0, 0, 0, 0, 0, 0, 0},
    {-1.9375, -1, 0, -1, 0, -1, 0, -1, 0},
    {127, 127, 127, 127, 127, 127, 127, 127, 127},
    {128, -128, 128, 128, 128, 128, 128, 128, 128},
    {300, 44, 44, 300, 300, 300, 300, 300, 300},
    {-129, 127, 0, -129, 0, -129, 0, -129, 0},
    {-200, 56, 0, -200, 0, -200, 0, -200, 0},
    {32768, 0, 0, -32768, 32768, 32768, 32768, 32768, 32768},
    {70000, 112, 112, 4464, 4464, 70000, 70000, 70000, 70000},
    {-70000, -112, 0, -4464, 0, -70000, 0, -70000, 0},
    {2147483648.0, -1, 0, -1, 0, 2147483647, 2147483648, 2147483648, 2147483648},
    {3e9, -1, 0, -1, 24064, 2147483647, 3000000000, 3000000000, 3000000000},
    {4294967296.0, -1, 255, -1, 65535, 2147483647, 4294967295, 4294967296, 4294967296},
    {-2147483648.0, 0, 0, 0, 0, -2147483647 - 1, 0, -2147483648, 0},
    {-4294967296.0, 0, 0, 0, 0, -2147483647 - 1, 0, -4294967296, 0},
    {9223372036854775808.0, -1, 255, -1, 65535, 2147483647, 4294967295, MAX64, 9223372036854775808U},
    {9223371487098961920.0, -1, 255, -1, 65535, 2147483647, 4294967295, 9223371487098961920, 9223371487098961920},
    {-9223372036854775808.0, 0, 0, 0, 0, -2147483647 - 1, 0, MIN64, 0},
    {-9223373136366403584.0, 0, 0, 0, 0, -2147483647 - 1, 0, MIN64, 0},
    {18446742974197923840.0, -1, 255, -1, 65535, 2147483647, 4294967295, MAX64, 18446742974197923840U},
    {18446744073709551616.0, -1, 255, -1, 65535, 2147483647, 4294967295, MAX64, MAX_UNSIGNED64},
    {1e30, -1, 255, -1, 65535, 2147483647, 4294967295, MAX64, MAX_UNSIGNED64},
};

template <typename Real>
void ExpectConverts(const RealCase& wanted, Real value)
{
    EXPECT_EQ(ConvertNumber<std::int8_t>(value), wanted.int8);
    EXPECT_EQ(ConvertNumber<std::uint8_t>(value), wanted.uint8);
    EXPECT_EQ(ConvertNumber<std::int16_t>(value), wanted.int16);
    EXPECT_EQ(ConvertNumber<std::uint16_t>(value), wanted.uint16);
    EXPECT_EQ(ConvertNumber<std::int32_t>(value), wanted.int32);
    EXPECT_EQ(ConvertNumber<std::uint32_t>(value), wanted.uint32);
    EXPECT_EQ(ConvertNumber<std::int64_t>(value), wanted.int64);
    EXPECT_EQ(ConvertNumber<std::uint64_t>(value), wanted.uint64);
}

TEST(ConvertNumber, RealsToIntegers)
{
    for (const RealCase& wanted : REAL_CASES) {
        SCOPED_TRACE(wanted.value);
        ExpectConverts(wanted, wanted.value);
        const auto narrowed = static_cast<float>(wanted.value);
        if (static_cast<double>(narrowed) == wanted.value || std::isnan(wanted.value)) {
            ExpectConverts(wanted, narrowed);
        }
    }
}

/// Cuts the ends off in double, where 32-bit ends are exact, then takes the low bits.
template <typename To>
To NaiveConversion(double value)
{
    using Wide = std::conditional_t<std::is_signed_v<To>, std::int32_t, std::uint32_t>;
    constexpr auto lowest = static_cast<double>(std::numeric_limits<Wide>::min());
    constexpr auto highest = static_cast<double>(std::numeric_limits<Wide>::max());
    const double cut = std::isnan(value) ? 0.0 : std::fmin(std::fmax(std::trunc(value), lowest), highest);
    return static_cast<To>(static_cast<std::int64_t>(cut));
}

template <typename To>
class NarrowTargetTest : public testing::Test {
};
using NarrowTargets =
    testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t>;
TYPED_TEST_SUITE(NarrowTargetTest, NarrowTargets);

// Whole columns at once, since a compiler may make another loop of the conversion than a single one.
TYPED_TEST(NarrowTargetTest, ColumnsOfRandomReals)
{
    std::mt19937_64 random(11);
    std::vector<double> doubles(4001);
    std::vector<float> floats(doubles.size());
    for (std::size_t i = 0; i < doubles.size(); ++i) {
        const auto bits = static_cast<std::int64_t>(random());
        const int shift = static_cast<int>(random() % 64);
        doubles[i] = i % 50 == 0 ? NOT_A_NUMBER : std::ldexp(static_cast<double>(bits), -shift);
        floats[i] = static_cast<float>(doubles[i]);
    }
    std::vector<TypeParam> fromDoubles(doubles.size());
    std::vector<TypeParam> fromFloats(doubles.size());
    for (std::size_t i = 0; i < doubles.size(); ++i) {
        fromDoubles[i] = ConvertNumber<TypeParam>(doubles[i]);
    }
    for (std::size_t i = 0; i < doubles.size(); ++i) {
        fromFloats[i] = ConvertNumber<TypeParam>(floats[i]);
    }
    for (std::size_t i = 0; i < doubles.size(); ++i) {
        ASSERT_EQ(fromDoubles[i], NaiveConversion<TypeParam>(doubles[i])) << doubles[i];
        ASSERT_EQ(fromFloats[i], NaiveConversion<TypeParam>(static_cast<double>(floats[i]))) << floats[i];
    }
}

#ifdef __arm__
// The hardware itself, which decides these results for all machines.
TEST(ConvertNumber, AgreesWithTheInstruction)
{
    std::mt19937_64 random(12);
    for (int i = 0; i < 20000; ++i) {
        const double value =
            std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())), -static_cast<int>(random() % 70));
        float signedBits = 0;
        float unsignedBits = 0;
        __asm__("vcvt.s32.f64 %0, %P1" : "=t"(signedBits) : "w"(value));
        __asm__("vcvt.u32.f64 %0, %P1" : "=t"(unsignedBits) : "w"(value));
        ASSERT_EQ(ConvertNumber<std::int32_t>(value), __builtin_bit_cast(std::int32_t, signedBits)) << value;
        ASSERT_EQ(ConvertNumber<std::uint32_t>(value), __builtin_bit_cast(std::uint32_t, unsignedBits)) << value;
    }
}
#endif

TEST(ConvertNumber, IntegersWrapToTheWidthOfTheTarget)
{
    EXPECT_EQ(ConvertNumber<std::int8_t>(std::int32_t{200}), -56);
    EXPECT_EQ(ConvertNumber<std::uint8_t>(std::int8_t{-1}), 255);
    EXPECT_EQ(ConvertNumber<std::int16_t>(std::uint64_t{0x123456789ABC8000}), -32768);
    EXPECT_EQ(ConvertNumber<std::uint32_t>(std::int64_t{-2}), 4294967294U);
    EXPECT_EQ(ConvertNumber<std::int32_t>(MIN64), 0);
    EXPECT_EQ(ConvertNumber<std::int64_t>(std::uint32_t{4294967295}), 4294967295); // no sign appears
    EXPECT_EQ(ConvertNumber<std::uint64_t>(std::int8_t{-128}), 18446744073709551488U);
    EXPECT_EQ(ConvertNumber<std::int64_t>(MAX_UNSIGNED64), -1);
}

// Rounding once, to even, also from integers that double can't hold.
TEST(ConvertNumber, IntegersToReals)
{
    EXPECT_EQ(ConvertNumber<float>(std::int32_t{16777217}), 16777216.0F);
    EXPECT_EQ(ConvertNumber<float>(std::uint32_t{4294967295}), 4294967296.0F);
    EXPECT_EQ(ConvertNumber<float>(MAX_UNSIGNED64), 18446744073709551616.0F);
    EXPECT_EQ(ConvertNumber<float>(std::uint64_t{0x8000008000000000}), 9223372036854775808.0F);  // a tie
    EXPECT_EQ(ConvertNumber<float>(std::uint64_t{0x8000008000000001}), 9223373136366403584.0F);  // just above it
    EXPECT_EQ(ConvertNumber<float>(std::int64_t{-0x4000004000000001}), -4611686568183201792.0F); // not by way of double
    EXPECT_EQ(ConvertNumber<double>(std::int64_t{9007199254740993}), 9007199254740992.0);
    EXPECT_EQ(ConvertNumber<double>(std::uint64_t{0x8000000000000401}), 9223372036854777856.0);
    EXPECT_EQ(ConvertNumber<double>(MIN64), -9223372036854775808.0);
}

TEST(ConvertNumber, BoolsAndRealsAmongThemselves)
{
    EXPECT_EQ(ConvertNumber<std::int8_t>(true), 1);
    EXPECT_EQ(ConvertNumber<std::uint64_t>(false), 0U);
    EXPECT_EQ(ConvertNumber<double>(true), 1.0);
    EXPECT_EQ(ConvertNumber<float>(16777217.0), 16777216.0F);
    EXPECT_EQ(ConvertNumber<float>(1e-46), 0.0F);
    EXPECT_EQ(ConvertNumber<float>(INFINITE), std::numeric_limits<float>::infinity());
    EXPECT_EQ(ConvertNumber<float>(1e300), std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(ConvertNumber<float>(NOT_A_NUMBER)));
    EXPECT_EQ(ConvertNumber<double>(0.1F), 0x1.99999ap-4);
}

} // namespace
} // namespace MERVO::Tessera
