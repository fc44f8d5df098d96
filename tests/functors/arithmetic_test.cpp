#include <cmath>
#include <memory>
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

enum class Op { ADD, SUB, MUL, DIV, MOD };
constexpr Op ALL_OPS[] = {Op::ADD, Op::SUB, Op::MUL, Op::DIV, Op::MOD};
constexpr const char* OP_NAMES[] = {"Add", "Sub", "Mul", "Div", "Mod"};

std::unique_ptr<Func::BinaryBase> MakeFunctor(Op op)
{
    switch (op) {
    case Op::ADD:
        return std::make_unique<Func::Add<CONTAINER_ARRAY>>();
    case Op::SUB:
        return std::make_unique<Func::Sub<CONTAINER_ARRAY>>();
    case Op::MUL:
        return std::make_unique<Func::Mul<CONTAINER_ARRAY>>();
    case Op::DIV:
        return std::make_unique<Func::Div<CONTAINER_ARRAY>>();
    default:
        return std::make_unique<Func::Mod<CONTAINER_ARRAY>>();
    }
}

template <typename T>
bool IsServed(Op op)
{
    return !std::is_same_v<T, bool> && (!std::is_same_v<T, std::string> || op == Op::ADD) &&
        (!std::is_same_v<T, DateTime> || op == Op::ADD || op == Op::SUB);
}

// ---- A model: one cell at a time, in the plainest way.

template <std::integral T>
T Model(Op op, T left, T right)
{
    const auto a = static_cast<std::uint64_t>(left); // low bits don't depend on what is above them
    const auto b = static_cast<std::uint64_t>(right);
    switch (op) {
    case Op::ADD:
        return static_cast<T>(a + b);
    case Op::SUB:
        return static_cast<T>(a - b);
    case Op::MUL:
        return static_cast<T>(a * b);
    default:
        break;
    }
    if (right == 0) {
        return op == Op::DIV ? T{0} : left;
    }
    if (std::is_signed_v<T> && right == static_cast<T>(-1)) {
        return op == Op::DIV ? static_cast<T>(0 - a) : T{0};
    }
    return static_cast<T>(op == Op::DIV ? left / right : left % right);
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
    const T result = results[static_cast<int>(op)];
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

/// Runs an operation between windows in the middle of columns and holds all cells of the result's column against the
/// model.
template <typename T>
void CheckAgainstModel(Op op, Lengths lengths, const Containers& containers, Random& random)
{
    const Surrounded<T> left(random, 3, lengths.left, containers[0]);
    const Surrounded<T> right(random, 1, lengths.right, containers[1]);
    const Surrounded<T> result(random, 2, lengths.Result(), containers[2]);
    const Error outcome = MakeFunctor(op)->ProcessSeries(left.Window(), right.Window(), result.Window());
    ASSERT_EQ(outcome.code, 0);
    ASSERT_EQ(outcome.message, "");
    const bool copiesFirst = containers == ARRAYS && lengths.left == 1; // one row on the left, deliberately
    std::vector<T> expected = result.CellsBefore();
    for (std::uint32_t i = 0; i < lengths.Result(); ++i) {
        const std::uint32_t fromLeft = lengths.left == 1 ? 0 : i;
        const std::uint32_t fromRight = copiesFirst || lengths.right == 1 ? 0 : i;
        expected[2 + i] = Model(op, left.Cell(fromLeft), right.Cell(fromRight));
    }
    const std::vector<T> cells = result.CellsNow();
    ASSERT_EQ(cells.size(), expected.size());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        ASSERT_TRUE(HasSameBits<T>(cells[i], expected[i]))
            << OP_NAMES[static_cast<int>(op)] << " of " << lengths.left << " and " << lengths.right << ", cell " << i;
    }
    for (const Surrounded<T>* operand : {&left, &right}) {
        const std::vector<T> before = operand->CellsBefore();
        const std::vector<T> now = operand->CellsNow();
        ASSERT_TRUE(std::equal(before.begin(), before.end(), now.begin(), now.end(), HasSameBits<T>));
    }
}

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
                CheckAgainstModel<T>(op, lengths, containers, random);
                if (this->HasFatalFailure()) {
                    return;
                }
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
            EXPECT_EQ(outcome.message, std::string("Error on calling functor: ") + OP_NAMES[static_cast<int>(op)]);
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
    for (const Op op : {Op::ADD, Op::SUB}) {
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
    CheckNans<double>({{"opposite infinities", Op::ADD, INFINITE, -INFINITE, PLAIN},
        {"equal infinities", Op::SUB, -INFINITE, -INFINITE, PLAIN}, {"0 * infinity", Op::MUL, -0.0, INFINITE, PLAIN},
        {"0 / 0", Op::DIV, 0.0, 0.0, PLAIN}, {"infinity / infinity", Op::DIV, INFINITE, -INFINITE, PLAIN},
        {"remainder by 0", Op::MOD, -3.0, 0.0, PLAIN}, {"remainder of infinity", Op::MOD, -INFINITE, 2.0, PLAIN},
        {"left", Op::ADD, real(0xFFF8000000000012), 1.0, 0xFFF8000000000012},
        {"right", Op::MUL, 1.0, real(0xFFF8000000000034), 0xFFF8000000000034},
        {"both", Op::ADD, real(0x7FF8000000000001), real(0xFFF8000000000002), 0x7FF8000000000001},
        {"both, the other way", Op::MUL, real(0xFFF8000000000002), real(0x7FF8000000000001), 0xFFF8000000000002},
        {"signalling", Op::SUB, real(0xFFF0000000000005), 1.0, 0xFFF8000000000005},
        {"beside infinity", Op::DIV, INFINITE, real(0x7FF8000000000009), 0x7FF8000000000009},
        {"remainder", Op::MOD, 1.0, real(0xFFF8000000000007), 0xFFF8000000000007}});
}

