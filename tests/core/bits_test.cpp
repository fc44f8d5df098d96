// Packed bits: places, copies, searches, and their spread to a byte each.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "tessera/core/bit_bytes.h"
#include "tessera/core/bit_copy.h"
#include "tessera/core/bit_scan.h"

namespace MERVO::Tessera {
namespace {

constexpr std::uint32_t COUNTS[] = {0, 1, 2, 5, 7, 8, 9, 15, 16, 17, 23, 24, 25, 40, 61, 64, 67, 131};

/// Bits from an offset on, among others in a block that ends where they end, so that the address sanitizer sees a byte
/// read or written too many.
class Bits {
public:
    Bits(std::uint32_t firstBit, std::uint32_t bitCount, std::mt19937& random)
        : offset(firstBit), count(bitCount), bytes((firstBit + bitCount + 7) / 8)
    {
        std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<std::uint8_t>(random()); });
    }
    BitPosition First() { return {bytes.data(), offset}; }
    std::vector<bool> All() const
    {
        std::vector<bool> bits;
        for (std::size_t i = 0; i < 8 * bytes.size(); ++i) {
            bits.push_back((bytes[i / 8] >> (i % 8) & 1U) != 0);
        }
        return bits;
    }
    std::vector<bool> Range() const
    {
        const std::vector<bool> all = All();
        return {all.begin() + offset, all.begin() + offset + count};
    }
    /// All bits, once others stand in the range.
    template <typename Values>
    std::vector<bool> With(const Values& values) const
    {
        std::vector<bool> all = All();
        std::copy_n(values, count, all.begin() + offset);
        return all;
    }

private:
    std::uint32_t offset;
    std::uint32_t count;
    std::vector<std::uint8_t> bytes;
};

TEST(Bits, AreCopiedBetweenAllOffsets)
{
    std::mt19937 random(11);
    for (std::uint32_t fromOffset = 0; fromOffset < 8; ++fromOffset) {
        for (std::uint32_t toOffset = 0; toOffset < 8; ++toOffset) {
            for (const std::uint32_t count : COUNTS) {
                Bits from(fromOffset, count, random);
                Bits to(toOffset, count, random);
                const std::vector<bool> expected = to.With(from.Range().begin());
                CopyBits(from.First(), to.First(), count);
                ASSERT_EQ(to.All(), expected) << fromOffset << " to " << toOffset << ", " << count << " bits";
            }
        }
    }
}

TEST(Bits, AreSpreadToBoolsAndPackedAgain)
{
    std::mt19937 random(5);
    for (std::uint32_t offset = 0; offset < 8; ++offset) {
        for (const std::uint32_t count : COUNTS) {
            Bits bits(offset, count, random);
            const auto bools = std::make_unique<bool[]>(count);
            UnpackBits(bits.First(), bools.get(), count);
            ASSERT_EQ(std::vector<bool>(bools.get(), bools.get() + count), bits.Range()) << offset << ", " << count;
            std::generate_n(bools.get(), count, [&random] { return random() % 2 == 0; });
            const std::vector<bool> expected = bits.With(bools.get());
            PackBits(bools.get(), bits.First(), count);
            ASSERT_EQ(bits.All(), expected) << offset << ", " << count << " bits";
        }
    }
}

TEST(Bits, AreCountedAndFoundBetweenAnyTwoPlaces)
{
    constexpr std::uint32_t COUNT = 211; // three words and a part of one, with a part of a byte at the end
    std::mt19937 random(3);
    for (const unsigned int percent : {0U, 1U, 50U, 99U, 100U}) {
        Bits bits(0, COUNT, random);
        const auto at = [&bits](std::size_t place) { return bits.First() + static_cast<std::int64_t>(place); };
        for (std::size_t i = 0; i < COUNT; ++i) {
            *at(i) = random() % 100 < percent;
        }
        const std::vector<bool> values = bits.Range();
        for (std::size_t head = 0; head <= COUNT; ++head) {
            for (std::size_t tail = head; tail <= COUNT; ++tail) {
                const auto begin = values.begin() + static_cast<std::ptrdiff_t>(head);
                const auto end = values.begin() + static_cast<std::ptrdiff_t>(tail);
                ASSERT_EQ(CountBits(at(head), at(tail)), std::count(begin, end, true)) << head << " to " << tail;
                for (const bool wanted : {false, true}) {
                    ASSERT_EQ(FindBit(at(head), at(tail), wanted) - at(head), std::find(begin, end, wanted) - begin)
                        << percent << "%, " << wanted << " from " << head << " to " << tail;
                }
            }
        }
    }
    const BitPosition nowhere;
    EXPECT_EQ(CountBits(nowhere, nowhere), 0U);
    EXPECT_EQ(FindBit(nowhere, nowhere, true), nowhere);
}

TEST(BitPosition, StepsCarryIntoBytesInBothDirections)
{
    std::uint8_t bytes[9] = {};
    for (std::int64_t start = 0; start < 72; ++start) {
        for (std::int64_t step = -start; start + step <= 72; ++step) {
            const BitPosition position = BitPosition(bytes + start / 8, static_cast<std::uint32_t>(start % 8)) + step;
            const std::int64_t wanted = start + step;
            ASSERT_EQ(position.byte, bytes + wanted / 8) << start << " and " << step;
            ASSERT_EQ(position.offset, wanted % 8) << start << " and " << step;
            ASSERT_EQ(position - BitPosition(bytes, 0), wanted);
        }
    }
}

} // namespace
} // namespace MERVO::Tessera
