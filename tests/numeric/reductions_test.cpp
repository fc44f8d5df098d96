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

// What a reduction does not take, for a caller that brings a source and a destination of its own.
struct RefusalCase {
    const char* name;
    FunctorPtr<Func::UnaryBase> (*make)();
    SeriesAttr src;
    SeriesAttr dst;
    Error error;
    const char* log;
};

template <template <ContainerID> class Reduction>
FunctorPtr<Func::UnaryBase> Make()
{
    return Func::FunctorFactory<Reduction, Func::UnaryBase>{}(CONTAINER_ARRAY);
}

constexpr SeriesAttr Cells(MERVO_TESSERA_TYPEID type, std::uint32_t length = 1)
{
    return {length, CONTAINER_ARRAY, type};
}

const RefusalCase REFUSAL_CASES[] = {
    {"SumOfIntegersIntoIntegers", &Make<Func::Sum>, Cells(TESSERA_INT32, 2), Cells(TESSERA_INT32),
        {21, "Check param failed in functor: Sum"},
        "Functor Sum check param error, src [size 2, type int32], dst [size 1, type int32]"},
    {"SumOfFloatsIntoDoubles", &Make<Func::Sum>, Cells(TESSERA_FLOAT), Cells(TESSERA_DOUBLE),
        {21, "Check param failed in functor: Sum"},
        "Functor Sum check param error, src [size 1, type float], dst [size 1, type double]"},
    {"SumOfBoolsIntoDoubles", &Make<Func::Sum>, Cells(TESSERA_BOOL), Cells(TESSERA_DOUBLE),
        {21, "Check param failed in functor: Sum"},
        "Functor Sum check param error, src [size 1, type bool], dst [size 1, type double]"},
    {"SumIntoTwoCells", &Make<Func::Sum>, Cells(TESSERA_DOUBLE), Cells(TESSERA_DOUBLE, 2),
        {21, "Check param failed in functor: Sum"},
        "Functor Sum check param error, src [size 1, type double], dst [size 2, type double]"},
    {"SumOfStrings", &Make<Func::Sum>, Cells(TESSERA_STRING), Cells(TESSERA_STRING),
        {21, "Check param failed in functor: Sum"},
        "Functor Sum check param error, src [size 1, type string], dst [size 1, type string]"},
    {"MeanOfFloatsIntoDoubles", &Make<Func::Mean>, Cells(TESSERA_FLOAT), Cells(TESSERA_DOUBLE),
        {21, "Check param failed in functor: Mean"},
        "Functor Mean check param error, src [size 1, type float], dst [size 1, type double]"},
    {"MeanOfBoolsIntoIntegers", &Make<Func::Mean>, Cells(TESSERA_BOOL), Cells(TESSERA_INT64),
        {21, "Check param failed in functor: Mean"},
        "Functor Mean check param error, src [size 1, type bool], dst [size 1, type int64]"},
    {"MeanOfTables", &Make<Func::Mean>, Cells(TESSERA_DATAFRAME), Cells(TESSERA_DATAFRAME),
        {21, "Check param failed in functor: Mean"},
        "Functor Mean check param error, src [size 1, type dataframe], dst [size 1, type dataframe]"},
    {"MaxOfNothing", &Make<Func::Max>, Cells(TESSERA_DOUBLE, 0), Cells(TESSERA_DOUBLE),
        {21, "Check param failed in functor: Max"},
        "Functor Max check param error, src [size 0, type double], dst [size 1, type double]"},
    {"MinOfNothing", &Make<Func::Min>, Cells(TESSERA_BOOL, 0), Cells(TESSERA_BOOL),
        {21, "Check param failed in functor: Min"},
        "Functor Min check param error, src [size 0, type bool], dst [size 1, type bool]"},
    {"PtpOfNothing", &Make<Func::Ptp>, Cells(TESSERA_INT8, 0), Cells(TESSERA_INT8),
        {21, "Check param failed in functor: Ptp"},
        "Functor Ptp check param error, src [size 0, type int8], dst [size 1, type int8]"},
    {"IdxMaxOfNothing", &Make<Func::IdxMax>, Cells(TESSERA_STRING, 0), Cells(TESSERA_UINT32),
        {21, "Check param failed in functor: IdxMax"},
        "Functor IdxMax check param error, src [size 0, type string], dst [size 1, type uint32]"},
    {"IdxMaxIntoSigned", &Make<Func::IdxMax>, Cells(TESSERA_INT32), Cells(TESSERA_INT32),
        {21, "Check param failed in functor: IdxMax"},
        "Functor IdxMax check param error, src [size 1, type int32], dst [size 1, type int32]"},
    {"MaxIntoNoCell", &Make<Func::Max>, Cells(TESSERA_INT32), Cells(TESSERA_INT32, 0),
        {21, "Check param failed in functor: Max"},
        "Functor Max check param error, src [size 1, type int32], dst [size 0, type int32]"},
    {"MaxIntoAnotherType", &Make<Func::Max>, Cells(TESSERA_INT64), Cells(TESSERA_BOOL),
        {1, "Error on calling functor: Max"}, nullptr},
    {"MinIntoAnotherType", &Make<Func::Min>, Cells(TESSERA_DOUBLE), Cells(TESSERA_FLOAT),
        {1, "Error on calling functor: Min"}, nullptr},
    {"PtpIntoAnotherType", &Make<Func::Ptp>, Cells(TESSERA_INT8), Cells(TESSERA_STRING),
        {1, "Error on calling functor: Ptp"}, nullptr},
    {"MaxOfTables", &Make<Func::Max>, Cells(TESSERA_DATAFRAME), Cells(TESSERA_DATAFRAME),
        {1, "Error on calling functor: Max"}, nullptr},
    {"MinOfStrings", &Make<Func::Min>, Cells(TESSERA_STRING), Cells(TESSERA_STRING),
        {1, "Error on calling functor: Min"}, nullptr},
    {"MinOfTables", &Make<Func::Min>, Cells(TESSERA_DATAFRAME), Cells(TESSERA_DATAFRAME),
        {1, "Error on calling functor: Min"}, nullptr},
    {"PtpOfStrings", &Make<Func::Ptp>, Cells(TESSERA_STRING), Cells(TESSERA_STRING),
        {1, "Error on calling functor: Ptp"}, nullptr},
    {"PtpOfTables", &Make<Func::Ptp>, Cells(TESSERA_DATAFRAME), Cells(TESSERA_DATAFRAME),
        {1, "Error on calling functor: Ptp"}, nullptr},
    {"IdxMaxOfTables", &Make<Func::IdxMax>, Cells(TESSERA_DATAFRAME), Cells(TESSERA_UINT32),
        {1, "Error on calling functor: IdxMax"}, "this type donnot support IdxMax functor"},
};

