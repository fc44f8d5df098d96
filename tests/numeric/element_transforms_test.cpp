// Element transforms against models of one plain loop each, and what they refuse.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "tessera/core/numeric_cast.h"
#include "tessera/core/text_key.h"
#include "tessera/tessera.hpp"
#include "tests/functors/pairing.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;

template <typename T>
constexpr bool IS_NUMBER = Arithmetic<T> && !std::is_same_v<T, bool>;

// ---- Models

template <typename T>
T RoundModel(T cell, std::uint32_t decimals, std::size_t& copied)
{
    const double a = std::pow(10.0, decimals);
    const auto x = static_cast<double>(cell);
    if (a > std::abs(9223372036854775808.0 / x)) {
        ++copied;
        return cell;
    }
    double s = x * a;
    s = s > 0.0 ? s + 0.5 : s - 0.5;
    return ConvertNumber<T>(static_cast<double>(ConvertNumber<std::int64_t>(s)) / a);
}

template <typename T>
T DifferenceModel(T later, T earlier)
{
    if constexpr (std::is_floating_point_v<T>) {
        constexpr auto QUIET = std::bit_cast<BitsOf<T>>(std::numeric_limits<T>::quiet_NaN());
        for (const T operand : {later, earlier}) {
            if (std::isnan(operand)) {
                return std::bit_cast<T>(std::bit_cast<BitsOf<T>>(operand) | QUIET);
            }
        }
        const T difference = later - earlier;
        return std::isnan(difference) ? std::numeric_limits<T>::quiet_NaN() : difference;
    } else {
        using Wrapping = std::make_unsigned_t<T>;
        return static_cast<T>(static_cast<Wrapping>(later) - static_cast<Wrapping>(earlier));
    }
}

template <typename T>
bool IsSameKey(const T& left, const T& right)
{
    if constexpr (std::is_floating_point_v<T>) {
        return left == right || (std::isnan(left) && std::isnan(right));
    } else {
        return left == right;
    }
}

template <typename T>
T ReplaceModel(const T& cell, const T& oldValue, const T& newValue)
{
    if constexpr (std::is_same_v<T, float>) {
        return std::abs(cell - oldValue) < 1.1920929e-7F ? newValue : cell;
    } else if constexpr (std::is_same_v<T, double>) {
        return std::abs(cell - oldValue) < 2.220446049250313e-16 ? newValue : cell;
    } else {
        return cell == oldValue ? newValue : cell;
    }
}

// ---- Running

constexpr std::uint32_t LENGTHS[] = {0, 1, 67, 1037};
constexpr std::uint32_t LEAD = 3; // of windows, so that bits begin within a byte

/// Holds the window of a result column against what is expected, and the cells around it against what they were.
template <typename T>
testing::AssertionResult Holds(const Surrounded<T>& column, const std::vector<T>& expected)
{
    std::vector<T> whole = column.CellsBefore();
    std::copy(expected.begin(), expected.end(), whole.begin() + LEAD);
    const std::vector<T> now = column.CellsNow();
    for (std::uint32_t i = 0; i < whole.size(); ++i) {
        if (!HasSameBits<T>(now[i], whole[i])) {
            return testing::AssertionFailure() << "cell " << i << " of " << whole.size() << " differs";
        }
    }
    return testing::AssertionSuccess();
}

template <typename T>
std::vector<T> CellsBefore(const Surrounded<T>& column, std::uint32_t length)
{
    std::vector<T> cells;
    for (std::uint32_t i = 0; i < length; ++i) {
        cells.push_back(column.Cell(i));
    }
    return cells;
}

