// The statistics of one number for a column: held against loops of the plainest form, and against published values.

#include <gmock/gmock.h>

#include "tests/numeric/statistics_model.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using Var = Func::Var<CONTAINER_ARRAY, std::uint32_t>;
using Std = Func::Std<CONTAINER_ARRAY, std::uint32_t>;
using Moment = Func::Moment<CONTAINER_ARRAY, std::uint32_t>;
using Kstat = Func::Kstat<CONTAINER_ARRAY, std::uint32_t>;
using Skew = Func::Skew<CONTAINER_ARRAY, bool, bool>;
using Kurt = Func::Kurt<CONTAINER_ARRAY, bool, bool>;

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();

template <typename T>
class StatisticsOf : public testing::Test {
};
TYPED_TEST_SUITE(StatisticsOf, NumberTypes);

TYPED_TEST(StatisticsOf, AddInTheOrderOfTheModel)
{
    std::mt19937_64 random(5);
    for (const std::uint32_t count : {1U, 2U, 3U, 4U, 5U, 15U, 16U, 17U, 33U, 511U, 512U, 513U, 1050U}) {
        for (int flavour = PLAIN; flavour < FLAVOUR_COUNT; ++flavour) {
            SCOPED_TRACE(std::to_string(count) + " of flavour " + std::to_string(flavour));
            const auto cells = RandomCells<TypeParam>(random, static_cast<Flavour>(flavour), count);
            const StatisticsModel<TypeParam> model(cells);
            for (const ContainerID container : BOTH_CONTAINERS) {
                const auto window = WindowOf(cells, container, 3);
                const Cursor& range = window.Range();
                for (const std::uint32_t ddof : {0U, 1U, count, 1000000U}) {
                    EXPECT_TRUE(GivesCell(Var(ddof), range, model.Var(ddof))) << ddof;
                    EXPECT_TRUE(GivesCell(Std(ddof), range, model.Std(ddof))) << ddof;
                }
                for (const std::uint32_t degree : {0U, 1U, 2U, 3U, 4U, 9U}) {
                    EXPECT_TRUE(GivesCell(Moment(degree), range, model.Moment(degree))) << degree;
                }
                for (std::uint32_t degree = 1; degree <= 4; ++degree) {
                    EXPECT_TRUE(GivesCell(Kstat(degree), range, model.Kstat(degree))) << degree;
                }
                for (const auto& [skip, bias] : {std::pair(false, false), {false, true}, {true, false}, {true, true}}) {
                    EXPECT_TRUE(GivesCell(Skew(skip, bias), range, model.Skew(skip, bias))) << skip << bias;
                    EXPECT_TRUE(GivesCell(Kurt(skip, bias), range, model.Kurt(skip, bias))) << skip << bias;
                }
            }
        }
    }
}

TEST(Statistics, TakeBoolsAsZeroAndOne)
{
    for (const ContainerID container : BOTH_CONTAINERS) {
        const Window<bool> window({true, false, false, false}, container, 5, {true, true});
        EXPECT_TRUE(GivesCell(Var(1), window.Range(), 0.25));
        EXPECT_TRUE(GivesCell(Std(1), window.Range(), 0.5));
        EXPECT_TRUE(GivesCell(Moment(3), window.Range(), 0.09375));
    }
}

// ---- Dispersion

struct DivisorCase {
    const char* name;
    std::vector<double> cells;
    std::uint32_t ddof;
    double var;
    double std;
};

// What a divisor of zero or below makes of the same sum differs on purpose.
const DivisorCase DIVISOR_CASES[] = {
    {"Usual", {1.0, 2.0, 3.0}, 1, 1.0, 1.0},
    {"Population", {1.0, 3.0}, 0, 1.0, 1.0},
    {"EqualToTheCount", {1.0, 2.0, 3.0}, 3, INFINITE, NO_VALUE},
    {"AboveTheCount", {1.0, 2.0, 3.0}, 4, -2.0, std::sqrt(2.0 / 4294967295.0)},
    {"FarAboveTheCount", {1.0, 2.0, 3.0}, 4294967295U, 2.0 / (3.0 - 4294967295.0), std::sqrt(2.0 / 4.0)},
    {"EqualCellsAndCount", {4.0, 4.0}, 2, NO_VALUE, NO_VALUE},
    {"OneCell", {4.0}, 1, NO_VALUE, NO_VALUE},
    {"Nothing", {}, 0, NO_VALUE, NO_VALUE},
    {"NothingLessOne", {}, 1, -0.0, 0.0},
    {"NanGoesThrough", {1.0, NO_VALUE}, 0, NO_VALUE, NO_VALUE},
    {"Infinity", {1.0, INFINITE}, 0, NO_VALUE, NO_VALUE},
};

