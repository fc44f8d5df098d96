#include "tessera/numeric/column_sums.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace MERVO::Tessera::Func {
namespace {

template <typename Integer>
class SumsOfIntegers : public testing::Test {
};

using Integers = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
    std::int64_t, std::uint64_t>;
TYPED_TEST_SUITE(SumsOfIntegers, Integers);

/// Totals on both sides of 2^53, where adding in another order begins to show.
constexpr double TOTALS[] = {0.0, -3.0, 9007199254740990.0, 9007199254740992.0, -9007199254740991.0,
    9007199254740992.0 - 4096.0, -9007199254740992.0 + 4096.0 * 32768.0, 9007199254740992.0 - 4096.0 * 4294967296.0,
    18014398509481984.0, 9223372036854775808.0};

TYPED_TEST(SumsOfIntegers, RoundAsOneAdditionAfterTheOther)
{
    std::mt19937_64 random(29);
    for (const double total : TOTALS) {
        for (const std::size_t count : {0, 1, 2, 4095, 4096, 4097, 9000}) {
            for (const unsigned int shift : {0U, 11U, 30U, 53U, 63U}) { // from any magnitude to few bits
                std::vector<TypeParam> values(count);
                double expected = total;
                for (TypeParam& value : values) {
                    value = static_cast<TypeParam>(static_cast<std::int64_t>(random()) >> shift);
                    expected += static_cast<double>(value);
                }
                EXPECT_EQ(SumOfIntegers(total, values.data(), values.data() + count), expected)
                    << total << " and " << count << " values, shifted by " << shift;
            }
        }
    }
}

} // namespace
} // namespace MERVO::Tessera::Func