TEST(Arithmetic, GivesOneNanOfFloatOnEveryMachine)
{
    const auto real = [](std::uint32_t bits) { return std::bit_cast<float>(bits); };
    constexpr float WIDE = std::numeric_limits<float>::infinity();
    CheckNans<float>({{"opposite infinities", Op::ADD, WIDE, -WIDE, 0x7FC00000},
        {"0 / 0", Op::DIV, 0.0F, -0.0F, 0x7FC00000}, {"remainder by 0", Op::MOD, 1.0F, 0.0F, 0x7FC00000},
        {"both", Op::ADD, real(0xFFC00001), real(0x7FC00002), 0xFFC00001},
        {"signalling", Op::MUL, real(0x7F800003), 2.0F, 0x7FC00003},
        {"remainder", Op::MOD, 1.0F, real(0xFFC00004), 0xFFC00004}});
}

TEST(Arithmetic, DividesIntegersAsWholeNumbers)
{
    // Quotients close below a whole number are the ones that a division by way of reals might round up.
    constexpr std::int32_t LARGEST = std::numeric_limits<std::int32_t>::max();
    std::vector<std::int32_t> lefts;
    std::vector<std::int32_t> rights;
    for (const std::int32_t divisor : {1, 2, 3, 7, 10, 641, 46341, 65537, 1 << 30, LARGEST - 1, LARGEST}) {
        for (const std::int32_t quotient : {1, 2, 5, 1000, 46340, LARGEST / divisor}) {
            const std::int64_t product = std::int64_t{divisor} * quotient;
            for (std::int64_t number = product - 1; number <= product + 1 && number <= LARGEST; ++number) {
                lefts.insert(lefts.end(), 4, static_cast<std::int32_t>(number));
                lefts.end()[-1] *= -1;
                lefts.end()[-2] *= -1;
                rights.insert(rights.end(), {divisor, -divisor, divisor, -divisor});
            }
        }
    }
    const DataFrame left = TableOf(Column<std::int32_t>("a", lefts));
    const DataFrame right = TableOf(Column<std::int32_t>("a", rights));
    const std::vector<std::int32_t> quotients = (left / right).To1DVector<std::int32_t>();
    const std::vector<std::int32_t> remainders = (left % right).To1DVector<std::int32_t>();
    ASSERT_EQ(quotients.size(), lefts.size());
    ASSERT_EQ(remainders.size(), lefts.size());
    for (std::size_t i = 0; i < lefts.size(); ++i) {
        EXPECT_EQ(quotients[i], lefts[i] / rights[i]) << lefts[i] << " / " << rights[i];
        EXPECT_EQ(remainders[i], lefts[i] % rights[i]) << lefts[i] << " % " << rights[i];
    }
}

