#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tessera/core/bit_copy.h"

namespace MERVO::Tessera {
namespace {

using Bits = std::vector<bool>;

Bits BitsOf(const std::vector<std::uint8_t>& bytes)
{
    Bits bits;
    for (const std::uint8_t byte : bytes) {
        for (unsigned int bit = 0; bit < 8; ++bit) {
            bits.push_back((byte >> bit & 1U) != 0);
        }
    }
    return bits;
}

std::vector<std::uint8_t> RandomBytes(std::mt19937& random, std::size_t count)
{
    std::vector<std::uint8_t> bytes(count);
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    return bytes;
}

// The blocks end where the last bit does, so that the address sanitizer sees a byte read or written too many.
TEST(CopyBits, CopiesTheRangeAndNothingElseForAllOffsets)
{
    std::mt19937 random(11);
    for (std::uint32_t fromOffset = 0; fromOffset < 8; ++fromOffset) {
        for (std::uint32_t toOffset = 0; toOffset < 8; ++toOffset) {
            for (const std::uint32_t count :
                {0U, 1U, 2U, 5U, 7U, 8U, 9U, 15U, 16U, 17U, 23U, 24U, 25U, 64U, 67U, 131U}) {
                std::vector<std::uint8_t> from = RandomBytes(random, (fromOffset + count + 7) / 8);
                std::vector<std::uint8_t> to = RandomBytes(random, (toOffset + count + 7) / 8);
                const Bits source = BitsOf(from);
                Bits expected = BitsOf(to);
                std::copy_n(source.begin() + fromOffset, count, expected.begin() + toOffset);
                CopyBits({from.data(), fromOffset}, {to.data(), toOffset}, count);
                ASSERT_EQ(BitsOf(to), expected) << fromOffset << " to " << toOffset << ", " << count << " bits";
                ASSERT_EQ(BitsOf(from), source);
            }
        }
    }
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
