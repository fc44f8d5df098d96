#include <cmath>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tessera/tessera.hpp"
#include "tests/functors/pairing.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;

constexpr double INFINITE = std::numeric_limits<double>::infinity();

enum Op { ADD, SUB, MUL, DIV, MOD };
constexpr Op ALL_OPS[] = {ADD, SUB, MUL, DIV, MOD};

FunctorPtr<Func::BinaryBase> MakeFunctor(Op op)
{
    using Func::BinaryBase;
    using Func::FunctorFactory;
    const BinaryFactory makers[] = {FunctorFactory<Func::Add, BinaryBase>{}, FunctorFactory<Func::Sub, BinaryBase>{},
        FunctorFactory<Func::Mul, BinaryBase>{}, FunctorFactory<Func::Div, BinaryBase>{},
        FunctorFactory<Func::Mod, BinaryBase>{}};
    return makers[op](CONTAINER_ARRAY);
}

template <typename T>
bool IsServed(Op op)
{
    return !std::is_same_v<T, bool> && (!std::is_same_v<T, std::string> || op == ADD) &&
        (!std::is_same_v<T, DateTime> || op == ADD || op == SUB);
}

// ---- A model: one cell at a time, in the plainest way.

template <std::integral T>
T Model(Op op, T left, T right)
{
    const auto a = static_cast<std::uint64_t>(left); // low bits don't depend on what is above them
    const auto b = static_cast<std::uint64_t>(right);
    switch (op) {
    case ADD:
        return static_cast<T>(a + b);
    case SUB:
        return static_cast<T>(a - b);
    case MUL:
        return static_cast<T>(a * b);
    default:
        break;
    }
    if (right == 0) {
        return op == DIV ? T{0} : left;
    }
    if (std::is_signed_v<T> && right == static_cast<T>(-1)) {
        return op == DIV ? static_cast<T>(0 - a) : T{0};
    }
    return static_cast<T>(op == DIV ? left / right : left % right);
}

template <std::floating_point T>
T Model(Op op, T left, T right)
{
    for (const T operand : {left, right}) {
        if (std::isnan(operand)) {
            return operand; // the cells of these tests hold quiet ones only
        }
    }
    const T results[] = {left + right, left - right, left * right, left / right, std::fmod(left, right)};
    const T result = results[op];
    return std::isnan(result) ? std::numeric_limits<T>::quiet_NaN() : result;
}

std::string Model(Op, const std::string& left, const std::string& right) { return left + right; }

DateTime Model(Op op, const DateTime& left, const DateTime& right)
{
    return DateTime(
        Model(op, static_cast<std::int32_t>(left.TimeStamp()), static_cast<std::int32_t>(right.TimeStamp())));
}

/// The tables of these tests have one column of int32.
DataFrame Model(Op op, const DataFrame& left, const DataFrame& right)
{
    std::vector<std::int32_t> cells = left.To1DVector<std::int32_t>();
    const std::vector<std::int32_t> others = right.To1DVector<std::int32_t>();
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells[i] = Model(op, cells[i], others[i]);
    }
    return TableOf(Column<std::int32_t>("", cells));
}

bool Model(Op, bool, bool) { return false; } // never asked

// ---- Cells

template <typename T>
class ArithmeticOf : public testing::Test {
};
TYPED_TEST_SUITE(ArithmeticOf, AllValueTypes);

TYPED_TEST(ArithmeticOf, IsThatOfTheModelInAllContainersAndLengths)
{
    using T = TypeParam;
    Random random(TYPE_ID_OF<T>);
    for (const Op op : ALL_OPS) {
        for (const Lengths lengths : LENGTHS_THAT_MEET) {
            const bool isSlow = std::is_same_v<T, DataFrame> && lengths.Result() > 67;
            if (!IsServed<T>(op) || isSlow) {
                continue;
            }
            for (const Containers& containers : AllContainers()) {
                ASSERT_NO_FATAL_FAILURE((CheckAgainstModel<T, T>(
                    *MakeFunctor(op), lengths, containers, {3, 1, 2}, random,
                    [op](const T& left, const T& right) { return Model(op, left, right); }, containers == ARRAYS)));
            }
        }
    }
}