class Divisors : public testing::TestWithParam<DivisorCase> {};
INSTANTIATE_TEST_SUITE_P(Cases, Divisors, testing::ValuesIn(DIVISOR_CASES),
    [](const auto& wanted) { return std::string(wanted.param.name); });

TEST_P(Divisors, AreNotGuarded)
{
    const DivisorCase& wanted = GetParam();
    const auto window = WindowOf(wanted.cells, CONTAINER_ARRAY, 1);
    EXPECT_TRUE(GivesCell(Var(wanted.ddof), window.Range(), wanted.var));
    EXPECT_TRUE(GivesCell(Std(wanted.ddof), window.Range(), wanted.std));
}

/// Values around a middle that need ever more of the digits of a double.
std::vector<double> Alternating(double middle, double step, std::size_t pairs)
{
    std::vector<double> cells{middle};
    for (std::size_t i = 0; i < pairs; ++i) {
        cells.push_back(middle - step);
        cells.push_back(middle + step);
    }
    return cells;
}

// The certified values of the Statistical Reference Datasets of NIST, univariate summary statistics.
TEST(PublishedDispersion, IsThatOfTheReferenceDatasets)
{
    struct Dataset {
        const char* name;
        std::vector<double> cells;
        double std;
        double relativeError;
    };
    const Dataset DATASETS[] = {
        {"NumAcc1", {10000001, 10000003, 10000002}, 1.0, 1e-9},
        {"NumAcc2", Alternating(1.2, 0.1, 500), 0.1, 1e-12},
        {"NumAcc3", Alternating(1000000.2, 0.1, 500), 0.1, 1e-8},
        {"NumAcc4", Alternating(10000000.2, 0.1, 500), 0.1, 1e-7},
    };
    for (const Dataset& dataset : DATASETS) {
        const auto window = WindowOf(dataset.cells, CONTAINER_ARRAY, 0);
        Error error;
        const SeriesPtr std = RunOn(Func::Std<CONTAINER_ARRAY>(), window.Range(), CONTAINER_ARRAY, error);
        const SeriesPtr var = RunOn(Var(1), window.Range(), CONTAINER_ARRAY, error);
        EXPECT_NEAR(CellsOf<double>(std->GetIterator())[0], dataset.std, dataset.std * dataset.relativeError);
        EXPECT_NEAR(CellsOf<double>(var->GetIterator())[0], dataset.std * dataset.std, dataset.relativeError);
    }
}

// ---- Moments

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

// ---- Shape

// The examples of the functions SKEW, SKEW.P and KURT in Microsoft's reference of Excel.
TEST(PublishedShape, IsThatOfTheSpreadsheet)
{
    const std::vector<std::int32_t> cells{3, 4, 5, 2, 3, 4, 5, 6, 4, 7};
    const auto window = WindowOf(cells, CONTAINER_ARRAY, 2);
    const auto resultOf = [&window](const Func::UnaryBase& functor) {
        Error error;
        return CellsOf<double>(RunOn(functor, window.Range(), CONTAINER_ARRAY, error)->GetIterator())[0];
    };
    EXPECT_NEAR(resultOf(Skew(true, false)), 0.359543071, 1e-9);
    EXPECT_NEAR(resultOf(Skew(true, true)), 0.303193339, 1e-9);
    EXPECT_NEAR(resultOf(Kurt(true, false)), -0.151799637, 1e-9);
}

struct ShapeCase {
    const char* name;
    std::vector<double> cells;
    bool skipNan;
    double skew; ///< with bias false
    double skewOfSample;
    double kurt; ///< with bias false
    double kurtOfSample;
};

