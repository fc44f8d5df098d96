// Memory that was given back comes again, within bounds.

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tessera/core/block.h"
#include "tessera/core/kept_blocks.h"

namespace MERVO::Tessera {
namespace {

constexpr std::size_t LARGE = std::size_t{1} << 20;

class KeptBlocksOf : public testing::Test {
protected:
    KeptBlocksOf()
    {
        FreeBlock(AllocateBlock(8 * LARGE, 1)); // as so much was in use, that much may be kept
        keptBlocks.ReleaseAll();
    }
    ~KeptBlocksOf() override { keptBlocks.ReleaseAll(); }
};

TEST_F(KeptBlocksOf, ServeOnlyWhatNeedsAboutAsMuch)
{
    void* const first = AllocateBlock(LARGE, 1);
    FreeBlock(first);
    void* const larger = AllocateBlock(LARGE + 1, 1);
    void* const muchSmaller = AllocateBlock(LARGE / 2, 1);
    void* const smaller = AllocateBlock(LARGE - 4096, 1);
    EXPECT_NE(larger, first);
    EXPECT_NE(muchSmaller, first);
    EXPECT_EQ(smaller, first);
    std::memset(smaller, 1, LARGE - 4096);
    void* const next = AllocateBlock(LARGE - 4096, 1);
    EXPECT_NE(next, first) << "taken twice";
    for (void* block : {larger, muchSmaller, smaller, next}) {
        FreeBlock(block);
    }
}

TEST_F(KeptBlocksOf, StayBelowTheirBounds)
{
    void* const tooLarge = AllocateBlock(MOST_KEPT_BYTES / 2 + 1, 1);
    FreeBlock(tooLarge);
    EXPECT_FALSE(keptBlocks.ReleaseAll()) << "a block of more than half of what may be kept";
    void* const small = AllocateBlock(SMALLEST_KEPT_BLOCK - 1, 1);
    FreeBlock(small);
    EXPECT_FALSE(keptBlocks.ReleaseAll());

    std::vector<void*> blocks;
    for (std::size_t bytes = 0; bytes <= MOST_KEPT_BYTES; bytes += LARGE) {
        blocks.push_back(AllocateBlock(LARGE, 1));
    }
    for (void* block : blocks) {
        FreeBlock(block);
    }
    std::size_t kept = 0;
    std::vector<void*> taken;
    for (void* block = keptBlocks.Take(LARGE); block != nullptr; block = keptBlocks.Take(LARGE)) {
        taken.push_back(block);
        kept += LARGE;
    }
    EXPECT_LE(kept, MOST_KEPT_BYTES);
    ASSERT_GE(taken.size(), 2U);
    EXPECT_EQ(taken.front(), blocks.back()) << "what was used last is warmest";
    for (void* block : taken) {
        FreeBlock(block);
    }
}

TEST_F(KeptBlocksOf, LeaveRoomForFreshOnes)
{
    constexpr std::size_t LARGER = 2 * LARGE;
    KeptBlocks blocks; // which has seen nothing in use
    const auto get = [&blocks](std::size_t bytes) {
        void* const block = blocks.Take(bytes);
        if (block != nullptr) {
            return block;
        }
        blocks.CountIn(bytes);
        return AllocateBlock(bytes, 1);
    };
    EXPECT_EQ(blocks.Take(SIZE_MAX / 2), nullptr) << "what nobody got doesn't count";
    ASSERT_TRUE(blocks.Keep(get(LARGER), LARGER));
    void* const fresh = get(LARGE);
    EXPECT_FALSE(blocks.ReleaseAll()) << "together they are more than was ever in use";
    void* const beside = get(LARGER);
    ASSERT_TRUE(blocks.Keep(fresh, LARGE));
    ASSERT_TRUE(blocks.Keep(beside, LARGER));
    EXPECT_EQ(get(LARGER), beside) << "once both were in use at a time";
    EXPECT_EQ(get(LARGE), fresh);
    FreeBlock(fresh);
    FreeBlock(beside);
}

TEST_F(KeptBlocksOf, GoBeforeMemoryRunsOut)
{
    FreeBlock(AllocateBlock(LARGE, 1));
    EXPECT_EQ(AllocateBlock(SIZE_MAX, 1), nullptr);
    EXPECT_FALSE(keptBlocks.ReleaseAll()) << "they could have made room";
}

TEST_F(KeptBlocksOf, AreSharedByThreads)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int round = 0; round < 200; ++round) {
                auto* const block = static_cast<unsigned char*>(AllocateBlock(LARGE, 1));
                ASSERT_NE(block, nullptr);
                block[round] = static_cast<unsigned char>(t);
                block[LARGE - 1] = static_cast<unsigned char>(t);
                std::this_thread::yield();
                EXPECT_EQ(block[round], t);
                EXPECT_EQ(block[LARGE - 1], t) << "somebody else has the block, too";
                FreeBlock(block);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace
} // namespace MERVO::Tessera
