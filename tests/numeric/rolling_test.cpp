#include "tessera/numeric/rolling.h"

#include <numeric>

#include <gmock/gmock.h>

#include "tessera/numeric/rolling_column.h"
#include "tests/numeric/statistics.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using Func::RollingParam;
using testing::ElementsAre;

constexpr std::uint32_t NO_GAPS = 0xFFFFFFFF;
constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

using RollingSum = Func::RollingSum<CONTAINER_ARRAY, RollingParam>;
using RollingMean = Func::RollingMean<CONTAINER_ARRAY, RollingParam>;

/// Adds the whole column once for each place in a window, and counts what is missing by the way.
template <typename T>
std::vector<StatisticOf<T>> RollModel(const std::vector<T>& cells, const RollingParam& param, bool isMean)
{
    using Real = StatisticOf<T>;
    const auto [window, center, minPeriods] = param;
    const auto n = static_cast<std::uint32_t>(cells.size());
    if (n < window) {
        return std::vector<Real>(n, std::numeric_limits<Real>::quiet_NaN());
    }
    if (window == 0) {
        return std::vector<Real>(n, Real{0});
    }
    std::vector<Real> sum(n + window - 1, Real{0});
    std::vector<std::uint32_t> invalid(sum.size(), 0);
    for (std::uint32_t k = 0; k < window; ++k) {
        for (std::uint32_t j = 0; j < sum.size(); ++j) {
            if (std::isnan(sum[j])) {
                continue;
            }
            const bool isInside = j >= k && j - k < n;
            const Real element = isInside ? static_cast<Real>(cells[j - k]) : std::numeric_limits<Real>::quiet_NaN();
            if (!std::isnan(element)) {
                sum[j] += element;
            } else if (++invalid[j] > window - minPeriods || minPeriods == NO_GAPS) {
                sum[j] = std::numeric_limits<Real>::quiet_NaN();
            }
        }
    }
    for (std::uint32_t j = 0; isMean && j < sum.size(); ++j) {
        sum[j] /= static_cast<Real>(minPeriods == NO_GAPS ? window : window - invalid[j]);
    }
    std::vector<Real> results;
    const std::uint32_t shift = center ? window - 1 - window / 2 : 0;
    for (std::uint32_t i = 0; i < n; ++i) {
        results.push_back(Plain(sum[shift + i]));
    }
    return results;
}

template <typename T>
class RollingOfType : public testing::Test {
};
TYPED_TEST_SUITE(RollingOfType, NumberTypes);

TYPED_TEST(RollingOfType, AddsInTheOrderOfTheModel)
{
    std::mt19937_64 random(13);
    for (const std::uint32_t count : {1U, 2U, 9U, 70U, 100U}) {
        for (int flavour = PLAIN; flavour < FLAVOUR_COUNT; ++flavour) {
            const auto cells = RandomCells<TypeParam>(random, static_cast<Flavour>(flavour), count);
            const auto array = WindowOf(cells, CONTAINER_ARRAY, 3);
            const auto list = WindowOf(cells, CONTAINER_LIST, 3);
            for (const std::uint32_t window : {0U, 1U, 2U, 3U, 9U, 65U, 70U, 71U, 99U}) {
                for (const std::uint32_t minPeriods :
                    {static_cast<std::uint32_t>(random() % (window + 3)), window, NO_GAPS}) {
                    const RollingParam param{window, random() % 2 == 0, minPeriods};
                    const auto sums = RollModel(cells, param, false);
                    const auto means = RollModel(cells, param, true);
                    const auto told = testing::Message() << count << " of flavour " << flavour << ", window " << window
                                                         << " centred " << param.center << " at least " << minPeriods;
                    ASSERT_TRUE(Gives(RollingSum(param), array.Range(), sums)) << told;
                    ASSERT_TRUE(Gives(RollingMean(param), array.Range(), means)) << told;
                    ASSERT_TRUE(Gives(RollingSum(param), list.Range(), sums)) << told;
                }
            }
        }
    }
}

// Blocks of a few rows, and running totals as soon as they are exact, meet all edges within a short column.
TYPED_TEST(RollingOfType, IsTheSameInBlocksOfAnyLength)
{
    using Real = StatisticOf<TypeParam>;
    std::mt19937_64 random(17);
    for (int round = 0; round < 400; ++round) {
        const auto flavour = static_cast<Flavour>(random() % FLAVOUR_COUNT);
        const auto cells = RandomCells<TypeParam>(random, flavour, static_cast<std::size_t>(1 + random() % 60));
        const auto window = static_cast<std::uint32_t>(1 + random() % cells.size());
        const RollingParam param{window, random() % 2 == 0, static_cast<std::uint32_t>(random() % (window + 2))};
        const bool isMean = random() % 2 == 0;
        const Func::RollingRun run{param, isMean, "", static_cast<std::uint32_t>(1 + random() % 9),
            static_cast<std::uint32_t>(random() % 2 == 0 ? 2 : 1000)};
        const auto column = WindowOf(cells, CONTAINER_ARRAY, 0);
        const SeriesPtr result = Column<Real>("result", std::vector<Real>(cells.size()));
        ASSERT_EQ(Func::RollColumn(column.Range(), result->GetIterator(), run, std::type_identity<Real>{}), 0);
        const auto got = CellsOf<Real>(result->GetIterator());
        const auto expected = RollModel(cells, param, isMean);
        for (std::size_t i = 0; i < got.size(); ++i) {
            ASSERT_TRUE(IsBitwise<Real>(got[i], expected[i])) << "round " << round << " at " << i;
        }
    }
}

