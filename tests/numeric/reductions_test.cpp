// Holds the reductions against loops that take one element after the other, over random columns of every value type,
// and the loops' results against known ones.

#include <cmath>

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

// ---- Known results

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

TEST(Reductions, AreOfATypeThatHoldsThem)
{
    Expect<Func::Sum, std::int32_t>({2147483647, 1}, 2147483648.0);
    Expect<Func::Sum, std::uint64_t>({9007199254740993U}, 9007199254740992.0); // rounded before it is added
    Expect<Func::Sum, float>({16777216.0F, 1.0F, 1.0F}, 16777216.0F);          // in single precision
    Expect<Func::Sum, bool>({true, false, true}, std::int64_t{2});
    Expect<Func::Sum, DateTime>({DateTime(2147483647), DateTime(2)}, DateTime(-2147483647L));
    Expect<Func::Mean, std::int32_t>({2147483647, 2147483647, 1}, 4294967295.0 / 3.0);
    Expect<Func::Mean, bool>({true, false, false, true}, 0.5);
    Expect<Func::Mean, float>({16777216.0F, 1.0F, 1.0F}, static_cast<float>(16777218.0 / 3.0)); // added in double
    Expect<Func::Ptp, std::int8_t>({-128, 127}, std::int8_t{-1});                               // and wrap in it
    Expect<Func::Ptp, std::int32_t>({2147483647, -1}, std::int32_t{-2147483647 - 1});
    Expect<Func::Ptp, DateTime>({DateTime(-2147483647L), DateTime(2147483647)}, DateTime(-2));
    Expect<Func::Ptp, bool>({true, false}, true);
    Expect<Func::IdxMax, bool>({false, false, true, true}, std::uint32_t{2});
}

TEST(Mean, OfStampsCutsDownEachQuotient)
{
    const auto expect = [](const std::vector<long>& stamps, long mean) {
        Expect<Func::Mean, DateTime>(std::vector<DateTime>(stamps.begin(), stamps.end()), DateTime(mean));
    };
    expect({}, 0);
    expect({1, 2}, 1);
    expect({-1, -1}, -2);        // 2147483647 twice, and wrapped
    expect({-3, 1}, 2147483646); // stamps before 1970 count as unsigned
}

TEST(CalMean, OfNoNumbersIsNan)
{
    EXPECT_TRUE(std::isnan(Func::CalMean(Column<DateTime>("column", {DateTime(1)})->GetIterator(), true)));
    EXPECT_TRUE(std::isnan(Func::CalMean(Column<std::string>("column", {"1"})->GetIterator(), true)));
}

TEST(Extrema, OfStringsCompareBytesAndThenLengths)
{
    Expect<Func::Max, std::string>({"a", "ab"}, std::string("ab"));
    Expect<Func::Max, std::string>({"z", "\xC3\xA4"}, std::string("\xC3\xA4")); // bytes are unsigned
    Expect<Func::Max, std::string>({std::string("a\0b", 3), "a"}, std::string("a\0b", 3));
    Expect<Func::IdxMax, std::string>({"", "b", "b", "a"}, std::uint32_t{1});
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
