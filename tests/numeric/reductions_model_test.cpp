// Holds the reductions against loops that take one element after the other, over random columns of every value type.

#include "tessera/numeric/cal_mean.h"
#include "tessera/numeric/first_best.h"
#include "tests/numeric/statistics.h"

namespace MERVO::Tessera {
namespace {

using Random = std::mt19937_64;

/// As the columns of statistics, and of the value types that have none.
template <typename T>
T RandomValue(Random& random, Flavour flavour)
{
    constexpr char LETTERS[] = {'a', 'b', '\0', '\xFF'};
    if constexpr (std::is_same_v<T, bool>) {
        const bool isRare = random() % 300 == 0;
        const bool isEven = random() % 2 == 0;
        return flavour == EQUAL || (flavour == WITH_NAN ? isRare : flavour == ONLY_NAN ? !isRare : isEven);
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return DateTime(RandomCell<std::int32_t>(random, flavour));
    } else if constexpr (std::is_same_v<T, std::string>) {
        std::string cell(flavour == EQUAL ? 20 : 0, 'a'); // equal for longer than a string holds in itself
        for (std::size_t length = random() % 4; length != 0; --length) {
            cell.push_back(LETTERS[random() % sizeof LETTERS]);
        }
        return cell;
    } else {
        return RandomCell<T>(random, flavour);
    }
}

template <typename T>
typename Window<T>::Neighbours NeighboursOf()
{
    if constexpr (std::is_floating_point_v<T>) {
        return {std::numeric_limits<T>::infinity(), std::numeric_limits<T>::quiet_NaN()};
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return {DateTime(2147483647), DateTime(-2147483647L - 1)};
    } else if constexpr (std::is_same_v<T, std::string>) {
        return {"\xFF\xFF\xFF\xFF", ""};
    } else {
        return {std::numeric_limits<T>::max(), std::numeric_limits<T>::min()};
    }
}

template <typename T>
testing::AssertionResult SumsAgree(const Cursor& range, const std::vector<T>& cells)
{
    if constexpr (!std::is_same_v<T, std::string>) {
        const auto sum = Reduces<Func::Sum>(range, ReductionModel<T>::Sum(cells));
        const auto mean = Reduces<Func::Mean>(range, ReductionModel<T>::Mean(cells));
        if (!sum || !mean) {
            return sum ? mean : sum;
        }
    }
    if constexpr (Arithmetic<T>) {
        return IsBitwise(Func::CalMean(range, false), ReductionModel<T>::MeanOfNumbers(cells, false));
    }
    return testing::AssertionSuccess();
}

template <typename T>
testing::AssertionResult ExtremaAgree(const Cursor& range, const std::vector<T>& cells)
{
    auto agree = Reduces<Func::IdxMax>(range, ReductionModel<T>::IdxMax(cells));
    agree = agree ? Reduces<Func::Max>(range, ReductionModel<T>::Max(cells)) : agree;
    if constexpr (!std::is_same_v<T, std::string>) {
        agree = agree ? Reduces<Func::Min>(range, ReductionModel<T>::Min(cells)) : agree;
        agree = agree ? Reduces<Func::Ptp>(range, ReductionModel<T>::Ptp(cells)) : agree;
    }
    return agree;
}

/// Row counts around everything that a kernel takes at once: vectors, batches, words and blocks.
template <typename T>
std::vector<std::size_t> RowCounts()
{
    std::vector<std::size_t> counts{
        0, 1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129, 300, 4097};
    if constexpr (Arithmetic<T>) {
        constexpr auto BLOCK = static_cast<std::size_t>(Func::BLOCK_OF<T>);
        counts.insert(counts.end(), {BLOCK - 1, BLOCK, BLOCK + 1, 2 * BLOCK + 1});
    }
    return counts;
}

template <typename T>
class ReductionsOfType : public testing::Test {
};

using ReducedTypes = testing::Types<bool, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
    std::uint32_t, std::int64_t, std::uint64_t, float, double, std::string, DateTime>;
TYPED_TEST_SUITE(ReductionsOfType, ReducedTypes);

TYPED_TEST(ReductionsOfType, AgreeWithTheModel)
{
    Random random(41);
    for (const std::size_t count : RowCounts<TypeParam>()) {
        for (int flavour = 0; flavour < FLAVOUR_COUNT; ++flavour) {
            std::vector<TypeParam> cells;
            for (std::size_t row = 0; row < count; ++row) {
                const bool isFirstNan = row == 0 && flavour == WITH_NAN && random() % 2 == 0;
                cells.push_back(RandomValue<TypeParam>(random, isFirstNan ? ONLY_NAN : static_cast<Flavour>(flavour)));
            }
            for (const ContainerID container : BOTH_CONTAINERS) {
                const auto firstRow = static_cast<std::uint32_t>(random() % 19);
                const Window<TypeParam> window(cells, container, firstRow, NeighboursOf<TypeParam>());
                ASSERT_TRUE(SumsAgree(window.Range(), cells))
                    << count << " rows from " << firstRow << ", flavour " << flavour << ", container " << container;
                ASSERT_TRUE(count == 0 || ExtremaAgree(window.Range(), cells))
                    << count << " rows from " << firstRow << ", flavour " << flavour << ", container " << container;
            }
        }
    }
}

template <typename T>
class ExtremaOfNumbers : public testing::Test {
};

using Numbers = testing::Types<bool, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
    std::uint32_t, std::int64_t, std::uint64_t, float, double>;
TYPED_TEST_SUITE(ExtremaOfNumbers, Numbers);

TYPED_TEST(ExtremaOfNumbers, StandAtTheFirstOfTwoBestWhereverTheyLie)
{
    constexpr std::size_t COUNT = 150;
    for (std::size_t place = 0; place < COUNT; ++place) {
        std::vector<TypeParam> cells(COUNT, TypeParam{0});
        cells[place] = TypeParam{1};
        cells[place + (COUNT - place) / 2] = TypeParam{1};
        const Window<TypeParam> window(cells, CONTAINER_ARRAY, 5, NeighboursOf<TypeParam>());
        ASSERT_TRUE(ExtremaAgree(window.Range(), cells)) << "place " << place;
    }
}

} // namespace
} // namespace MERVO::Tessera
