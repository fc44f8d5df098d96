#include "tessera/numeric/moments.h"

#include "tests/numeric/statistics_model.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using Moment = Func::Moment<CONTAINER_ARRAY, std::uint32_t>;
using Kstat = Func::Kstat<CONTAINER_ARRAY, std::uint32_t>;

constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

template <typename T>
class MomentsOfType : public testing::Test {
};
TYPED_TEST_SUITE(MomentsOfType, NumberTypes);

TYPED_TEST(MomentsOfType, AddInTheOrderOfTheModel)
{
    std::mt19937_64 random(7);
    for (const std::size_t count : {1U, 2U, 3U, 4U, 5U, 16U, 33U, 600U}) {
        for (int flavour = PLAIN; flavour < FLAVOUR_COUNT; ++flavour) {
            const auto cells = RandomCells<TypeParam>(random, static_cast<Flavour>(flavour), count);
            const StatisticsModel<TypeParam> model(cells);
            for (const ContainerID container : BOTH_CONTAINERS) {
                const auto window = WindowOf(cells, container, 2);
                for (const std::uint32_t degree : {0U, 1U, 2U, 3U, 4U, 9U}) {
                    EXPECT_TRUE(GivesCell(Moment(degree), window.Range(), model.Moment(degree)))
                        << count << " of flavour " << flavour << ", degree " << degree;
                }
                for (std::uint32_t degree = 1; degree <= 4; ++degree) {
                    EXPECT_TRUE(GivesCell(Kstat(degree), window.Range(), model.Kstat(degree)))
                        << count << " of flavour " << flavour << ", degree " << degree;
                }
            }
        }
    }
}

struct MomentCase {
    const char* name;
    std::vector<double> cells;
    std::uint32_t degree;
    double moment;
};

const MomentCase MOMENT_CASES[] = {
    {"NoneOfThem", {1.0, 2.0, 9.0}, 0, 1.0},
    {"NoneOfThemEvenOfNan", {1.0, NO_VALUE}, 0, 1.0},
    {"Second", {1.0, 2.0, 3.0, 6.0}, 2, 3.5},
    {"Third", {1.0, 2.0, 3.0, 6.0}, 3, 4.5},
    {"Fourth", {1.0, 2.0, 3.0, 6.0}, 4, 24.5},
    {"Nothing", {}, 2, NO_VALUE},
    {"NothingOfNone", {}, 0, NO_VALUE},
    {"Nan", {1.0, NO_VALUE}, 1, NO_VALUE},
    {"HugeDegreeOfSmallDeviations", {0.5, -0.5}, 4294967295U, 0.0},
    {"HugeDegreeOfGreatDeviations", {2.0, -2.0}, 4294967295U, NO_VALUE},
    {"HugeEvenDegree", {2.0, -2.0}, 4294967294U, INFINITE},
};

TEST(Moments, FollowTheirDefinition)
{
    for (const MomentCase& wanted : MOMENT_CASES) {
        const auto window = WindowOf(wanted.cells, CONTAINER_ARRAY, 1);
        EXPECT_TRUE(GivesCell(Moment(wanted.degree), window.Range(), wanted.moment)) << wanted.name;
    }
}

TEST(Moments, TakeBoolsAsZeroAndOne)
{
    for (const ContainerID container : BOTH_CONTAINERS) {
        const Window<bool> window({true, false, false, false}, container, 7, {true, true});
        EXPECT_TRUE(GivesCell(Moment(2), window.Range(), 0.1875));
        EXPECT_TRUE(GivesCell(Moment(3), window.Range(), 0.09375));
    }
}

// Of the whole numbers from 1 to n the cumulants' estimates are n (n + 1) / 12, 0 and -n^2 (n + 1)^2 / 120.
TEST(Kstatistics, OfConsecutiveNumbersAreKnown)
{
    for (std::int32_t n = 4; n <= 40; ++n) {
        std::vector<std::int32_t> cells;
        for (std::int32_t i = 1; i <= n; ++i) {
            cells.push_back(i);
        }
        const auto window = WindowOf(cells, CONTAINER_ARRAY, 3);
        const double product = n * (n + 1.0);
        const double expected[] = {(n + 1.0) / 2.0, product / 12.0, 0.0, -product * product / 120.0};
        for (std::uint32_t degree = 1; degree <= 4; ++degree) {
            Error error;
            const SeriesPtr result = RunOn(Kstat(degree), window.Range(), CONTAINER_ARRAY, error);
            const double wanted = expected[degree - 1];
            EXPECT_NEAR(CellsOf<double>(result->GetIterator())[0], wanted, std::abs(wanted) * 1e-11) << n << degree;
        }
    }
}

struct KstatCase {
    const char* name;
    std::vector<double> cells;
    std::uint32_t degree;
    double kstat;
};

const KstatCase KSTAT_CASES[] = {
    {"Mean", {1.0, 2.0, 6.0}, 1, 3.0},
    {"Variance", {1.0, 2.0, 3.0, 6.0}, 2, 14.0 / 3.0},
    {"Third", {1.0, 2.0, 3.0, 6.0}, 3, 12.0},
    {"VarianceOfOne", {3.0}, 2, NO_VALUE},
    {"ThirdOfTwo", {1.0, 2.0}, 3, NO_VALUE}, // where the divisor is zero, so is what it divides, but for rounding
    {"FourthOfThree", {0.0, 1.0, 3.0}, 4, NO_VALUE},
    {"Nan", {1.0, NO_VALUE, 3.0, 4.0, 5.0}, 4, NO_VALUE},
};

TEST(Kstatistics, FollowTheirFormulas)
{
    for (const KstatCase& wanted : KSTAT_CASES) {
        const auto window = WindowOf(wanted.cells, CONTAINER_ARRAY, 1);
        EXPECT_TRUE(GivesCell(Kstat(wanted.degree), window.Range(), wanted.kstat)) << wanted.name;
    }
}

TEST(Kstatistics, RefuseOtherDegrees)
{
    const SeriesPtr doubles = Column<double>("d", {1.0, 2.0});
    const SeriesPtr cell = Column<double>("result", {7.0});
    for (const std::uint32_t degree : {0U, 5U, 4294967295U}) {
        const LogCapture log;
        const Error error = Kstat(degree).ProcessSeries(doubles->GetIterator(), cell->GetIterator(), true);
        EXPECT_EQ(error.code, 5);
        EXPECT_EQ(error.message, "Error on calling functor: Kstat");
        EXPECT_EQ(log.Count(), 0U);
    }
    EXPECT_EQ(CellsOf<double>(cell->GetIterator()), std::vector<double>{7.0});
}

} // namespace
} // namespace MERVO::Tessera
