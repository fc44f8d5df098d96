#include "tessera/core/dynamic_array.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <vector>

namespace MERVO::Tessera {
namespace {

TEST(Block, HasNoRoomBeyondTheAddressSpace)
{
    constexpr std::size_t MOST = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(AllocateBlock(MOST / 4 + 2, 4), nullptr); // the product wraps to 4
    EXPECT_EQ(AllocateBlock(MOST, 1), nullptr);
}

// Blocks without a huge page in them, with one or two, and ending beside one.
TEST(Block, IsWritableThroughoutWhateverItsSize)
{
    constexpr std::size_t HUGE_PAGE = std::size_t{2} << 20;
    for (const std::size_t size : {std::size_t{1}, HUGE_PAGE - 1, HUGE_PAGE, 2 * HUGE_PAGE - 1, 3 * HUGE_PAGE + 5}) {
        auto* const block = static_cast<unsigned char*>(AllocateBlock(size, 1));
        ASSERT_NE(block, nullptr);
        std::fill_n(block, size, static_cast<unsigned char>(0xA5));
        EXPECT_EQ(std::count(block, block + size, 0xA5), static_cast<std::ptrdiff_t>(size));
        FreeBlock(block);
    }
}

/// Numbers itself when it is made, and tells when it goes.
struct Element {
    Element() : number(made++)
    {
        if (number == throwingNumber) {
            throw std::runtime_error("no more");
        }
    }
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;
    ~Element() { gone.push_back(number); }

    int number;
    static inline int made = 0;
    static inline int throwingNumber = -1;
    static inline std::vector<int> gone;
};

class DynamicArrayOfElements : public testing::Test {
protected:
    void SetUp() override
    {
        Element::made = 0;
        Element::throwingNumber = -1;
        Element::gone.clear();
    }
};

TEST_F(DynamicArrayOfElements, MakesEachOnceAndDestroysInReverse)
{
    {
        DynamicArray<Element> array(4);
        ASSERT_EQ(array.end() - array.begin(), 4);
        EXPECT_EQ(array.begin()[2].number, 2);
    }
    EXPECT_EQ(Element::made, 4);
    EXPECT_THAT(Element::gone, testing::ElementsAre(3, 2, 1, 0));
}

TEST_F(DynamicArrayOfElements, LetsGoOfAllWhenOneCantBeMade)
{
    Element::throwingNumber = 2;
    EXPECT_THROW(DynamicArray<Element>(4), std::runtime_error); // the block too, or the leak sanitizer would tell
    EXPECT_THAT(Element::gone, testing::UnorderedElementsAre(0, 1));
}

} // namespace
} // namespace MERVO::Tessera