TEST(Rolling, OfALongColumnPassesFromBlockToBlock)
{
    std::mt19937_64 random(19);
    for (const Flavour flavour : {PLAIN, WITH_NAN}) {
        const auto cells = RandomCells<double>(random, flavour, 5200);
        const std::vector<std::int32_t> wholes = RandomCells<std::int32_t>(random, flavour, cells.size());
        const auto doubles = WindowOf(cells, CONTAINER_ARRAY, 0);
        const auto integers = WindowOf(wholes, CONTAINER_ARRAY, 0);
        for (const std::uint32_t window : {100U, 2048U, 2600U, 5200U}) {
            const RollingParam param{window, random() % 2 == 0, window / 2};
            EXPECT_TRUE(Gives(RollingMean(param), doubles.Range(), RollModel(cells, param, true))) << window;
            EXPECT_TRUE(Gives(RollingSum(param), integers.Range(), RollModel(wholes, param, false))) << window;
        }
    }
}

struct RollingCase {
    const char* name;
    std::vector<double> cells;
    RollingParam param;
    std::vector<double> sums;
    std::vector<double> means;
};

const RollingCase ROLLING_CASES[] = {
    {"NoneMissing", {1, 2, 3, 4}, {2, false, NO_GAPS}, {NO_VALUE, 3, 5, 7}, {NO_VALUE, 1.5, 2.5, 3.5}},
    {"OneIsEnough", {1, 2, 3, 4}, {2, false, 1}, {1, 3, 5, 7}, {1, 1.5, 2.5, 3.5}},
    {"Centred", {1, 2, 3}, {3, true, 1}, {3, 6, 5}, {1.5, 2, 2.5}},
    {"CentredOfEvenWidth", {1, 2, 4, 8, 16}, {4, true, NO_GAPS}, {NO_VALUE, NO_VALUE, 15, 30, NO_VALUE},
        {NO_VALUE, NO_VALUE, 3.75, 7.5, NO_VALUE}},
    {"CentredOfEvenWidthWithEnds", {1, 2, 4, 8, 16}, {4, true, 0}, {3, 7, 15, 30, 28},
        {1.5, 7.0 / 3.0, 3.75, 7.5, 28.0 / 3.0}},
    {"NanSpoils", {1, NO_VALUE, 3, 4}, {2, false, NO_GAPS}, {NO_VALUE, NO_VALUE, NO_VALUE, 7},
        {NO_VALUE, NO_VALUE, NO_VALUE, 3.5}},
    {"NanIsLeftOut", {1, NO_VALUE, 3, 4}, {2, false, 1}, {1, 1, 3, 7}, {1, 1, 3, 3.5}},
    {"NothingPresent", {NO_VALUE, NO_VALUE, 5}, {2, false, 0}, {0, 0, 5}, {NO_VALUE, NO_VALUE, 5}},
    {"TooFewPresent", {NO_VALUE, 2, 3, NO_VALUE}, {3, false, 2}, {NO_VALUE, NO_VALUE, 5, 5},
        {NO_VALUE, NO_VALUE, 2.5, 2.5}},
    {"MoreWantedThanTheWindowHas", {NO_VALUE, 2, 3}, {2, false, 3}, {0, 2, 5}, {NO_VALUE, 2, 2.5}},
    {"WiderThanTheColumn", {1, 2, 3}, {4, false, 1}, {NO_VALUE, NO_VALUE, NO_VALUE}, {NO_VALUE, NO_VALUE, NO_VALUE}},
    {"HugeWindow", {1, 2, 3}, {0xFFFFFFFF, true, 0}, {NO_VALUE, NO_VALUE, NO_VALUE}, {NO_VALUE, NO_VALUE, NO_VALUE}},
    {"AsWideAsTheColumn", {1, 2, 3}, {3, false, 1}, {1, 3, 6}, {1, 1.5, 2}},
    {"NoWidth", {1, NO_VALUE, 3}, {0, false, NO_GAPS}, {0, 0, 0}, {0, 0, 0}},
    {"OneWide", {1, NO_VALUE, -0.0}, {1, false, NO_GAPS}, {1, NO_VALUE, 0}, {1, NO_VALUE, 0}},
    {"Infinities", {INFINITE, -INFINITE, 1, 2}, {2, false, 1}, {INFINITE, NO_VALUE, -INFINITE, 3},
        {INFINITE, NO_VALUE, -INFINITE, 1.5}},
    {"NewestFirst", {1e16, -1e16, 1}, {3, false, 1}, {1e16, 0, 0}, {1e16, 0, 0}},
};

