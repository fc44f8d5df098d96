#include "tessera/numeric/skew_kurt.h"

#include <gmock/gmock.h>

#include "tests/numeric/statistics_model.h"

namespace MERVO::Tessera {
namespace {

using Skew = Func::Skew<CONTAINER_ARRAY, bool, bool>;
using Kurt = Func::Kurt<CONTAINER_ARRAY, bool, bool>;

constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

template <typename T>
class ShapeOfType : public testing::Test {
};
TYPED_TEST_SUITE(ShapeOfType, NumberTypes);

TYPED_TEST(ShapeOfType, AddsInTheOrderOfTheModel)
{
    std::mt19937_64 random(9);
    for (const std::size_t count : {1U, 2U, 3U, 4U, 5U, 15U, 16U, 17U, 31U, 500U, 513U, 1050U}) {
        for (int flavour = PLAIN; flavour < FLAVOUR_COUNT; ++flavour) {
            const auto cells = RandomCells<TypeParam>(random, static_cast<Flavour>(flavour), count);
            const StatisticsModel<TypeParam> model(cells);
            for (const ContainerID container : BOTH_CONTAINERS) {
                const auto window = WindowOf(cells, container, 1);
                for (const auto& [skipNan, bias] :
                    {std::pair(false, false), {false, true}, {true, false}, {true, true}}) {
                    EXPECT_TRUE(GivesCell(Skew(skipNan, bias), window.Range(), model.Skew(skipNan, bias)))
                        << count << " of flavour " << flavour << ' ' << skipNan << bias;
                    EXPECT_TRUE(GivesCell(Kurt(skipNan, bias), window.Range(), model.Kurt(skipNan, bias)))
                        << count << " of flavour " << flavour << ' ' << skipNan << bias;
                }
            }
        }
    }
}

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