class RefusedReductions : public testing::TestWithParam<RefusalCase> {};

TEST_P(RefusedReductions, GiveTheirCodeAndMessage)
{
    const RefusalCase& wanted = GetParam();
    const SeriesPtr src = BuildSeries(wanted.src, "src");
    const SeriesPtr dst = BuildSeries(wanted.dst, "dst");
    const LogCapture log;
    const Error error = wanted.make()->ProcessSeries(src->GetIterator(), dst->GetIterator(), true);
    EXPECT_EQ(error.code, wanted.error.code);
    EXPECT_EQ(error.message, wanted.error.message);
    EXPECT_EQ(log.Texts(1), wanted.log == nullptr ? std::vector<std::string>() : std::vector<std::string>{wanted.log});
}

INSTANTIATE_TEST_SUITE_P(Cases, RefusedReductions, testing::ValuesIn(REFUSAL_CASES),
    [](const auto& refused) { return std::string(refused.param.name); });

TEST(Reductions, WithoutACheckStillRefuseAnEmptyRange)
{
    const SeriesPtr full = Column<double>("full", {4.0});
    const SeriesPtr empty = Column<double>("empty", {});
    const SeriesPtr dst = Column<double>("dst", {-1.0});
    for (const auto make : {&Make<Func::Max>, &Make<Func::Min>, &Make<Func::Ptp>}) {
        const FunctorPtr<Func::UnaryBase> functor = make();
        ASSERT_EQ(functor->ProcessSeries(full->GetIterator(), dst->GetIterator(), true).code, 0);
        EXPECT_EQ(functor->ProcessSeries(empty->GetIterator(), dst->GetIterator(), false).code, 12);
    }
}

/// The kernels of sum and mean that no check lets through.
template <typename Functor>
ErrorCode RunEntry(const Functor& functor, MERVO_TESSERA_TYPEID type)
{
    const SeriesPtr column = BuildSeries(Cells(type), "column");
    const Func::UnaryBase* base = &functor;
    return Functor::transformTable[static_cast<std::size_t>(type) * ValueTypes::COUNT + static_cast<std::size_t>(type)](
        base, column->GetIterator(), column->GetIterator());
}

TEST(Reductions, HaveNoKernelForSumsOfTextAndTables)
{
    const LogCapture log;
    for (const MERVO_TESSERA_TYPEID type : {TESSERA_STRING, TESSERA_DATAFRAME}) {
        EXPECT_EQ(RunEntry(Func::Sum<CONTAINER_ARRAY>(), type), 1);
        EXPECT_EQ(RunEntry(Func::Mean<CONTAINER_ARRAY>(), type), 1);
    }
    EXPECT_EQ(log.Count(), 0U);
}

} // namespace
} // namespace MERVO::Tessera