TYPED_TEST(ArithmeticOf, RefusesWhatTheTypeCanNotDo)
{
    using T = TypeParam;
    const std::string type = TypeTraitsImpl<T>::name;
    const std::string invalid = "value Type: " + type + " is an invalid type for this op.";
    const std::string unsupported = "this op does not support value Type: " + type + ".";
    for (const Op op : ALL_OPS) {
        if (IsServed<T>(op)) {
            continue;
        }
        for (const Containers& containers : AllContainers()) {
            const SeriesPtr left = Column<T>("left", SampleValues<T>(3), containers[0]);
            const SeriesPtr right = Column<T>("right", SampleValues<T>(3), containers[1]);
            const SeriesPtr result = Column<T>("result", SampleValues<T>(3), containers[2]);
            const LogCapture log;
            const Error outcome =
                MakeFunctor(op)->ProcessSeries(left->GetIterator(), right->GetIterator(), result->GetIterator());
            EXPECT_EQ(outcome.code, 1);
            EXPECT_EQ(outcome.message, "Error on calling functor: " + MakeFunctor(op)->GetName());
            EXPECT_EQ(log.Count(), log.Count(1));
            EXPECT_EQ(
                log.Texts(1), containers == ARRAYS ? std::vector({invalid, unsupported}) : std::vector({unsupported}));
            EXPECT_TRUE(AreSame(CellsOf<T>(result->GetIterator()), SampleValues<T>(3)));
        }
    }
}

TYPED_TEST(ArithmeticOf, MayWriteOverAnOperand)
{
    using T = TypeParam;
    for (const Op op : {ADD, SUB}) {
        for (const bool isLeft : {true, false}) {
            if (!IsServed<T>(op)) {
                continue;
            }
            Random random(7);
            const Surrounded<T> left(random, 1, 600, CONTAINER_ARRAY);
            const Surrounded<T> right(random, 2, 600, CONTAINER_ARRAY);
            const Surrounded<T>& result = isLeft ? left : right;
            ASSERT_EQ(MakeFunctor(op)->ProcessSeries(left.Window(), right.Window(), result.Window()).code, 0);
            const std::vector<T> cells = CellsOf<T>(result.Window());
            for (std::uint32_t i = 0; i < 600; ++i) {
                ASSERT_TRUE(HasSameBits<T>(cells[i], Model(op, left.Cell(i), right.Cell(i)))) << i;
            }
        }
    }
}

template <typename T>
struct NanCase {
    const char* name;
    Op op;
    T left;
    T right;
    BitsOf<T> result;
};

/// Holds each case against one pair of cells in the middle of many that are no NaN, in both containers.
template <typename T>
void CheckNans(const std::vector<NanCase<T>>& cases)
{
    for (const NanCase<T>& wanted : cases) {
        for (const ContainerID container : BOTH_CONTAINERS) {
            std::vector<T> lefts(100, T{4});
            std::vector<T> rights(100, T{2});
            lefts[61] = wanted.left;
            rights[61] = wanted.right;
            const SeriesPtr left = Column<T>("left", lefts, container);
            const SeriesPtr right = Column<T>("right", rights, container);
            const SeriesPtr result = BuildSeries(left->GetAttr(), "result");
            const auto functor = MakeFunctor(wanted.op);
            EXPECT_EQ(functor->ProcessSeries(left->GetIterator(), right->GetIterator(), result->GetIterator()).code, 0);
            const std::vector<T> cells = CellsOf<T>(result->GetIterator());
            EXPECT_EQ(std::bit_cast<BitsOf<T>>(cells[61]), wanted.result) << wanted.name;
            EXPECT_EQ(cells[60], Model(wanted.op, T{4}, T{2})) << wanted.name;
        }
    }
}

TEST(Arithmetic, GivesOneNanOnEveryMachine)
{
    const auto real = [](std::uint64_t bits) { return std::bit_cast<double>(bits); };
    constexpr std::uint64_t PLAIN = 0x7FF8000000000000;
    CheckNans<double>({{"opposite infinities", ADD, INFINITE, -INFINITE, PLAIN},
        {"equal infinities", SUB, -INFINITE, -INFINITE, PLAIN}, {"0 * infinity", MUL, -0.0, INFINITE, PLAIN},
        {"0 / 0", DIV, 0.0, 0.0, PLAIN}, {"infinity / infinity", DIV, INFINITE, -INFINITE, PLAIN},
        {"remainder by 0", MOD, -3.0, 0.0, PLAIN}, {"remainder of infinity", MOD, -INFINITE, 2.0, PLAIN},
        {"left", ADD, real(0xFFF8000000000012), 1.0, 0xFFF8000000000012},
        {"right", MUL, 1.0, real(0xFFF8000000000034), 0xFFF8000000000034},
        {"both", ADD, real(0x7FF8000000000001), real(0xFFF8000000000002), 0x7FF8000000000001},
        {"both, the other way", MUL, real(0xFFF8000000000002), real(0x7FF8000000000001), 0xFFF8000000000002},
        {"signalling", SUB, real(0xFFF0000000000005), 1.0, 0xFFF8000000000005},
        {"beside infinity", DIV, INFINITE, real(0x7FF8000000000009), 0x7FF8000000000009},
        {"remainder", MOD, 1.0, real(0xFFF8000000000007), 0xFFF8000000000007}});
}