/// Runs a functor on a window in each pair of containers.
template <typename T>
void ExpectCells(const Func::UnaryBase& functor, const std::vector<T>& cells, const std::vector<T>& expected,
    bool keepsContainer = false)
{
    Random random(3);
    for (const ContainerID from : BOTH_CONTAINERS) {
        for (const ContainerID to : BOTH_CONTAINERS) {
            const auto length = static_cast<std::uint32_t>(cells.size());
            const SeriesPtr src = Column<T>("src", cells, from);
            const Surrounded<T> dst(random, LEAD, length, to);
            const Error error = functor.ProcessSeries(src->GetIterator(), dst.Window(), true);
            ASSERT_EQ(error.code, keepsContainer && from != to ? 21 : 0) << error.message;
            ASSERT_TRUE(error.code != 0 || Holds(dst, expected)) << functor.GetName() << " of " << length;
        }
    }
}

template <typename T>
class ElementTransforms : public testing::Test {
};
TYPED_TEST_SUITE(ElementTransforms, AllValueTypes);

/// Cells at which rounding changes its ways: halves, and what hardly fits into 64 bits.
template <typename T>
T CellToRound(Random& random, std::uint32_t decimals)
{
    const double limit = 9223372036854775808.0 / std::pow(10.0, decimals);
    const auto sign = random.Below(2) == 0 ? -1.0 : 1.0;
    switch (random.Below(4)) {
    case 0:
        return ConvertNumber<T>(static_cast<double>(static_cast<std::int16_t>(random.Next())) / 2.0);
    case 1:
        return ConvertNumber<T>(
            sign * std::bit_cast<double>(std::bit_cast<std::uint64_t>(limit) + random.Below(7) - 3));
    case 2:
        return ConvertNumber<T>(sign * static_cast<double>(random.Next() >> random.Below(64)) / limit);
    default:
        return RandomCell<T>(random);
    }
}

TYPED_TEST(ElementTransforms, RoundAsTheModelDoes)
{
    if constexpr (IS_NUMBER<TypeParam>) {
        Random random(1);
        for (const std::uint32_t length : LENGTHS) {
            for (std::uint32_t decimals = 0; decimals <= 10; ++decimals) {
                std::vector<TypeParam> cells;
                std::vector<TypeParam> expected;
                std::size_t copied = 0;
                for (std::uint32_t i = 0; i < length; ++i) {
                    cells.push_back(CellToRound<TypeParam>(random, decimals));
                    expected.push_back(RoundModel(cells.back(), decimals, copied));
                }
                const LogCapture log;
                ExpectCells(Func::Round<CONTAINER_ARRAY, std::uint32_t>(decimals), cells, expected);
                EXPECT_EQ(log.Count(0), 4 * copied);
                EXPECT_EQ(log.Count(), 4 * copied);
            }
        }
    }
}

TYPED_TEST(ElementTransforms, DiffAsTheModelDoes)
{
    if constexpr (IS_NUMBER<TypeParam>) {
        constexpr std::int32_t LAGS[] = {
            0, 1, -1, 5, -5, 66, -67, 600, -1036, std::numeric_limits<std::int32_t>::min()};
        Random random(2);
        for (const std::int64_t length : LENGTHS) {
            const auto cells = RandomCells<TypeParam>(random, static_cast<std::uint32_t>(length));
            for (const std::int32_t lag : LAGS) {
                std::vector<TypeParam> expected;
                for (std::int64_t i = 0; i < length; ++i) {
                    const std::int64_t later = lag < 0 ? i - lag : i;
                    const std::int64_t earlier = lag < 0 ? i : i - lag;
                    expected.push_back(earlier < 0 || later >= length
                            ? std::numeric_limits<TypeParam>::quiet_NaN()
                            : DifferenceModel(
                                  cells[static_cast<std::size_t>(later)], cells[static_cast<std::size_t>(earlier)]));
                }
                ExpectCells(Func::Diff<CONTAINER_ARRAY, std::int32_t>(lag), cells, expected, true);
            }
        }
    }
}