TEST(Arithmetic, DividesAllPairsOf8Bits)
{
    std::vector<std::int8_t> lefts(65536);
    std::vector<std::int8_t> rights(65536);
    for (std::size_t i = 0; i < lefts.size(); ++i) {
        lefts[i] = static_cast<std::int8_t>(i >> 8);
        rights[i] = static_cast<std::int8_t>(i & 255);
    }
    const auto check = [&]<typename T>(T) {
        const DataFrame left = TableOf(Column<T>("a", std::vector<T>(lefts.begin(), lefts.end())));
        const DataFrame right = TableOf(Column<T>("a", std::vector<T>(rights.begin(), rights.end())));
        const std::vector<T> quotients = (left / right).template To1DVector<T>();
        const std::vector<T> remainders = (left % right).template To1DVector<T>();
        for (std::size_t i = 0; i < lefts.size(); ++i) {
            ASSERT_EQ(quotients[i], Model(Op::DIV, static_cast<T>(lefts[i]), static_cast<T>(rights[i]))) << i;
            ASSERT_EQ(remainders[i], Model(Op::MOD, static_cast<T>(lefts[i]), static_cast<T>(rights[i]))) << i;
        }
    };
    check(std::int8_t{});
    check(std::uint8_t{});
}

TEST(Arithmetic, TakesTheTruncatedRemainder)
{
    const DataFrame integers = TableOf(Column<std::int32_t>("a", {-7, 7, -7}));
    EXPECT_THAT((integers % TableOf(Column<std::int32_t>("a", {2, -2, -2}))).To1DVector<std::int32_t>(),
        ElementsAre(-1, 1, -1));
    const std::vector<double> remainders =
        (TableOf(Column<double>("a", {-7.0, 7.5, -4.0})) % TableOf(Column<double>("a", {2.0, -2.0, 2.0})))
            .To1DVector<double>();
    EXPECT_THAT(remainders, ElementsAre(-1.0, 1.5, 0.0));
    EXPECT_TRUE(std::signbit(remainders[2]));
}

// ---- Checks

struct ShapeCase {
    std::uint32_t left;
    std::uint32_t right;
    std::uint32_t result; ///< the length that the functor asks for
    bool isServed;
};

TEST(Arithmetic, PairsEqualLengthsAndOneRow)
{
    const ShapeCase cases[] = {
        {3, 3, 3, true}, {1, 3, 3, true}, {3, 1, 3, true}, {0, 0, 0, true}, {2, 3, 0, false}, {0, 3, 0, false}};
    const Func::Add<CONTAINER_ARRAY> add;
    for (const ShapeCase& wanted : cases) {
        const SeriesPtr left = BuildSeries({wanted.left, CONTAINER_LIST, TESSERA_INT32}, "");
        const SeriesPtr right = BuildSeries({wanted.right, CONTAINER_ARRAY, TESSERA_INT32}, "");
        const SeriesAttr attr = add.GetDstAttr(left->GetIterator(), right->GetIterator());
        EXPECT_EQ(attr.length, wanted.result);
        EXPECT_EQ(attr.typeId, TESSERA_INT32);
        EXPECT_EQ(attr.containerId, CONTAINER_LIST);
        const SeriesPtr result = BuildSeries(attr, "");
        const SeriesPtr longer = BuildSeries(WithLength(attr, wanted.result + 1), "");
        EXPECT_EQ(add.CheckParams(left->GetIterator(), right->GetIterator(), result->GetIterator()), wanted.isServed);
        EXPECT_FALSE(add.CheckParams(left->GetIterator(), right->GetIterator(), longer->GetIterator()));
    }
}