class RollingCases : public testing::TestWithParam<RollingCase> {};
INSTANTIATE_TEST_SUITE_P(Cases, RollingCases, testing::ValuesIn(ROLLING_CASES),
    [](const auto& wanted) { return std::string(wanted.param.name); });

TEST_P(RollingCases, AreAsTold)
{
    const RollingCase& wanted = GetParam();
    for (const ContainerID container : BOTH_CONTAINERS) {
        const auto window = WindowOf(wanted.cells, container, 2);
        EXPECT_TRUE(Gives(RollingSum(wanted.param), window.Range(), wanted.sums));
        EXPECT_TRUE(Gives(RollingMean(wanted.param), window.Range(), wanted.means));
    }
}

TEST(Rolling, OfNothingWritesNothing)
{
    const SeriesPtr empty = Column<double>("a", {});
    const SeriesPtr emptyList = Column<double>("a", {}, CONTAINER_LIST);
    const RollingSum sum({0, false, 1});
    const LogCapture log;
    EXPECT_EQ(sum.ProcessSeries(empty->GetIterator(), empty->GetIterator(), true).code, 0);
    EXPECT_THAT(log.Texts(1), ElementsAre("the data pointer is nullptr and data is invalid"));
    EXPECT_EQ(sum.ProcessSeries(emptyList->GetIterator(), emptyList->GetIterator(), true).code, 0);
    EXPECT_EQ(log.Count(), 1U);
}

// The length and the window do not fit into 32 bits together; nothing of the column is read.
TEST(Rolling, OfMoreThanItCanCountWritesNothing)
{
    constexpr std::uint32_t HALF = 0x80000000;
    std::int8_t cell = 0;
    const Cursor huge = std::make_unique<Iterator<CONTAINER_ARRAY, std::int8_t>>(&cell,
        reinterpret_cast<std::int8_t*>(reinterpret_cast<std::uintptr_t>(&cell) + HALF),
        SeriesAttr{HALF, CONTAINER_ARRAY, TESSERA_INT8});
    ASSERT_EQ(huge->Length(), HALF);
    const SeriesPtr result = Column<double>("result", {7.0, 8.0});
    const LogCapture log;
    EXPECT_EQ(RollingSum({HALF, false, 1}).ProcessSeries(huge, result->GetIterator(), true).code, 0);
    EXPECT_EQ(log.Count(), 0U);
    EXPECT_THAT(CellsOf<double>(result->GetIterator()), ElementsAre(7.0, 8.0));
}

TEST(Rolling, StaysWithinAShorterDestination)
{
    const SeriesPtr column = Column<double>("a", {1, 2, 3, 4});
    const SeriesPtr result = Column<double>("result", {7.0, 8.0, 9.0});
    EXPECT_EQ(RollingSum({2, false, 1}).ProcessSeries(column->GetIterator(), result->GetIterator(0, 2), true).code, 0);
    EXPECT_THAT(CellsOf<double>(result->GetIterator()), ElementsAre(1.0, 3.0, 9.0));
}

TEST(Rolling, MayWriteOverItsOwnColumn)
{
    for (const bool center : {false, true}) {
        std::vector<double> cells(300);
        std::iota(cells.begin(), cells.end(), 1.0);
        const SeriesPtr column = Column<double>("a", cells);
        const auto expected = RollModel(cells, {3, center, 1}, false);
        const Func::RollingRun run{{3, center, 1}, false, "", 2};
        EXPECT_EQ(Func::RollColumn(column->GetIterator(), column->GetIterator(), run, std::type_identity<double>{}), 0);
        EXPECT_EQ(CellsOf<double>(column->GetIterator()), expected);
    }
}

TEST(Rolling, WithoutMemoryTriesTheOtherKernel)
{
    const SeriesPtr column = Column<double>("a", {1, 2, 3});
    const SeriesPtr list = Column<double>("a", {1, 2, 3}, CONTAINER_LIST);
    for (const unsigned int spared : {0U, 1U, 2U}) { // the three working arrays
        const SeriesPtr result = Column<double>("result", {7.0, 7.0, 7.0});
        const Cursor array = column->GetIterator();
        const Cursor nodes = list->GetIterator();
        const Cursor dst = result->GetIterator();
        const RollingSum sum({2, false, 1});
        const LogCapture log;
        Error error;
        {
            const FailingAllocation failing(spared);
            error = sum.ProcessSeries(array, dst, true);
            EXPECT_TRUE(FailingAllocation::HasFailed());
        }
        EXPECT_EQ(error.code, 0);
        EXPECT_THAT(log.Texts(1), ElementsAre("Apply for sum array or invalidnum array failed"));
        EXPECT_THAT(CellsOf<double>(dst), ElementsAre(1.0, 3.0, 5.0));
        {
            const FailingAllocation failing(spared);
            error = sum.ProcessSeries(nodes, dst, true);
        }
        EXPECT_EQ(error.code, 21);
        EXPECT_EQ(error.message, "Error on calling functor: RollingSum");
        EXPECT_EQ(log.Texts(1).back(), "initialized storage failed");
        EXPECT_THAT(CellsOf<double>(dst), ElementsAre(1.0, 3.0, 5.0));
    }
}

} // namespace
} // namespace MERVO::Tessera