TYPED_TEST(ElementTransforms, FindAsTheModelDoes)
{
    if constexpr (!std::is_same_v<TypeParam, DataFrame>) {
        Random random(4);
        for (const std::uint32_t length : LENGTHS) {
            for (const std::uint32_t compared : {1U, 30U, 700U}) {
                for (const auto& [from, in, to] : AllContainers()) {
                    const Surrounded<TypeParam> src(random, LEAD, length, from);
                    const Surrounded<TypeParam> compare(random, LEAD + 2, compared, in);
                    const Surrounded<bool> dst(random, LEAD, length, to);
                    const auto sought = CellsBefore(compare, compared);
                    std::vector<bool> expected;
                    for (const TypeParam& cell : CellsBefore(src, length)) {
                        expected.push_back(std::any_of(sought.begin(), sought.end(),
                            [&cell](const TypeParam& other) { return IsSameKey<TypeParam>(other, cell); }));
                    }
                    const Func::IsIn<CONTAINER_ARRAY> isIn;
                    ASSERT_EQ(isIn.ProcessSeries(src.Window(), compare.Window(), dst.Window()).code, 0);
                    ASSERT_TRUE(Holds(dst, expected)) << length << " in " << compared;
                }
            }
        }
    }
}

/// Two of many keys that have one hash as a set of Key takes it.
template <typename Key, typename Make>
auto KeysThatMeet(Make make)
{
    std::vector<std::pair<std::uint32_t, std::uint32_t>> hashes(1U << 18);
    for (std::uint32_t i = 0; i < hashes.size(); ++i) {
        hashes[i] = {HashOf(Key(make(i))), i};
    }
    std::sort(hashes.begin(), hashes.end());
    const auto pair = std::adjacent_find(
        hashes.begin(), hashes.end(), [](const auto& left, const auto& right) { return left.first == right.first; });
    EXPECT_NE(pair, hashes.end()) << "so many hashes of 32 bits are hardly all different";
    return std::array{make(pair[0].second), make(pair[1].second)};
}

TEST(ElementTransforms, TellKeysApartWhoseHashesMeet)
{
    const auto expectNotIn = [](const SeriesPtr& left, const SeriesPtr& right) {
        const SeriesPtr dst = Column<bool>("dst", {true});
        const Func::IsIn<CONTAINER_ARRAY> isIn;
        EXPECT_EQ(isIn.ProcessSeries(left->GetIterator(), right->GetIterator(), dst->GetIterator()).code, 0);
        EXPECT_THAT(CellsOf<bool>(dst->GetIterator()), ElementsAre(false));
    };
    const auto numbers =
        KeysThatMeet<std::uint64_t>([](std::uint32_t i) { return std::uint64_t{i} * 0x9E3779B97F4A7C15U; });
    expectNotIn(Column<std::uint64_t>("a", {numbers[0]}), Column<std::uint64_t>("b", {numbers[1]}));
    const auto texts = KeysThatMeet<TextKey>([](std::uint32_t i) { return std::to_string(i); });
    expectNotIn(Column<std::string>("a", {texts[0]}), Column<std::string>("b", {texts[1]}));
}

TYPED_TEST(ElementTransforms, InsertRowsAsAVectorDoes)
{
    Random random(6);
    for (const auto& [rowCount, baseCount] : {std::array{0U, 0U}, {0U, 9U}, {9U, 0U}, {1U, 20U}, {21U, 13U}}) {
        for (const auto& [of, into, to] : AllContainers()) {
            for (const std::uint32_t index : {0U, baseCount / 2, baseCount}) {
                const Surrounded<TypeParam> rows(random, LEAD, rowCount, of);
                const Surrounded<TypeParam> base(random, LEAD + 1, baseCount, into);
                const Surrounded<TypeParam> dst(random, LEAD, rowCount + baseCount, to);
                auto expected = CellsBefore(base, baseCount);
                const auto inserted = CellsBefore(rows, rowCount);
                expected.insert(expected.begin() + index, inserted.begin(), inserted.end());
                const Func::InsertRow<CONTAINER_ARRAY, std::uint32_t> insert(index);
                const Cursor left = rows.Window();
                const Cursor right = base.Window();
                EXPECT_EQ(insert.GetDstAttr(left, right).length, rowCount + baseCount);
                ASSERT_EQ(insert.ProcessSeries(left, right, dst.Window()).code, 0);
                ASSERT_TRUE(Holds(dst, expected)) << rowCount << " at " << index << " of " << baseCount;
            }
        }
    }
}

