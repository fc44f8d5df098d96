#include "tessera/platform/bounded_calls.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <numeric>
#include <string>

#include <gtest/gtest.h>

#ifndef TESSERA_HOST_BOUNDED_CALLS

namespace MERVO::Tessera {
namespace {

constexpr std::size_t ROOM = 8;

struct CopyCase {
    std::size_t room;
    std::ptrdiff_t source; ///< within the block of 32 bytes from whose start to copy; -1 for null
    std::size_t count;
    int result;
};

TEST(BoundedCopy, CopiesOrClears)
{
    const CopyCase cases[] = {
        {ROOM, 16, ROOM, 0},
        {ROOM, 16, 3, 0},
        {ROOM, 16, 0, 0},
        {ROOM, ROOM, ROOM, 0}, // side by side
        {ROOM, 16, ROOM + 1, ERANGE},
        {0, 16, 1, ERANGE},
        {ROOM, 4, 5, EINVAL}, // overlap
        {ROOM, 0, 1, EINVAL},
        {ROOM, -1, 1, EINVAL},
    };
    for (const CopyCase& wanted : cases) {
        std::array<unsigned char, 32> block = {};
        std::iota(block.begin(), block.end(), static_cast<unsigned char>(1));
        std::array<unsigned char, 32> expected = block;
        for (std::size_t i = 0; i < wanted.room && wanted.result != 0; ++i) {
            expected[i] = 0;
        }
        for (std::size_t i = 0; i < wanted.count && wanted.result == 0; ++i) {
            expected[i] = block[static_cast<std::size_t>(wanted.source) + i];
        }
        const unsigned char* source = wanted.source < 0 ? nullptr : block.data() + wanted.source;
        EXPECT_EQ(memcpy_s(block.data(), wanted.room, source, wanted.count), wanted.result);
        EXPECT_EQ(block, expected) << "from " << wanted.source << ", " << wanted.count << " bytes";
    }
    EXPECT_EQ(memcpy_s(nullptr, ROOM, "", 1), EINVAL);
    char letter = 'a';
    EXPECT_NE(memcpy_s(&letter, std::numeric_limits<std::size_t>::max(), "b", 1), 0);
    EXPECT_EQ(letter, 'a');
}

TEST(BoundedFormat, FitsOrIsEmpty)
{
    std::string text(ROOM, '#');
    EXPECT_EQ(sprintf_s(text.data(), ROOM, "%d", 1234567), 7);
    EXPECT_STREQ(text.c_str(), "1234567");
    EXPECT_EQ(sprintf_s(text.data(), ROOM, "%d", 12345678), -1);
    EXPECT_STREQ(text.c_str(), "");
    EXPECT_EQ(sprintf_s(text.data(), ROOM, "%d%%n", 5), 3) << "a percent sign and a letter";
    EXPECT_STREQ(text.c_str(), "5%n");
    EXPECT_EQ(sprintf_s(text.data(), 0, "%d", 1), -1);
    EXPECT_STREQ(text.c_str(), "5%n");
    EXPECT_EQ(sprintf_s(nullptr, ROOM, "%d", 1), -1);
}

TEST(BoundedFormat, RefusesToWriteElsewhere)
{
    std::string text(ROOM, '#');
    int count = 77;
    EXPECT_EQ(sprintf_s(text.data(), ROOM, "12%n", &count), -1);
    EXPECT_EQ(count, 77);
    EXPECT_STREQ(text.c_str(), "");
}

TEST(BoundedScan, ReadsNumbersOnly)
{
    int first = 0;
    int second = 0;
    EXPECT_EQ(sscanf_s("12-34", "%2d-%2d", &first, &second), 2);
    EXPECT_EQ(first, 12);
    EXPECT_EQ(second, 34);
    EXPECT_EQ(sscanf_s("56 letters", "%d %d", &first, &second), 1);
    EXPECT_EQ(first, 56);
    EXPECT_EQ(sscanf_s("letters", "%d", &first), 0);
    EXPECT_EQ(sscanf_s("   ", "%d", &first), EOF);
    EXPECT_EQ(sscanf_s("5%s", "%d%%s", &first), 1) << "a percent sign and a letter";
    std::array<char, ROOM> text = {'#'};
    EXPECT_EQ(sscanf_s("abc", "%7s", text.data()), EOF);
    EXPECT_EQ(sscanf_s("abc", "%3c", text.data()), EOF);
    EXPECT_EQ(sscanf_s("abc", "%7[a-z]", text.data()), EOF);
    EXPECT_EQ(text[0], '#');
}

} // namespace
} // namespace MERVO::Tessera

#endif
