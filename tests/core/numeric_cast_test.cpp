#include "tessera/core/numeric_cast.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

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

} // namespace
} // namespace MERVO::Tessera