/// A value as a cast makes it of another one; of texts bools take the number.
template <typename T, typename A>
std::optional<T> Converted(const A& value)
{
    if constexpr (std::is_same_v<T, bool> && std::is_same_v<A, std::string>) {
        const auto number = Converted<std::uint64_t>(value);
        return number ? std::optional<bool>(*number != 0) : std::nullopt;
    } else {
        const SeriesPtr from = Column<A>("from", {value});
        const SeriesPtr to = BuildSeries({1, CONTAINER_ARRAY, TYPE_ID_OF<T>}, "to");
        const Func::TypeCast<CONTAINER_ARRAY, MERVO_TESSERA_TYPEID> cast(TYPE_ID_OF<T>);
        const bool isDone = cast.ProcessSeries(from->GetIterator(), to->GetIterator(), true).code == 0;
        return isDone ? std::optional<T>(GetValueFromIterator<T>(to->GetIterator(), 0)) : std::nullopt;
    }
}

/// A value for arguments: texts are numbers, times and words.
template <typename A>
A RandomArgument(Random& random)
{
    if constexpr (std::is_same_v<A, std::string>) {
        constexpr std::array TEXTS{
            "0", "1", "-1", "255.5", "1e3", "abc", "", "99999999999999999999", "1970-01-02", " "};
        return TEXTS[random.Below(TEXTS.size())];
    } else {
        return RandomCell<A>(random);
    }
}

template <typename A, typename T>
void ExpectReplaced(Random& random, std::uint32_t length)
{
    A oldValue = RandomArgument<A>(random);
    A newValue = RandomArgument<A>(random);
    const LogCapture log;
    const auto oldCell = Converted<T>(oldValue);
    const auto newCell = Converted<T>(newValue);
    std::vector<T> cells = RandomCells<T>(random, length);
    for (std::uint32_t i = 0; oldCell && i < length; i += 3) {
        cells[i] = *oldCell;
        if constexpr (std::is_floating_point_v<T>) { // half of the bound, the bound, and twice as much
            cells[i] += std::ldexp(std::numeric_limits<T>::epsilon(), static_cast<int>(random.Below(4)) - 1);
        }
    }
    const Func::Replace<CONTAINER_ARRAY, A&, A&> replace(oldValue, newValue);
    bool isNan = false;
    if constexpr (std::is_floating_point_v<T>) {
        isNan = oldCell && std::isnan(*oldCell);
    }
    if (oldCell && newCell && !isNan) {
        std::vector<T> expected;
        for (const T& cell : cells) {
            expected.push_back(ReplaceModel<T>(cell, *oldCell, *newCell));
        }
        ExpectCells(replace, cells, expected);
    } else {
        const SeriesPtr src = Column<T>("src", cells);
        const SeriesPtr dst = Column<T>("dst", std::vector<T>(length));
        EXPECT_EQ(replace.ProcessSeries(src->GetIterator(), dst->GetIterator(), true).code, isNan ? 5 : 1);
        EXPECT_TRUE(AreSame(CellsOf<T>(dst->GetIterator()), std::vector<T>(length)));
    }
}

TYPED_TEST(ElementTransforms, ReplaceAsTheModelDoesForEveryTypeOfArgument)
{
    Random random(7);
    if constexpr (!std::is_same_v<TypeParam, DataFrame>) {
        for (int round = 0; round < 6; ++round) {
            [&]<std::size_t... I>(std::index_sequence<I...>)
            {
                (ExpectReplaced<ValueTypes::At<I>, TypeParam>(random, LENGTHS[random.Below(4)]), ...);
            }
            (std::make_index_sequence<TESSERA_STRING + 1>{});
        }
    }
}

// ---- Single cases

constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();