TEST(Arithmetic, GivesOneNanOfFloatOnEveryMachine)
{
    const auto real = [](std::uint32_t bits) { return std::bit_cast<float>(bits); };
    constexpr float WIDE = std::numeric_limits<float>::infinity();
    CheckNans<float>({{"opposite infinities", ADD, WIDE, -WIDE, 0x7FC00000}, {"0 / 0", DIV, 0.0F, -0.0F, 0x7FC00000},
        {"remainder by 0", MOD, 1.0F, 0.0F, 0x7FC00000}, {"both", ADD, real(0xFFC00001), real(0x7FC00002), 0xFFC00001},
        {"signalling", MUL, real(0x7F800003), 2.0F, 0x7FC00003},
        {"remainder", MOD, 1.0F, real(0xFFC00004), 0xFFC00004}});
}

template <typename T>
class DivisionOf : public testing::Test {
};
using DividedTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
    std::int64_t, std::uint64_t>;
TYPED_TEST_SUITE(DivisionOf, DividedTypes);

// Quotients close below a whole number are the ones that a division by way of reals might round up.
TYPED_TEST(DivisionOf, NumbersAroundMultiplesIsThatOfTheModel)
{
    using T = TypeParam;
    constexpr auto LARGEST = static_cast<std::uint64_t>(std::numeric_limits<T>::max());
    std::vector<T> lefts;
    std::vector<T> rights;
    for (const std::uint64_t divisor : {std::uint64_t{1}, std::uint64_t{2}, std::uint64_t{3}, std::uint64_t{7},
             std::uint64_t{10}, std::uint64_t{127}, std::uint64_t{181}, std::uint64_t{641}, std::uint64_t{46341},
             std::uint64_t{65537}, std::uint64_t{1} << 30, LARGEST / 2, LARGEST - 1, LARGEST}) {
        for (const std::uint64_t quotient : {std::uint64_t{1}, std::uint64_t{2}, std::uint64_t{5}, std::uint64_t{1000},
                 std::uint64_t{46340}, LARGEST / divisor}) {
            if (divisor > LARGEST || quotient > LARGEST / divisor) {
                continue;
            }
            for (const std::uint64_t number : {divisor * quotient - 1, divisor * quotient, divisor * quotient + 1}) {
                lefts.insert(lefts.end(), {static_cast<T>(number), static_cast<T>(0 - number)});
                rights.insert(rights.end(), {static_cast<T>(divisor), static_cast<T>(0 - divisor)});
            }
        }
    }
    const DataFrame left = TableOf(Column<T>("a", lefts));
    const DataFrame right = TableOf(Column<T>("a", rights));
    for (const Op op : {DIV, MOD}) {
        const std::vector<T> results = (op == DIV ? left / right : left % right).template To1DVector<T>();
        ASSERT_EQ(results.size(), lefts.size());
        for (std::size_t i = 0; i < lefts.size(); ++i) {
            ASSERT_EQ(results[i], Model(op, lefts[i], rights[i])) << +lefts[i] << " by " << +rights[i];
        }
    }
}

TEST(Arithmetic, GivesAZeroWhereOneRowMeetsNone)
{
    for (const ContainerID container : BOTH_CONTAINERS) {
        const SeriesPtr none = BuildSeries({0, container, TESSERA_INT64}, "");
        const SeriesPtr one = Column<std::int64_t>("", {9}, container);
        for (const bool isLeft : {true, false}) {
            const SeriesPtr result = Column<std::int64_t>("", {-1}, container);
            const LogCapture log;
            const Error outcome = Func::Mul<CONTAINER_ARRAY>().ProcessSeries(
                (isLeft ? one : none)->GetIterator(), (isLeft ? none : one)->GetIterator(), result->GetIterator());
            EXPECT_EQ(outcome.code, 0);
            EXPECT_THAT(CellsOf<std::int64_t>(result->GetIterator()), ElementsAre(0));
            EXPECT_TRUE(log.Has(2, "Functor Mul has one row on one side and none on the other"));
        }
    }
}

// ---- Tables

DataFrame Integers(const std::vector<std::vector<std::int32_t>>& columns)
{
    DataFrame table;
    EXPECT_EQ(table.ReadVectorByCol<std::int32_t>(columns), 0);
    return table;
}

std::vector<std::vector<std::int32_t>> IntegersOf(const DataFrameRef& table)
{
    std::vector<std::vector<std::int32_t>> columns;
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        columns.push_back(CellsOf<std::int32_t>(table.GetSlicedIterator(table.GetColumn(k))));
    }
    return columns;
}

