#include <cmath>
#include <limits>

#include "tessera/numeric/cal_mean.h"
#include "tests/numeric/reduce.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();

struct DoublesCase {
    const char* name;
    std::vector<double> cells;
    double sum;
    double mean;
    double max;
    double min;
    double ptp;
    std::uint32_t idxMax;
};

const DoublesCase DOUBLES_CASES[] = {
    {"One", {-2.5}, -2.5, -2.5, -2.5, -2.5, 0.0, 0},
    {"TieFallsToTheEarliest", {1.0, 5.0, 5.0}, 11.0, 11.0 / 3.0, 5.0, 1.0, 4.0, 1},
    {"AllNegative", {-3.0, -1.0, -2.0}, -6.0, -2.0, -1.0, -3.0, 2.0, 1},
    {"NanInFrontStays", {NOT_A_NUMBER, 1.0, 5.0}, NOT_A_NUMBER, 3.0, NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER, 0},
    {"NanLaterIsPassedOver", {1.0, NOT_A_NUMBER, 3.0}, NOT_A_NUMBER, 2.0, 3.0, 1.0, NOT_A_NUMBER, 2},
    {"OnlyNan", {NOT_A_NUMBER, NOT_A_NUMBER}, NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER, 0},
    {"NegativeZeroFirst", {-0.0, 0.0}, 0.0, 0.0, -0.0, -0.0, 0.0, 0},
    {"NegativeZeroLast", {-1.0, 0.0, -0.0}, -1.0, -1.0 / 3.0, 0.0, -1.0, 1.0, 1},
    {"NegativeZeroAlone", {-0.0}, 0.0, 0.0, -0.0, -0.0, 0.0, 0},
    {"NegativeZeroAndNan", {-0.0, NOT_A_NUMBER, -0.0}, NOT_A_NUMBER, 0.0, -0.0, -0.0, NOT_A_NUMBER, 0},
    {"BothInfinities", {-INFINITE, 7.0, INFINITE}, NOT_A_NUMBER, NOT_A_NUMBER, INFINITE, -INFINITE, INFINITE, 2},
    {"OneInfinityTwice", {INFINITE, INFINITE}, INFINITE, INFINITE, INFINITE, INFINITE, NOT_A_NUMBER, 0},
    {"AddedInOrder", {1e16, 1.0, 1.0, -1e16}, 0.0, 0.0, 1e16, -1e16, 2e16, 0},
};

class ReductionsOfDoubles : public testing::TestWithParam<std::tuple<DoublesCase, ContainerID>> {};

TEST_P(ReductionsOfDoubles, GiveOneCell)
{
    const auto& [wanted, container] = GetParam();
    const Window<double> window(wanted.cells, container, 1, {NOT_A_NUMBER, INFINITE});
    EXPECT_TRUE((Reduces<Func::Sum>(window.Range(), wanted.sum)));
    EXPECT_TRUE((Reduces<Func::Mean>(window.Range(), wanted.mean)));
    EXPECT_TRUE((Reduces<Func::Max>(window.Range(), wanted.max)));
    EXPECT_TRUE((Reduces<Func::Min>(window.Range(), wanted.min)));
    EXPECT_TRUE((Reduces<Func::Ptp>(window.Range(), wanted.ptp)));
    EXPECT_TRUE((Reduces<Func::IdxMax>(window.Range(), wanted.idxMax)));
}

std::string NameOf(const testing::TestParamInfo<ReductionsOfDoubles::ParamType>& instance)
{
    const auto& [wanted, container] = instance.param;
    return std::string(wanted.name) + (container == CONTAINER_ARRAY ? "InArray" : "InList");
}

INSTANTIATE_TEST_SUITE_P(Cases, ReductionsOfDoubles,
    testing::Combine(testing::ValuesIn(DOUBLES_CASES), testing::ValuesIn(BOTH_CONTAINERS)), NameOf);