TEST(ElementTransforms, GiveWhatOneWouldExpect)
{
    ExpectCells<double>(Func::Round<CONTAINER_ARRAY, std::uint32_t>(0), {2.5, -2.5, -0.3, NO_VALUE}, {3, -3, 0, 0});
    ExpectCells<double>(Func::Round<CONTAINER_ARRAY, std::uint32_t>(2), {1.005, 2.675, 0.125}, {1.0, 2.68, 0.13});
    ExpectCells<double>(Func::Diff<CONTAINER_ARRAY, std::int32_t>(1), {1, 4, 9}, {NO_VALUE, 3, 5}, true);
    ExpectCells<double>(Func::Diff<CONTAINER_ARRAY, std::int32_t>(-1), {1, 4, 9}, {3, 5, NO_VALUE}, true);
    ExpectCells<std::int32_t>(Func::Diff<CONTAINER_ARRAY, std::int32_t>(1), {1, 4, 9}, {0, 3, 5}, true);
    ExpectCells<std::int16_t>(
        Func::Replace<CONTAINER_ARRAY, std::string, std::string>("abc", "70000"), {0, 1}, {4464, 1});
    ExpectCells<std::string>(
        Func::Replace<CONTAINER_ARRAY, double, bool>(1.5, true), {"1.50000e+00", "1.5"}, {"1", "1.5"});
}

// ---- Refusals

struct Refusal {
    const char* name;
    const Func::UnaryBase& functor;
    std::vector<MERVO_TESSERA_TYPEID> types; ///< of the columns that are refused
    ErrorCode code;
    std::vector<std::string> texts;
};

double noValue = NO_VALUE;
std::string huge = "1e400";
std::string blank = " ";
bool yes = true;
const Func::Round<CONTAINER_ARRAY, std::uint32_t> ROUND_TO_TEN(10);
const Func::Round<CONTAINER_ARRAY, std::uint32_t> ROUND_TO_ELEVEN(11);
const Func::Diff<CONTAINER_ARRAY, std::int32_t> DIFF(1);
const Func::Replace<CONTAINER_ARRAY, double&, double&> REPLACE_NAN(noValue, noValue);
const Func::Replace<CONTAINER_ARRAY, std::string&, std::string&> REPLACE_BY_HUGE(blank, huge);
const Func::Replace<CONTAINER_ARRAY, std::string&, std::string&> REPLACE_BLANK(blank, huge);
const Func::Replace<CONTAINER_ARRAY, bool&, bool&> REPLACE_YES(yes, yes);

const Refusal REFUSALS[] = {
    {"RoundOfNoNumbers", ROUND_TO_ELEVEN, {TESSERA_BOOL, TESSERA_STRING, TESSERA_DATETIME, TESSERA_DATAFRAME}, 1, {}},
    {"RoundTooFar", ROUND_TO_ELEVEN, {TESSERA_INT8, TESSERA_UINT64, TESSERA_FLOAT, TESSERA_DOUBLE}, 4,
        {"Exceed the limits of round decimal: 10."}},
    {"DiffOfNoNumbers", DIFF, {TESSERA_BOOL, TESSERA_STRING, TESSERA_DATETIME, TESSERA_DATAFRAME}, 1, {}},
    {"ReplaceNan", REPLACE_NAN, {TESSERA_FLOAT, TESSERA_DOUBLE}, 5,
        {"the data you intend to replace is Nan, please use functor ReplaceNan"}},
    {"ReplaceByTooMuch", REPLACE_BY_HUGE, {TESSERA_FLOAT, TESSERA_DOUBLE}, 1,
        {"typecast from string to arithmetic int has error: 34"}},
    {"ReplaceBlankTime", REPLACE_BLANK, {TESSERA_DATETIME}, 1,
        {"Error on transforming replace Num from string to datetime"}},
    {"ReplaceYesAmongTimes", REPLACE_YES, {TESSERA_DATETIME}, 1,
        {"Error on transforming replace Num from bool to datetime"}},
    {"ReplaceTables", REPLACE_YES, {TESSERA_DATAFRAME}, 1, {}},
};