using Columns = std::vector<std::vector<std::int32_t>>;
using FreeOperator = DataFrame (*)(const DataFrameRef&, const DataFrameRef&);
using AssigningOperator = DataFrameRef& (DataFrameRef::*)(const DataFrameRef&);

struct OperatorCase {
    FreeOperator combine;
    AssigningOperator assign;
    std::int32_t of17And5;
};
const OperatorCase OPERATORS[] = {{&operator+, &DataFrameRef::operator+=, 22},
    {&operator-, &DataFrameRef::operator-=, 12}, {&operator*, &DataFrameRef::operator*=, 85},
    {&operator/, &DataFrameRef::operator/=, 3}, {&operator%, &DataFrameRef::operator%=, 2}};

TEST(ArithmeticOperator, ComputesColumnByColumn)
{
    for (const OperatorCase& wanted : OPERATORS) {
        const DataFrame left = Integers({{17, 17}, {100, 17}});
        const DataFrame right = Integers({{5, 5}, {100, 5}});
        const DataFrame result = wanted.combine(left, right);
        ASSERT_EQ(result.GetError().code, 0);
        EXPECT_EQ(result.GetError().message, "healthy dataframe");
        const std::int32_t of100 = wanted.combine(left, right).To1DVector<std::int32_t>()[1];
        const Columns columns{{wanted.of17And5, wanted.of17And5}, {of100, wanted.of17And5}};
        EXPECT_EQ(IntegersOf(result), columns);

        DataFrame table = left;
        EXPECT_EQ(&(table.*wanted.assign)(right), &table);
        EXPECT_EQ(IntegersOf(table), columns);

        DataFrame base = left;
        DataFrameRef window = base.Slice({1, 2}, {0, 2});
        (window.*wanted.assign)(right.Slice({1, 2}, {0, 2}));
        EXPECT_EQ(window.GetError().code, 0);
        EXPECT_EQ(IntegersOf(base), (Columns{{17, wanted.of17And5}, {100, wanted.of17And5}}));
    }
}

template <typename T>
std::vector<T> Counting(std::size_t count)
{
    std::vector<T> numbers(count);
    std::iota(numbers.begin(), numbers.end(), T{});
    return numbers;
}

/// Results of many blocks, that begin anywhere between the lines of the cache.
template <typename T>
void ExpectSumsOfLargeWindows()
{
    constexpr auto ROWS = static_cast<unsigned int>((std::size_t{4} << 20) / sizeof(T) + 1000);
    for (const unsigned int first : {0U, 1U, 3U, 8U}) {
        std::vector<T> cells = Counting<T>(ROWS);
        DataFrame base = TableOf(Column<T>("n", cells));
        DataFrameRef window = base.Slice({first, ROWS - 1}, {0, 1});
        window += TableOf(Column<T>("n", Counting<T>(ROWS - 1 - first)));
        ASSERT_EQ(window.GetError().code, 0);
        for (unsigned int i = first; i < ROWS - 1; ++i) {
            cells[i] = static_cast<T>(cells[i] + static_cast<T>(i - first));
        }
        EXPECT_EQ(base.To1DVector<T>(), cells) << first;
    }
}

TEST(ArithmeticOperator, WritesLargeWindowsFromAnyRowOn)
{
    ExpectSumsOfLargeWindows<std::int32_t>();
    ExpectSumsOfLargeWindows<double>();
}

TEST(ArithmeticOperator, KeepsAFailureOfNestedTablesInTheirCell)
{
    DataFrame failed = Integers({{1, 2}});
    failed.SetError({15, "an earlier failure"});
    const DataFrame left = TableOf(Column<DataFrame>("", {Integers({{1, 2}}), Integers({{3, 4}}), failed}));
    const DataFrame right =
        TableOf(Column<DataFrame>("", {Integers({{10, 20}}), Integers({{1, 2, 3}}), Integers({{1, 2}})}));
    const DataFrame result = left + right;
    ASSERT_EQ(result.GetError().code, 0);
    const std::vector<DataFrame> cells = result.To1DVector<DataFrame>();
    ASSERT_EQ(cells.size(), 3U);
    EXPECT_EQ(IntegersOf(cells[0]), (Columns{{11, 22}}));
    EXPECT_EQ(cells[1].GetError().code, 21);
    EXPECT_EQ(cells[2].GetError().code, 15);
    // The operands are as they were, and share nothing with the result.
    Cursor cursor = result.GetColumn(0)->GetIterator();
    CursorAs<CONTAINER_ARRAY, DataFrame>(cursor).mHead->operator+=(Integers({{1, 1}}));
    EXPECT_EQ(IntegersOf(left.To1DVector<DataFrame>()[0]), (Columns{{1, 2}}));
}

} // namespace
} // namespace MERVO::Tessera