/// What a reduction makes of a column of T, in both containers.
template <template <ContainerID> class Reduction, typename T, typename Result>
void Expect(const std::vector<T>& cells, const Result& expected)
{
    for (const ContainerID container : BOTH_CONTAINERS) {
        const SeriesPtr column = Column<T>("column", cells, container);
        EXPECT_TRUE((Reduces<Reduction>(column->GetIterator(), expected))) << "container " << container;
    }
}

TEST(Sum, IsOfATypeThatHoldsIt)
{
    Expect<Func::Sum, std::int32_t>({2147483647, 1}, 2147483648.0);
    Expect<Func::Sum, std::int8_t>({-128, -128, -1}, -257.0);
    Expect<Func::Sum, std::uint64_t>({9007199254740993U}, 9007199254740992.0); // rounded before it is added
    Expect<Func::Sum, std::uint64_t>({18446744073709551615U, 1U}, 18446744073709551616.0);
    Expect<Func::Sum, std::int64_t>({4611686018427387905, -4611686018427387904}, 0.0);
    Expect<Func::Sum, float>({16777216.0F, 1.0F, 1.0F}, 16777216.0F); // in single precision
    Expect<Func::Sum, bool>({true, false, true}, std::int64_t{2});
    Expect<Func::Sum, DateTime>({DateTime(2147483647), DateTime(2)}, DateTime(-2147483647L));
}

TEST(Sum, OfManyIntegersIsThatOfOneAdditionAfterTheOther)
{
    // Beyond 2^53 every second addition of an odd number is rounded.
    const std::vector<std::uint32_t> cells(2200001, 4294967295U);
    double expected = 0.0;
    for (const std::uint32_t cell : cells) {
        expected += cell;
    }
    ASSERT_NE(expected, 4294967295.0 * 2200001.0);
    const SeriesPtr column = Column<std::uint32_t>("column", cells);
    EXPECT_TRUE((Reduces<Func::Sum>(column->GetIterator(), expected)));
}

TEST(Mean, IsOfATypeThatHoldsIt)
{
    Expect<Func::Mean, std::int32_t>({2147483647, 2147483647, 1}, 4294967295.0 / 3.0);
    Expect<Func::Mean, std::uint8_t>({255, 0}, 127.5);
    Expect<Func::Mean, bool>({true, false, false, true}, 0.5);
    Expect<Func::Mean, float>({16777216.0F, 1.0F, 1.0F}, static_cast<float>(16777218.0 / 3.0)); // added in double
}

TEST(Mean, OfStampsCutsDownEachQuotient)
{
    const auto expect = [](const std::vector<long>& stamps, long mean) {
        Expect<Func::Mean, DateTime>(std::vector<DateTime>(stamps.begin(), stamps.end()), DateTime(mean));
    };
    expect({1, 2}, 1);
    expect({5, 5, 5}, 3);
    expect({-1}, -1);
    expect({-1, -1}, -2);        // 2147483647 twice, and wrapped
    expect({-3, 1}, 2147483646); // stamps before 1970 count as unsigned
}

TEST(Sums, OfNothing)
{
    Expect<Func::Sum, double>({}, 0.0);
    Expect<Func::Sum, float>({}, 0.0F);
    Expect<Func::Sum, std::int16_t>({}, 0.0);
    Expect<Func::Sum, bool>({}, std::int64_t{0});
    Expect<Func::Sum, DateTime>({}, DateTime(0));
    Expect<Func::Mean, double>({}, NOT_A_NUMBER);
    Expect<Func::Mean, float>({}, std::numeric_limits<float>::quiet_NaN());
    Expect<Func::Mean, std::uint64_t>({}, NOT_A_NUMBER);
    Expect<Func::Mean, bool>({}, NOT_A_NUMBER);
    Expect<Func::Mean, DateTime>({}, DateTime(0));
}

