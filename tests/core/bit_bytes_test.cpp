#include "tessera/core/bit_bytes.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

namespace MERVO::Tessera {
namespace {

// The blocks end where the last bit does, so that the address sanitizer sees a byte read or written too many.
TEST(BitBytes, UnpackAndPackTheRangeAndNothingElseForAllOffsets)
{
    std::mt19937 random(5);
    for (std::uint32_t offset = 0; offset < 8; ++offset) {
        for (const std::uint32_t count : {0U, 1U, 3U, 7U, 8U, 9U, 15U, 16U, 17U, 40U, 61U}) {
            std::vector<std::uint8_t> bytes((offset + count + 7) / 8);
            for (std::uint8_t& byte : bytes) {
                byte = static_cast<std::uint8_t>(random());
            }
            const BitPosition place(bytes.data(), offset);
            const auto bools = std::make_unique<bool[]>(count);
            UnpackBits(place, bools.get(), count);
            std::vector<std::uint8_t> wanted = bytes;
            for (std::uint32_t i = 0; i < count; ++i) {
                ASSERT_EQ(bools[i], static_cast<bool>(*(place + i))) << offset << ", bit " << i << " of " << count;
                bools[i] = random() % 2 == 0;
                *(BitPosition(wanted.data(), offset) + i) = bools[i];
            }
            PackBits(bools.get(), place, count);
            ASSERT_EQ(bytes, wanted) << offset << ", " << count << " bits";
        }
    }
}

} // namespace
} // namespace MERVO::Tessera