class Refusals : public testing::TestWithParam<Refusal> {};
INSTANTIATE_TEST_SUITE_P(ElementTransforms, Refusals, testing::ValuesIn(REFUSALS),
    [](const auto& refusal) { return std::string(refusal.param.name); });

TEST_P(Refusals, HaveACodeAndAText)
{
    for (const MERVO_TESSERA_TYPEID type : GetParam().types) {
        const SeriesPtr src = BuildSeries({3, CONTAINER_ARRAY, type}, "src");
        const SeriesPtr dst = BuildSeries({3, CONTAINER_ARRAY, type}, "dst");
        const LogCapture log;
        const Error error = GetParam().functor.ProcessSeries(src->GetIterator(), dst->GetIterator(), true);
        EXPECT_EQ(error.code, GetParam().code) << GetTypeNameById(type);
        EXPECT_EQ(error.message, "Error on calling functor: " + GetParam().functor.GetName());
        EXPECT_EQ(log.Texts(1), GetParam().texts);
        EXPECT_EQ(log.Count(0), 0U);
    }
}

TEST(ElementTransforms, RefuseDestinationsOfOtherShapes)
{
    const SeriesPtr src = Column<double>("src", {1, 2, 3});
    for (const MERVO_TESSERA_TYPEID type : {TESSERA_DOUBLE, TESSERA_INT32}) {
        for (const std::uint32_t length : {2U, 3U}) {
            const SeriesPtr dst = BuildSeries({length, CONTAINER_ARRAY, type}, "dst");
            const auto codeOf = [&](const Func::UnaryBase& functor, bool check) {
                return functor.ProcessSeries(src->GetIterator(), dst->GetIterator(), check).code;
            };
            const LogCapture log;
            const bool fits = type == TESSERA_DOUBLE && length == 3;
            EXPECT_EQ(codeOf(ROUND_TO_TEN, true), fits ? 0 : 21);
            EXPECT_EQ(codeOf(Func::Replace<CONTAINER_ARRAY, int, int>(1, 2), true), fits ? 0 : 21);
            EXPECT_EQ(codeOf(DIFF, true), length != 3 ? 21 : fits ? 0 : 1);
        }
    }
    const SeriesPtr integers = BuildSeries({3, CONTAINER_ARRAY, TESSERA_INT32}, "dst");
    for (const Func::UnaryBase* functor : std::initializer_list<const Func::UnaryBase*>{&ROUND_TO_TEN, &DIFF}) {
        ASSERT_EQ(functor->ProcessSeries(src->GetIterator(), src->GetIterator(), true).code, 0);
        EXPECT_EQ(functor->ProcessSeries(src->GetIterator(), integers->GetIterator(), false).code, 1);
    }
}