TEST(CalMean, LetsNanThroughUnlessToldToSkipIt)
{
    const SeriesPtr column = Column<double>("column", {1.0, NOT_A_NUMBER, 4.0});
    EXPECT_EQ(Func::CalMean(column->GetIterator(), true), 2.5);
    EXPECT_TRUE(std::isnan(Func::CalMean(column->GetIterator(), false)));
    EXPECT_EQ(Func::CalMean(Column<float>("column", {1.0F, 4.0F})->GetIterator(), false), 2.5);
    EXPECT_TRUE(std::isnan(Func::CalMean(Column<double>("column", {})->GetIterator(), false)));
    EXPECT_TRUE(std::isnan(Func::CalMean(Column<DateTime>("column", {DateTime(1)})->GetIterator(), true)));
    EXPECT_TRUE(std::isnan(Func::CalMean(Column<std::string>("column", {"1"})->GetIterator(), true)));
}

TEST(Extrema, OfOtherTypes)
{
    Expect<Func::Max, std::uint8_t>({1, 255, 3}, std::uint8_t{255});
    Expect<Func::Max, std::int8_t>({1, -1, 3}, std::int8_t{3});
    Expect<Func::Max, DateTime>({DateTime(-5), DateTime(-7)}, DateTime(-5));
    Expect<Func::Min, DateTime>({DateTime(5), DateTime(-7)}, DateTime(-7));
    Expect<Func::Max, bool>({false, true}, true);
    Expect<Func::Min, bool>({true, false}, false);
    Expect<Func::IdxMax, bool>({false, false, true, true}, std::uint32_t{2});
    Expect<Func::IdxMax, bool>({false, false}, std::uint32_t{0});
    Expect<Func::IdxMax, DateTime>({DateTime(1), DateTime(9), DateTime(9)}, std::uint32_t{1});
}

TEST(Extrema, OfStringsCompareBytesAndThenLengths)
{
    Expect<Func::Max, std::string>({"a", "ab"}, std::string("ab"));
    Expect<Func::Max, std::string>({"ab", "b", "az"}, std::string("b"));
    Expect<Func::Max, std::string>({"z", "\xC3\xA4"}, std::string("\xC3\xA4")); // bytes are unsigned
    Expect<Func::Max, std::string>({std::string("a\0b", 3), "a"}, std::string("a\0b", 3));
    Expect<Func::IdxMax, std::string>({"", "b", "b", "a"}, std::uint32_t{1});
}

TEST(Ptp, WrapsInTheWidthOfItsType)
{
    Expect<Func::Ptp, std::int8_t>({-128, 127}, std::int8_t{-1});
    Expect<Func::Ptp, std::uint8_t>({0, 255}, std::uint8_t{255});
    Expect<Func::Ptp, std::int32_t>({2147483647, -1}, std::int32_t{-2147483647 - 1});
    Expect<Func::Ptp, std::int64_t>({INT64_MIN, INT64_MAX}, std::int64_t{-1});
    Expect<Func::Ptp, DateTime>({DateTime(-2147483647L), DateTime(2147483647)}, DateTime(-2));
    Expect<Func::Ptp, bool>({true, true}, false);
    Expect<Func::Ptp, bool>({true, false}, true);
}

/// A text column between others, through a table: sums have no type for it, the rest no kernel.
TEST(Reductions, OfATableEndAtTheFirstColumnThatFails)
{
    using Func::FunctorFactory;
    using Func::UnaryBase;
    const struct {
        UnaryFactory make;
        ErrorCode code;
        const char* message;
    } cases[] = {
        {FunctorFactory<Func::Sum, UnaryBase>{}, 5, "nullptr error in unary functorSum"},
        {FunctorFactory<Func::Var, UnaryBase, std::uint32_t>{0}, 5, "nullptr error in unary functorVar"},
        {FunctorFactory<Func::Min, UnaryBase>{}, 1, "Error on calling functor: Min"},
    };
    for (const auto& [make, code, message] : cases) {
        const DataFrame src =
            TableOf(Column<double>("a", {7.0}), Column<std::string>("b", {"x"}), Column<double>("c", {8.0}));
        DataFrame dst;
        EXPECT_EQ(dst.ApplyInplace(make, src), code) << message;
        EXPECT_EQ(dst.GetError().code, code);
        EXPECT_EQ(dst.GetError().message, message);
        EXPECT_EQ(src.GetError().code, 0);
    }
}

} // namespace
} // namespace MERVO::Tessera
