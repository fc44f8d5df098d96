#include "tessera/numeric/moments.h"

#include <gmock/gmock.h>

#include "tests/numeric/statistics_model.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
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

TEST(Kstatistics, RefuseOtherDegreesBoolsAndNothing)
{
    const SeriesPtr doubles = Column<double>("d", {1.0, 2.0});
    const SeriesPtr bools = Column<bool>("b", {true, false});
    const SeriesPtr cell = Column<double>("result", {7.0});
    for (const std::uint32_t degree : {0U, 5U, 4294967295U}) {
        const LogCapture log;
        const Error error = Kstat(degree).ProcessSeries(doubles->GetIterator(), cell->GetIterator(), true);
        EXPECT_EQ(error.code, ERROR_BAD_VALUE);
        EXPECT_EQ(error.message, "Error on calling functor: Kstat");
        EXPECT_EQ(log.Count(), 0U);
    }
    EXPECT_EQ(Kstat(2).ProcessSeries(bools->GetIterator(), cell->GetIterator(), true).code, ERROR_GENERAL);
    const LogCapture log;
    EXPECT_EQ(Kstat(2).ProcessSeries(doubles->GetIterator(1, 1), cell->GetIterator(), true).code, 21);
    EXPECT_EQ(Moment(2).ProcessSeries(doubles->GetIterator(), doubles->GetIterator(), true).code, 21);
    EXPECT_THAT(CellsOf<double>(cell->GetIterator()), ElementsAre(7.0));
}

TEST(Moments, HaveNoKernelForTextAndTimes)
{
    const SeriesPtr texts = Column<std::string>("s", {"x"});
    const SeriesPtr times = Column<DateTime>("t", {DateTime(5)});
    for (const SeriesPtr* column : {&texts, &times}) {
        const LogCapture log;
        const Cursor src = (*column)->GetIterator();
        EXPECT_EQ(RunKernel(Func::MomentBase<CONTAINER_ARRAY>(2), src, src), ERROR_GENERAL);
        EXPECT_EQ(RunKernel(Func::KstatBase<CONTAINER_ARRAY>(2), src, src), ERROR_GENERAL);
        EXPECT_EQ(log.Count(), 0U);
    }
}

TEST(Moments, TakeTheirArgumentInAnyForm)
{
    const DataFrame src =
        TableOf(Column<double>("a", {1.0, 2.0, 3.0, 6.0}), Column<float>("b", {1.0F, 2.0F, 3.0F, 6.0F}));
    std::uint32_t degree = 3;
    for (const UnaryFactory& make :
        {UnaryFactory(Func::FunctorFactory<Func::Moment, Func::UnaryBase, std::uint32_t&>{degree}),
            UnaryFactory(Func::FunctorFactory<Func::Moment, Func::UnaryBase, const std::uint32_t&>{degree})}) {
        DataFrame dst;
        ASSERT_EQ(dst.ApplyInplace(make, src), 0);
        EXPECT_EQ(GetValueFromIterator<double>(dst.GetColumn(0)->GetIterator(), 0), 4.5);
        EXPECT_EQ(GetValueFromIterator<float>(dst.GetColumn(1)->GetIterator(), 0), 4.5F);
    }
    DataFrame dst;
    ASSERT_EQ(dst.ApplyInplace(Func::FunctorFactory<Func::Kstat, Func::UnaryBase, std::uint32_t&>{degree}, src), 0);
    EXPECT_EQ(GetValueFromIterator<double>(dst.GetColumn(0)->GetIterator(), 0), 12.0);
}

} // namespace
} // namespace MERVO::Tessera