TEST(ElementTransforms, OfTwoColumnsRefuseWhatDoesNotFit)
{
    struct Case {
        const Func::BinaryBase& functor;
        SeriesAttr left, right, result;
        ErrorCode code;
        std::vector<std::string> texts; ///< before that of the frame
    };
    const Func::IsIn<CONTAINER_ARRAY> isIn;
    const Func::InsertRow<CONTAINER_ARRAY, std::uint32_t> insert(3);
    const auto of = [](MERVO_TESSERA_TYPEID type, std::uint32_t length) {
        return SeriesAttr{length, CONTAINER_ARRAY, type};
    };
    const SeriesAttr ints = of(TESSERA_INT32, 2);
    const SeriesAttr none = of(TESSERA_INT32, 0);
    const SeriesAttr tables = of(TESSERA_DATAFRAME, 2);
    const SeriesAttr bools = of(TESSERA_BOOL, 2);
    const Case cases[] = {
        {isIn, ints, of(TESSERA_UINT32, 2), bools, 21, {"the src data and compare data are not same type"}},
        {isIn, ints, none, bools, 21, {"the compare data length is invalid"}},
        {isIn, ints, ints, ints, 21, {}},
        {isIn, ints, ints, of(TESSERA_BOOL, 3), 21, {}},
        {isIn, tables, tables, bools, 1, {"the type doesn't support IsIn functor"}},
        {insert, ints, ints, of(TESSERA_INT32, 4), 5, {"index 3 error, rhs->Length() 2"}},
        {insert, bools, bools, of(TESSERA_BOOL, 4), 5, {"index 3 error, rhs->Length() 2"}},
        {insert, ints, ints, of(TESSERA_INT32, 5), 21, {}},
        {insert, ints, bools, of(TESSERA_INT32, 4), 21, {}},
        {insert, ints, ints, of(TESSERA_FLOAT, 4), 21, {}},
    };
    for (const Case& refusal : cases) {
        const SeriesPtr left = BuildSeries(refusal.left, "left");
        const SeriesPtr right = BuildSeries(refusal.right, "right");
        const SeriesPtr result = BuildSeries(refusal.result, "result");
        const LogCapture log;
        const Error error =
            refusal.functor.ProcessSeries(left->GetIterator(), right->GetIterator(), result->GetIterator());
        EXPECT_EQ(error.code, refusal.code);
        std::vector<std::string> texts = log.Texts(1);
        if (refusal.code == 21) {
            ASSERT_FALSE(texts.empty());
            EXPECT_EQ(
                texts.back().find("Functor " + refusal.functor.GetName() + " check param error, lhs [size 2"), 0U);
            texts.pop_back();
        }
        EXPECT_EQ(texts, refusal.texts);
    }
}

TEST(ElementTransforms, FindNothingWithoutAPlaceForIt)
{
    const Cursor nowhere = std::make_unique<Iterator<CONTAINER_ARRAY, bool>>(
        BitPosition(), BitPosition(nullptr, 1), SeriesAttr{1, CONTAINER_ARRAY, TESSERA_BOOL});
    const SeriesPtr texts = Column<std::string>("texts", {"a"});
    const SeriesPtr bools = Column<bool>("bools", {true});
    const Func::IsIn<CONTAINER_ARRAY> isIn;
    const LogCapture log;
    EXPECT_EQ(isIn.ProcessSeries(texts->GetIterator(), texts->GetIterator(), nowhere).code, 1);
    EXPECT_EQ(isIn.ProcessSeries(bools->GetIterator(), bools->GetIterator(), nowhere).code, 1);
    EXPECT_THAT(log.Texts(1), ElementsAre("the dstPtr is nullptr", "the input is nullptr"));
}

// A block that is copied onto itself makes the copy of memory fail; elements are then copied one by one.
TEST(ElementTransforms, InsertRowsElementByElementWhereMemoryOverlaps)
{
    const SeriesPtr column = Column<std::int32_t>("column", {1, 2, 3, 4});
    const SeriesPtr rows = Column<std::int32_t>("rows", {7});
    const auto insert = [&](std::uint32_t index, const Cursor& inserted, const Cursor& base) {
        const Func::InsertRow<CONTAINER_ARRAY, std::uint32_t> functor(index);
        return functor.ProcessSeries(inserted, base, column->GetIterator()).code;
    };
    const LogCapture log;
    EXPECT_EQ(insert(2, rows->GetIterator(), column->GetIterator(0, 3)), 0);
    EXPECT_EQ(insert(0, column->GetIterator(0, 1), Column<std::int32_t>("base", {1, 2, 3})->GetIterator()), 0);
    EXPECT_EQ(insert(0, rows->GetIterator(), column->GetIterator(0, 3)), 0);
    EXPECT_THAT(log.Texts(1),
        ElementsAre("Memory copy failed when copying the first part in InsertRow: 22.",
            "Memory copy failed when copying the second part in InsertRow: 22.",
            "Memory copy failed when copying the third part in InsertRow: 22."));
}

} // namespace
} // namespace MERVO::Tessera
