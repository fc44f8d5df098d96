#include "tessera/core/bit_scan.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace MERVO::Tessera {
namespace {

/// Bits in a block that ends where they end, so that a sanitizer sees a read behind them.
class Bits {
public:
    explicit Bits(const std::vector<bool>& values) : bytes((values.size() + 7) / 8)
    {
        BitPosition place = At(0);
        for (const bool value : values) {
            *place = value;
            ++place;
        }
    }
    BitPosition At(std::size_t bit) { return BitPosition(bytes.data(), 0) + static_cast<std::int64_t>(bit); }

private:
    std::vector<std::uint8_t> bytes;
};

std::vector<bool> RandomBits(std::size_t count, double share, unsigned int seed)
{
    std::mt19937 random(seed);
    std::vector<bool> values(count);
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = static_cast<double>(random()) / 4294967296.0 < share;
    }
    return values;
}

TEST(BitScan, AgreesWithALoopBetweenAnyTwoPlaces)
{
    constexpr std::size_t COUNT = 211; // three words and a part of one, with a part of a byte at the end
    for (const double share : {0.0, 0.01, 0.5, 0.99, 1.0}) {
        const std::vector<bool> values = RandomBits(COUNT, share, 3);
        Bits bits(values);
        for (std::size_t head = 0; head <= COUNT; ++head) {
            for (std::size_t tail = head; tail <= COUNT; ++tail) {
                const auto begin = values.begin() + static_cast<std::ptrdiff_t>(head);
                const auto end = values.begin() + static_cast<std::ptrdiff_t>(tail);
                ASSERT_EQ(CountBits(bits.At(head), bits.At(tail)), std::count(begin, end, true))
                    << share << ", " << head << " to " << tail;
                for (const bool wanted : {false, true}) {
                    ASSERT_EQ(FindBit(bits.At(head), bits.At(tail), wanted) - bits.At(head),
                        std::find(begin, end, wanted) - begin)
                        << share << ", " << wanted << " from " << head << " to " << tail;
                }
            }
        }
    }
}

TEST(BitScan, FindsNothingInNoMemory)
{
    const BitPosition nowhere(nullptr, 0);
    EXPECT_EQ(CountBits(nowhere, nowhere), 0U);
    EXPECT_EQ(FindBit(nowhere, nowhere, true), nowhere);
}

} // namespace
} // namespace MERVO::Tessera