TEST(Arithmetic, WantsOneValueType)
{
    const SeriesPtr integers = Column<std::int32_t>("", {1, 2});
    const SeriesPtr doubles = Column<double>("", {1, 2});
    const Func::Sub<CONTAINER_ARRAY> sub;
    for (const auto& [left, right, result] : {std::array{&integers, &doubles, &integers},
             std::array{&doubles, &integers, &integers}, std::array{&integers, &integers, &doubles}}) {
        const LogCapture log;
        const Error outcome =
            sub.ProcessSeries((*left)->GetIterator(), (*right)->GetIterator(), (*result)->GetIterator());
        EXPECT_EQ(outcome.code, 21);
        EXPECT_EQ(outcome.message, "Check param failed in binary functorSub");
        EXPECT_TRUE(log.Has(1, "Functor Sub check param error, lhs [size 2, type "));
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
    const char* failure;
    std::int32_t of17And5;
};
const OperatorCase OPERATORS[] = {{&operator+, &DataFrameRef::operator+=, "operator+= failed", 22},
    {&operator-, &DataFrameRef::operator-=, "operator-= failed", 12},
    {&operator*, &DataFrameRef::operator*=, "operator*= failed", 85},
    {&operator/, &DataFrameRef::operator/=, "operator/= failed", 3},
    {&operator%, &DataFrameRef::operator%=, "operator%= failed", 2}};

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

TEST(ArithmeticOperator, PairsOneColumnWithEach)
{
    DataFrame many = Integers({{10, 20}, {30, 40}, {50, 60}});
    ASSERT_EQ(many.SetColumnName({"a", "b", "c"}), 0);
    const DataFrame one = Integers({{1, 2}});
    EXPECT_EQ(IntegersOf(many - one), (Columns{{9, 18}, {29, 38}, {49, 58}}));
    EXPECT_EQ(IntegersOf(one - many), (Columns{{-9, -18}, {-29, -38}, {-49, -58}}));
    EXPECT_THAT((many - one).GetColumnName(), ElementsAre("a", "b", "c"));
    EXPECT_THAT((one - many).GetColumnName(), ElementsAre("a", "b", "c"));
}

TEST(ArithmeticOperator, PairsOneRowWithEach)
{
    const DataFrame many = Integers({{10, 20}});
    const DataFrame one = Integers({{1}});
    EXPECT_EQ(IntegersOf(many - one), (Columns{{9, 19}}));
    EXPECT_EQ(IntegersOf(one - many), (Columns{{-9, -9}})); // copies of the first
}

TEST(ArithmeticOperator, ReadsOldValuesWhereWindowsOverlap)
{
    DataFrame table = Integers({{1, 2}, {10, 20}, {100, 200}});
    DataFrameRef first = table.Slice(1, {0, 2});
    first += table.Slice(1, {1, 3});
    EXPECT_EQ(IntegersOf(table), (Columns{{11, 22}, {110, 220}, {100, 200}}));
    table -= table;
    EXPECT_EQ(IntegersOf(table), (Columns{{0, 0}, {0, 0}, {0, 0}}));
}

struct FailureCase {
    const char* name;
    std::function<DataFrame()> left;
    std::function<DataFrame()> right;
    ErrorCode code;
};

DataFrame FailedTable()
{
    DataFrame failed = Integers({{1, 2}});
    failed.SetError({15, "an earlier failure"});
    return failed;
}

const FailureCase FAILURES[] = {
    {"lengths",
        [] {
            return Integers({{1, 2}});
        },
        [] {
            return Integers({{1, 2, 3}});
        },
        21},
    {"value types",
        [] {
            return Integers({{1, 2}});
        },
        [] {
            return TableOf(Column<double>("", {1, 2}));
        },
        21},
    {"unserved type", [] { return TableOf(Column<bool>("", {true})); },
        [] { return TableOf(Column<bool>("", {true})); }, 1},
    {"column counts",
        [] {
            return Integers({{1}, {2}});
        },
        [] {
            return Integers({{1}, {2}, {3}});
        },
        19},
    {"left without columns", [] { return DataFrame(); }, [] { return Integers({{1}}); }, 7},
    {"right without columns", [] { return Integers({{1}}); }, [] { return DataFrame(); }, 7},
    {"left has failed", FailedTable,
        [] {
            return Integers({{1, 2}});
        },
        15},
    {"right has failed",
        [] {
            return Integers({{1, 2}});
        },
        FailedTable, 15},
    {"lists", [] { return TableOf(Column<std::int32_t>("", {1}, CONTAINER_LIST)); },
        [] { return TableOf(Column<std::int32_t>("", {1}, CONTAINER_LIST)); }, 2},
};

TEST(ArithmeticOperator, KeepsTheCodeOfAFailureAndHasItsOwnText)
{
    for (const FailureCase& wanted : FAILURES) {
        for (const OperatorCase& op : OPERATORS) {
            SCOPED_TRACE(std::string(wanted.name) + ", " + op.failure);
            const DataFrame result = op.combine(wanted.left(), wanted.right());
            EXPECT_EQ(result.GetError().code, wanted.code);
            EXPECT_EQ(result.GetError().message, "Error on executing operator");
            EXPECT_EQ(result.ColumnCount(), 0U);

            DataFrame table = wanted.left();
            (table.*op.assign)(wanted.right());
            EXPECT_EQ(table.GetError().code, wanted.code);
            EXPECT_EQ(table.GetError().message, op.failure);
        }
    }
}

TEST(ArithmeticOperator, KeepsTheFirstCodeOverFurtherFailures)
{
    DataFrame table = Integers({{1, 2}});
    table += Integers({{1, 2, 3}});
    table *= DataFrame();
    EXPECT_EQ(table.GetError().code, 21);
    EXPECT_EQ(table.GetError().message, "operator*= failed");
    DataFrameRef window = Integers({{1}});
    window = Integers({{1}, {2}});
    EXPECT_EQ(window.GetError().code, 20);
    EXPECT_EQ(window.GetError().message, "operator = (assign) failed");
}

TEST(ArithmeticOperator, LeavesAWindowThatItCanNotFill)
{
    DataFrame table = Integers({{1, 2, 3}, {4, 5, 6}});
    const Columns before = IntegersOf(table);
    DataFrameRef oneRow = table.Slice(0U, {0, 1});
    oneRow += table; // would grow
    EXPECT_EQ(oneRow.GetError().code, 20);
    EXPECT_EQ(oneRow.GetError().message, "operator+= failed");
    DataFrameRef oneColumn = table.Slice(1U, {0, 1});
    oneColumn += table;
    EXPECT_EQ(oneColumn.GetError().code, 20);
    EXPECT_EQ(IntegersOf(table), before);
    EXPECT_EQ(table.GetError().code, 0);
}

TEST(ArithmeticOperator, ConvertsTheContainerOfARightOperand)
{
    const DataFrame array = TableOf(Column<std::int32_t>("", {1, 2}));
    const DataFrame list = TableOf(Column<std::int32_t>("", {10, 20}, CONTAINER_LIST));
    const DataFrame result = array + list;
    ASSERT_EQ(result.GetError().code, 0);
    EXPECT_EQ(result.ContainerType(), CONTAINER_ARRAY);
    EXPECT_EQ(IntegersOf(result), (Columns{{11, 22}}));
}

TEST(ArithmeticOperator, KeepsAFailureOfNestedTablesInTheirCell)
{
    const DataFrame left = TableOf(Column<DataFrame>("", {Integers({{1, 2}}), Integers({{3, 4}}), FailedTable()}));
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

TEST(ArithmeticOperator, CountsTimesIn32Bits)
{
    constexpr std::int32_t LAST = std::numeric_limits<std::int32_t>::max();
    const DataFrame left = TableOf(Column<DateTime>("", {DateTime(LAST), DateTime(100)}));
    const DataFrame right = TableOf(Column<DateTime>("", {DateTime(1), DateTime(130)}));
    const auto stamps = [](const DataFrame& table) {
        std::vector<long> values;
        for (const DateTime& time : table.To1DVector<DateTime>()) {
            values.push_back(time.TimeStamp());
        }
        return values;
    };
    EXPECT_THAT(stamps(left + right), ElementsAre(std::numeric_limits<std::int32_t>::min(), 230));
    EXPECT_THAT(stamps(left - right), ElementsAre(LAST - 1, -30));
}

TEST(ArithmeticOperator, DividesRealsByZeroWithoutAWord)
{
    const DataFrame left = TableOf(Column<double>("", {1.0, -1.0}));
    const LogCapture log;
    const DataFrame result = left / TableOf(Column<double>("", {0.0}));
    EXPECT_THAT(result.To1DVector<double>(), ElementsAre(INFINITE, -INFINITE));
    EXPECT_EQ(log.Count(), 0U);
}

} // namespace
} // namespace MERVO::Tessera