const ShapeCase SHAPE_CASES[] = {
    {"Equal", {2.5, 2.5, 2.5, 2.5}, true, NO_VALUE, 0.0, 0.0, -3.0},
    {"Nothing", {}, true, NO_VALUE, NO_VALUE, NO_VALUE, NO_VALUE},
    {"OnlyNan", {NO_VALUE, NO_VALUE}, true, NO_VALUE, NO_VALUE, NO_VALUE, NO_VALUE},
    {"One", {5.0}, true, NO_VALUE, 0.0, NO_VALUE, -3.0},
    {"Two", {1.0, 3.0}, true, NO_VALUE, 0.0, NO_VALUE, -2.0},
    {"ThreeOfWhichNanIsOne", {1.0, NO_VALUE, 3.0}, true, NO_VALUE, 0.0, NO_VALUE, -2.0},
    {"Three", {-1.0, 0.0, 1.0}, true, 0.0, 0.0, NO_VALUE, -1.5},
    {"Symmetrical", {-1.0, -1.0, 1.0, 1.0}, true, 0.0, 0.0, -6.0, -2.0},
    {"NanEndsIt", {-1.0, -1.0, 1.0, 1.0, NO_VALUE}, false, NO_VALUE, NO_VALUE, NO_VALUE, NO_VALUE},
    {"NanIsPassedOver", {-1.0, NO_VALUE, -1.0, 1.0, NO_VALUE, 1.0}, true, 0.0, 0.0, -6.0, -2.0},
    {"Infinity", {1.0, 2.0, 3.0, INFINITE}, true, 0.0, 0.0, NO_VALUE, 0.0},
    {"InfinityBesideNan", {1.0, NO_VALUE, 3.0, 4.0, INFINITE}, true, 0.0, 0.0, NO_VALUE, 0.0},
    {"BothInfinities", {1.0, 2.0, -INFINITE, INFINITE}, false, 0.0, 0.0, NO_VALUE, 0.0},
    {"BothInfinitiesBesideNan", {1.0, 2.0, -INFINITE, NO_VALUE, INFINITE}, true, 0.0, 0.0, NO_VALUE, 0.0},
    {"SumBeyondTheRange", {1.5e308, 1.5e308, 1.5e308, -1.0}, false, 0.0, 0.0, NO_VALUE, 0.0},
    {"SumBeyondTheRangeBesideNan", {1.5e308, 1.5e308, NO_VALUE, 1.5e308, -1.0}, true, 0.0, 0.0, NO_VALUE, 0.0},
    // The second moment 2e-16 counts as none, the sum of squares 1e-15 does not, and its square counts as none again.
    {"HardlyDiffering", {0.0, 0.0, 0.0, 0.0, 3.5355339e-8}, true, NO_VALUE, 0.0, 0.0, 0.25},
};

TEST(Shape, HasAnAnswerForEveryColumn)
{
    for (const ShapeCase& wanted : SHAPE_CASES) {
        for (const ContainerID container : BOTH_CONTAINERS) {
            const auto window = WindowOf(wanted.cells, container, 1);
            const auto near = [&](const Func::UnaryBase& functor, double expected) {
                Error error;
                const SeriesPtr column = RunOn(functor, window.Range(), CONTAINER_ARRAY, error);
                const double result = CellsOf<double>(column->GetIterator())[0];
                EXPECT_EQ(error.code, 0) << wanted.name;
                EXPECT_FALSE(std::isnan(result) && std::signbit(result)) << wanted.name;
                EXPECT_THAT(result, testing::NanSensitiveDoubleNear(expected, 1e-14))
                    << functor.GetName() << ' ' << wanted.name;
            };
            near(Skew(wanted.skipNan, false), wanted.skew);
            near(Skew(wanted.skipNan, true), wanted.skewOfSample);
            near(Kurt(wanted.skipNan, false), wanted.kurt);
            near(Kurt(wanted.skipNan, true), wanted.kurtOfSample);
        }
    }
}

// Rounding leaves a trace of skewness that counts as none in a float column, and as one in a double column.
TEST(Shape, OfAFloatColumnHasAWiderZero)
{
    const std::vector<float> floats{-1.0F, 1.0F, 0.0F, 1e-8F, 1e-8F};
    const std::vector<double> doubles(floats.begin(), floats.end());
    const auto narrow = WindowOf(floats, CONTAINER_ARRAY, 0);
    const auto wide = WindowOf(doubles, CONTAINER_ARRAY, 0);
    const double trace = StatisticsModel<double>(doubles).Skew(true, true);
    ASSERT_GT(std::abs(trace), 1e-9);
    ASSERT_LT(std::abs(trace), 1e-7);
    EXPECT_TRUE(GivesCell(Skew(true, true), wide.Range(), trace));
    EXPECT_TRUE(GivesCell(Skew(true, true), narrow.Range(), 0.0F));
}

} // namespace
} // namespace MERVO::Tessera
