#include "tessera/numeric/dispersion.h"

#include "tests/numeric/statistics_model.h"

namespace MERVO::Tessera {
namespace {

using Var = Func::Var<CONTAINER_ARRAY, std::uint32_t>;
using Std = Func::Std<CONTAINER_ARRAY, std::uint32_t>;

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();

template <typename T>
class DispersionOfType : public testing::Test {
};
TYPED_TEST_SUITE(DispersionOfType, NumberTypes);

TYPED_TEST(DispersionOfType, AddsInTheOrderOfTheModel)
{
    std::mt19937_64 random(5);
    for (const std::size_t count : {1U, 2U, 3U, 15U, 16U, 17U, 40U, 511U, 512U, 513U, 1100U}) {
        for (int flavour = PLAIN; flavour < FLAVOUR_COUNT; ++flavour) {
            const auto cells = RandomCells<TypeParam>(random, static_cast<Flavour>(flavour), count);
            const StatisticsModel<TypeParam> model(cells);
            for (const ContainerID container : BOTH_CONTAINERS) {
                const auto window = WindowOf(cells, container, 3);
                for (const auto ddof : {0U, 1U, static_cast<std::uint32_t>(count), 1000000U}) {
                    EXPECT_TRUE(GivesCell(Var(ddof), window.Range(), model.Var(ddof)))
                        << count << " of flavour " << flavour << ", ddof " << ddof;
                    EXPECT_TRUE(GivesCell(Std(ddof), window.Range(), model.Std(ddof)))
                        << count << " of flavour " << flavour << ", ddof " << ddof;
                }
            }
        }
    }
}

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

TEST(Dispersion, TakesBoolsAsZeroAndOne)
{
    for (const ContainerID container : BOTH_CONTAINERS) {
        const Window<bool> window({true, false, true, true, false, false, false, true}, container, 5, {true, true});
        EXPECT_TRUE(GivesCell(Var(0), window.Range(), 0.25));
        EXPECT_TRUE(GivesCell(Std(0), window.Range(), 0.5));
    }
}

TEST(Dispersion, KeepsTheNanOfItsColumn)
{
    const auto marked = std::bit_cast<double>(0xFFF8000000000123U);
    const auto signalling = std::bit_cast<double>(0x7FF0000000000456U);
    const auto quiet = std::bit_cast<double>(0x7FF8000000000456U);
    for (const auto& [cells, expected] :
        std::vector<std::pair<std::vector<double>, double>>{{{1.0, marked, signalling}, marked},
            {{signalling, marked}, quiet}, {{INFINITE, -INFINITE, marked}, NO_VALUE}}) {
        const auto window = WindowOf(cells, CONTAINER_ARRAY, 2);
        EXPECT_TRUE(GivesCell(Var(0), window.Range(), expected));
        EXPECT_TRUE(GivesCell(Std(0), window.Range(), expected));
    }
}

// The mean of quotients stays finite where a sum would not.
TEST(Dispersion, SurvivesSumsBeyondTheRange)
{
    const std::vector<double> cells{1.5e308, 1.5e308, 1.5e308, 1.5e308};
    const auto window = WindowOf(cells, CONTAINER_ARRAY, 0);
    EXPECT_TRUE(GivesCell(Var(0), window.Range(), 0.0));
}

} // namespace
} // namespace MERVO::Tessera
