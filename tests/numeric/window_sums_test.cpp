#include "tessera/numeric/window_sums.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "tessera/numeric/plain_nan.h"

namespace MERVO::Tessera::Func {
namespace {

template <typename Real>
class WindowSums : public testing::Test {
protected:
    std::vector<Real> Random(std::size_t count)
    {
        std::vector<Real> values(count);
        for (Real& value : values) {
            value = static_cast<Real>(static_cast<std::int32_t>(random())) / Real{1000};
        }
        return values;
    }

    /// One window after the other, the newest element first.
    static std::vector<Real> Model(const std::vector<Real>& values, std::size_t count, std::size_t window)
    {
        std::vector<Real> sums;
        for (std::size_t i = 0; i < count; ++i) {
            Real sum{0};
            for (std::size_t k = window; k-- > 0;) {
                sum += values[i + k];
            }
            sums.push_back(sum);
        }
        return sums;
    }

    std::mt19937_64 random{11};
};

using Reals = testing::Types<float, double>;
TYPED_TEST_SUITE(WindowSums, Reals);

// Widths around all sizes of groups, and counts that leave groups unfinished.
TYPED_TEST(WindowSums, AreAddedInOrder)
{
    for (std::size_t window = 1; window < 150; ++window) {
        for (const std::size_t count : {1U, 2U, 5U, 31U, 32U, 33U, 64U, 100U}) {
            const auto values = this->Random(count + window - 1 + WINDOW_SLACK);
            const auto expected = this->Model(values, count, window);
            for (const bool mayGoWide : {false, true}) {
                std::vector<TypeParam> sums(count + WINDOW_SLACK);
                AddWindows(values.data(), count, window, sums.data(), mayGoWide);
                ASSERT_EQ(std::memcmp(sums.data(), expected.data(), count * sizeof(TypeParam)), 0)
                    << count << " windows of " << window;
            }
        }
    }
}

// Of each kind of number alone and among others, since one decides how a block is divided.
TYPED_TEST(WindowSums, AreDividedAsByDivision)
{
    using Limits = std::numeric_limits<TypeParam>;
    auto values = this->Random(40);
    for (const TypeParam odd : {TypeParam{0}, Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(),
             -Limits::quiet_NaN(), Limits::max(), Limits::min(), Limits::denorm_min(), TypeParam{3}}) {
        for (const std::uint32_t divisor : {1U, 3U, 49U, 4000000001U}) {
            values[17] = odd;
            std::vector<TypeParam> quotients(values.size());
            FinishSums(values.data(), values.size(), divisor, quotients.data());
            for (std::size_t i = 0; i < values.size(); ++i) {
                const TypeParam quotient = WithPlainNan(values[i] / static_cast<TypeParam>(divisor));
                ASSERT_EQ(std::memcmp(&quotients[i], &quotient, sizeof quotient), 0) << values[i] << " / " << divisor;
            }
        }
    }
}

TYPED_TEST(WindowSums, AreExactAsFarAsTheDigitsReach)
{
    const auto areExact = [](std::vector<TypeParam> values, std::size_t window) {
        return HaveExactSums(values.data(), values.size(), window);
    };
    constexpr int DIGITS = std::numeric_limits<TypeParam>::digits;
    const TypeParam most = std::ldexp(TypeParam{1}, DIGITS - 7);
    EXPECT_TRUE(areExact({1, -2, 3}, 64));
    EXPECT_TRUE(areExact({0, -TypeParam{0}}, 64));
    EXPECT_TRUE(areExact({most - 1, 1}, 63));
    EXPECT_FALSE(areExact({4 * most, 1}, 64));
    EXPECT_FALSE(areExact({-4 * most, 1}, 64));
    EXPECT_TRUE(areExact({most / 1024, TypeParam{1} / 1024}, 63));
    EXPECT_FALSE(areExact({most, TypeParam{1} / 1024}, 63));
    EXPECT_FALSE(areExact({1, TypeParam{1} / 10}, 2));
    EXPECT_FALSE(areExact({1, std::numeric_limits<TypeParam>::infinity()}, 2));
    EXPECT_FALSE(areExact({1, -std::numeric_limits<TypeParam>::infinity()}, 2));
    EXPECT_FALSE(areExact({1, std::numeric_limits<TypeParam>::quiet_NaN()}, 2));
    EXPECT_FALSE(areExact({std::numeric_limits<TypeParam>::max(), 0}, 2));
    EXPECT_FALSE(areExact({std::numeric_limits<TypeParam>::denorm_min(), 0}, 2));
    // A cell that is none far from the end, where the first look doesn't reach.
    std::vector<TypeParam> late(200, TypeParam{3});
    late.front() = TypeParam{1} / 3;
    EXPECT_FALSE(areExact(late, 64));
}

} // namespace
} // namespace MERVO::Tessera::Func
