// Distinct values and repeated rows, held against models that know no hashes.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "tests/functors/pairing.h"
#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Flags = std::vector<std::uint8_t>;
using Positions = std::vector<std::uint32_t>;

constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();

template <typename T>
bool IsSameValue(const T& left, const T& right)
{
    return left == right || (left != left && right != right);
}

// ---- Unique

template <typename T>
class UniqueOf : public testing::Test {
};
using FlatTypes = testing::Types<bool, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
    std::uint32_t, std::int64_t, std::uint64_t, float, double, std::string, DateTime>;
TYPED_TEST_SUITE(UniqueOf, FlatTypes);

// Rows are numbered in blocks of 512. Numbers far apart take a hash, others a place each.
TYPED_TEST(UniqueOf, TellsWhereEachValueComesFirst)
{
    using T = TypeParam;
    Random random(4);
    for (const ContainerID container : BOTH_CONTAINERS) {
        for (const std::uint32_t length : {1U, 2U, 90U, 1300U}) {
            const Surrounded<T> source(random, 3, length, container);
            Positions firsts;
            for (std::uint32_t i = 0; i < length; ++i) {
                if (std::none_of(firsts.begin(), firsts.end(),
                        [&](std::uint32_t first) { return IsSameValue<T>(source.Cell(first), source.Cell(i)); })) {
                    firsts.push_back(i);
                }
            }
            Positions found{99}; // what was there goes
            const Func::Unique<CONTAINER_ARRAY, Positions&> functor(found);
            ASSERT_EQ(functor.ProcessSeries(source.Window()).code, 0);
            ASSERT_EQ(found, firsts);
        }
    }
}

TEST(Unique, MakesATableOfOneColumn)
{
    const DataFrame source = TableOf(Column<double>("a", {2.0, NO_VALUE, 2.0, NO_VALUE, 0.0, -0.0}),
        Column<std::string>("b", {"x", "y", "x", "", "y", "z"}), Column<std::int32_t>("c", {6, 5, 4, 3, 2, 1}));
    const auto unique = [](const DataFrameRef& table, std::uint32_t column) {
        const Handle src(table);
        const Handle dst;
        EXPECT_EQ(MERVO_TSR_Unique(dst.Get(), src.Get(), column), 0);
        return DataFrame(dst.Table());
    };
    const DataFrameRef window = source.Slice({1, 6}, {1, 3});
    EXPECT_TRUE(IsSameTable(unique(source, 0), TableOf(Column<double>("a", {2.0, NO_VALUE, 0.0}))));
    EXPECT_TRUE(IsSameTable(unique(source, 1), TableOf(Column<std::string>("b", {"x", "y", "", "z"}))));
    EXPECT_TRUE(IsSameTable(unique(window, 0), TableOf(Column<std::string>("b", {"y", "x", "", "z"}))));
    EXPECT_TRUE(IsSameTable(unique(window, 1), TableOf(Column<std::int32_t>("c", {5, 4, 3, 2, 1}))));
}

TEST(Unique, RefusesWithCodeAndMessage)
{
    DataFrame failed;
    failed.SetError({9, "an earlier failure"});
    struct Refusal {
        int line;
        DataFrame table;
        std::uint32_t column;
        Error error;
        std::string text;
    };
    const LogCapture outside;
    const Refusal cases[] = {
        {__LINE__, failed, 0, {9, "this is from deepcopy"}, "invalid dataframe 9"},
        {__LINE__, DataFrame(), 0, {7, "there is no cols in dataframe"}, "there is no cols in dataframe"},
        {__LINE__, GetEmptyDataFrame({0, 1}, TESSERA_INT32), 0, {7, "there is no rows in dataframe"},
            "there is no rows in dataframe"},
        {__LINE__, GetEmptyDataFrame({2, 3}, TESSERA_BOOL), 3, {5, "invalid input param colIndex"},
            "invalid input param colIndex 3"},
        {__LINE__, GetEmptyDataFrame({2, 1}, TESSERA_DATAFRAME), 0, {1, "Error on calling functor: Unique"},
            "the type doesn't support Unique functor"},
        {__LINE__, TableOf(Column<bool>("list", {true, true}, CONTAINER_LIST)), 0,
            {21, "Check param failed in functor: ErrorNullaryFunctor"},
            "Trying to get check params of an error functor"},
    };
    for (const Refusal& refused : cases) {
        SCOPED_TRACE(refused.line);
        const LogCapture log;
        const DataFrame result = refused.table.Unique(refused.column);
        EXPECT_EQ(result.GetError().code, refused.error.code);
        EXPECT_EQ(result.GetError().message, refused.error.message);
        EXPECT_EQ(result.ColumnCount(), 0U);
        EXPECT_TRUE(log.Has(1, refused.text));
    }
    const LogCapture log;
    const Handle table(TableOf(Column<bool>("a", {true})));
    const Handle window{DataFrameRef(table.Table())};
    EXPECT_EQ(MERVO_TSR_Unique(window.Get(), table.Get(), 0), 33) << "a window can't change its length";
    EXPECT_EQ(MERVO_TSR_Unique(table.Get(), nullptr, 0), 33);
    EXPECT_TRUE(log.Has(1, "[MERVO_TSR_Unique] Input is nullptr"));
    Positions found;
    const Func::Unique<CONTAINER_ARRAY, Positions&> functor(found);
    EXPECT_EQ(functor.ProcessSeries(BuildSeries({0, CONTAINER_ARRAY, TESSERA_INT8}, {})->GetIterator()).code, 1);
    EXPECT_TRUE(log.Has(1, "the data pointer is nullptr"));
}

// ---- GroupIndex

template <typename T>
bool AreDifferent(const T& left, const T& right)
{
    if constexpr (std::is_floating_point_v<T>) {
        return !(std::fabs(left - right) <= (sizeof(T) == 8 ? T(2.220446049250313e-16) : T(1.1920929e-07)));
    } else {
        return left != right;
    }
}

template <typename T>
class GroupIndexOf : public testing::Test {
};
TYPED_TEST_SUITE(GroupIndexOf, FlatTypes);

TYPED_TEST(GroupIndexOf, FlagsRowsThatDifferFromTheOneBefore)
{
    using T = TypeParam;
    Random random(9);
    for (const ContainerID container : BOTH_CONTAINERS) {
        const Surrounded<T> source(random, 5, 200, container);
        Positions index(200);
        std::generate(index.begin(), index.end(), [&] { return random.Below(200); });
        Flags direct(200);
        direct[7] = 1; // set by another column
        Flags expected = direct;
        Flags expectedByIndex(200);
        for (std::uint32_t i = 1; i < 200; ++i) {
            expected[i] = expected[i] != 0 || AreDifferent<T>(source.Cell(i), source.Cell(i - 1)) ? 1 : 0;
            expectedByIndex[i] = AreDifferent<T>(source.Cell(index[i]), source.Cell(index[i - 1])) ? 1 : 0;
        }
        Flags byIndex(200);
        const Func::GroupIndex<CONTAINER_ARRAY, Flags&> functor(direct);
        EXPECT_EQ(functor.ProcessSeries(source.Window()).code, 0);
        EXPECT_EQ(direct, expected);
        const Func::GroupIndex<CONTAINER_ARRAY, Flags&, Positions&> indirect(byIndex, index);
        EXPECT_EQ(indirect.ProcessSeries(source.Window()).code, 0);
        EXPECT_EQ(byIndex, expectedByIndex);
    }
}

TEST(GroupIndex, RefusesWhatItCannotCompare)
{
    const SeriesPtr column = Column<double>("column", {1, 2, 3});
    Flags flags(4);
    Positions index{0, 3, 1, 2};
    const Func::GroupIndex<CONTAINER_ARRAY, Flags&> direct(flags);
    const Func::GroupIndex<CONTAINER_ARRAY, Flags&, Positions&> indirect(flags, index);
    const LogCapture log;
    EXPECT_EQ(direct.ProcessSeries(column->GetIterator()).code, 4);
    EXPECT_EQ(indirect.ProcessSeries(column->GetIterator()).code, 4);
    EXPECT_TRUE(log.Has(1, "there exists row that exceeds length limit in GroupIndex"));
    EXPECT_EQ(direct.ProcessSeries(Column<DataFrame>("t", SampleValues<DataFrame>(4))->GetIterator()).code, 1);
    index.pop_back();
    EXPECT_THROW(static_cast<void>(indirect.ProcessSeries(column->GetIterator())), std::out_of_range);
    EXPECT_THAT(flags, ElementsAre(0, 0, 0, 0));
}

// ---- Duplicated

/// Sorts rows by one column after the other, and compares each with the one before. That tells what is equal within a
/// tolerance, too.
Flags RepeatsBySorting(const DataFrame& table, const Positions& columns, const std::string& keep)
{
    Positions order(table.RowCount());
    std::iota(order.begin(), order.end(), 0U);
    Flags boundaries(order.size());
    boundaries[0] = 1;
    constexpr auto SORTS = ForEachValueType(
        []<std::size_t N>(std::integral_constant<std::size_t, N>) -> void (*)(const Cursor&, Positions&) {
            using T = ValueTypes::At<N>;
            return [](const Cursor& column, Positions& positions) {
                if constexpr (!std::is_same_v<T, DataFrame>) {
                    const std::vector<T> cells = CellsOf<T>(column);
                    std::stable_sort(positions.begin(), positions.end(),
                        [&](std::uint32_t left, std::uint32_t right) { return cells[left] < cells[right]; });
                }
            };
        });
    constexpr auto COMPARISONS = ForEachValueType(
        []<std::size_t N>(std::integral_constant<std::size_t, N>) -> void (*)(const Cursor&, const Positions&, Flags&) {
            using T = ValueTypes::At<N>;
            return [](const Cursor& column, const Positions& positions, Flags& flags) {
                if constexpr (!std::is_same_v<T, DataFrame>) {
                    const std::vector<T> cells = CellsOf<T>(column);
                    for (std::size_t i = 1; i < flags.size(); ++i) {
                        flags[i] =
                            flags[i] != 0 || AreDifferent<T>(cells[positions[i]], cells[positions[i - 1]]) ? 1 : 0;
                    }
                }
            };
        });
    const auto forEach = [&](auto visit) {
        for (const std::uint32_t k : columns) {
            visit(static_cast<std::size_t>(table.GetColumn(k)->GetTypeId()), table.GetColumn(k)->GetIterator());
        }
    };
    forEach([&](std::size_t type, const Cursor& column) { SORTS[type](column, order); });
    if (keep == "last") {
        std::reverse(order.begin(), order.end());
    }
    forEach([&](std::size_t type, const Cursor& column) { COMPARISONS[type](column, order, boundaries); });
    Flags marks(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        const bool isFollowed = i + 1 < order.size() && boundaries[i + 1] == 0;
        marks[order[i]] = boundaries[i] == 0 || (keep == "false" && isFollowed) ? 1 : 0;
    }
    return marks;
}

/// Columns of few different values, of every type; some numbers are so far apart that they fill a key.
DataFrame TableOfFewValues(Random& random, std::uint32_t rows)
{
    DataFrame::Columns columns;
    const auto add = [&]<typename T>(std::type_identity<T>) {
        const std::vector<T> values = RandomCells<T>(random, 3);
        std::vector<T> cells;
        for (std::uint32_t i = 0; i < rows; ++i) {
            cells.push_back(values[random.Below(values.size())]);
        }
        columns.push_back(Column<T>("c" + std::to_string(columns.size()), cells));
    };
    [&]<std::size_t... I>(std::index_sequence<I...>) { (add(std::type_identity<ValueTypes::At<I>>{}), ...); }
    (std::make_index_sequence<TESSERA_DATAFRAME>{});
    columns.push_back(Column<std::int8_t>("same", std::vector<std::int8_t>(rows, 1))); // takes no part of a key
    return DataFrame(std::move(columns));
}

TEST(Duplicated, MarksWhatAModelMarks)
{
    Random random(12);
    const std::vector<Positions> subsets{{5}, {11}, {9}, {10, 0}, {0, 1}, {11, 12}, {7, 8}, {7, 8, 5, 11, 12, 6},
        {11, 8, 7}, {9, 10, 11}, {5, 5}, {13, 7}, {8, 13}, {}};
    for (int round = 0; round < 10; ++round) {
        for (const std::uint32_t rows : {1U, 40U, 700U}) {
            const DataFrame table = TableOfFewValues(random, rows);
            for (const Positions& subset : subsets) {
                Positions columns = subset;
                if (columns.empty()) {
                    columns.resize(table.ColumnCount());
                    std::iota(columns.begin(), columns.end(), 0U);
                }
                for (const std::string keep : {"first", "last", "false"}) {
                    const Flags expected = RepeatsBySorting(table, columns, keep);
                    const DataFrame marks = table.Duplicated(subset, keep);
                    ASSERT_EQ(marks.Type(), TESSERA_BOOL);
                    EXPECT_THAT(marks.GetColumnName(), ElementsAre("col_0"));
                    const std::vector<bool> found = marks.To1DVector<bool>();
                    ASSERT_TRUE(std::equal(found.begin(), found.end(), expected.begin(), expected.end()))
                        << "by " << testing::PrintToString(subset) << ", keep " << keep << ", " << rows << " rows";
                }
            }
        }
    }
}

TEST(Duplicated, LeavesNamesAsTheyAre)
{
    DataFrame table = TableOf(Column<bool>("a", {true, true}), Column<float>("a", {1, 1}));
    EXPECT_EQ(table.Duplicated({1, 0}, "first").GetError().code, 0);
    EXPECT_EQ(table.GetColumn(0)->GetName(), "a");
    EXPECT_EQ(table.GetColumn(1)->GetName(), "a");
}

TEST(Duplicated, DropsWhatItMarks)
{
    const DataFrame source = TableOf(Column<std::int32_t>("a", {1, 2, 1, 3, 2}), Column<double>("b", {0, 1, 2, 3, 4}));
    const std::pair<const char*, std::vector<double>> cases[] = {
        {"first", {0, 1, 3}}, {"last", {2, 3, 4}}, {"false", {3}}};
    for (const auto& [keep, expected] : cases) {
        const DataFrame dropped = source.DropDuplicatesOutplace({0}, keep);
        EXPECT_EQ(CellsOf<double>(dropped.GetColumn(1)->GetIterator()), expected);
        DataFrame table = source;
        EXPECT_EQ(table.DropDuplicatesInplace({0}, keep), 0);
        EXPECT_TRUE(IsSameTable(table, dropped));
    }
    EXPECT_EQ(source.DropDuplicatesOutplace({}, "false").RowCount(), 5U);
    DataFrame columns = source;
    EXPECT_THAT(DataFrame::DropDuplicatesSubSet(columns, "first"), ElementsAre(0, 0, 0, 0, 0));
    DataFrame none;
    EXPECT_TRUE(DataFrame::DropDuplicatesSubSet(none, "first").empty());
}

TEST(Duplicated, RefusesWithCodeAndMessage)
{
    DataFrame failed;
    failed.SetError({9, "an earlier failure"});
    const DataFrame numbers = TableOf(Column<double>("a", {1, 1}));
    const DataFrame nested = GetEmptyDataFrame({2, 1}, TESSERA_DATAFRAME);
    const DataFrame list = TableOf(Column<bool>("list", {true, true}, CONTAINER_LIST));
    struct Refusal {
        int line;
        const DataFrame& table;
        Positions subset;
        const char* keep;
        Error error;
        const char* text; ///< null where nothing but the error is told
    };
    const Refusal cases[] = {
        {__LINE__, failed, {}, "first", {9, "an earlier failure"}, "Invalid dataframe, error code is 9"},
        {__LINE__, DataFrame(), {}, "first", {7, "empty dataframe"}, "empty dataframe"},
        {__LINE__, numbers, {}, "none", {5, "Invalid keep"}, "Invalid keep"},
        {__LINE__, numbers, {0, 1}, "last", {4, "Index out of max columns number"}, nullptr},
        {__LINE__, nested, {}, "last", {1, "Error on calling functor: SortIndex"}, nullptr},
        {__LINE__, list, {}, "last", {18, "dst container type cannot be determinated"}, nullptr},
        {__LINE__, list, {0}, "last", {21, "Check param failed in functor: ErrorUnaryFunctor"}, nullptr},
    };
    for (const Refusal& refused : cases) {
        SCOPED_TRACE(refused.line);
        const LogCapture log;
        const DataFrame marks = refused.table.Duplicated(refused.subset, refused.keep);
        EXPECT_EQ(marks.GetError().code, refused.error.code);
        EXPECT_EQ(marks.GetError().message, refused.error.message);
        EXPECT_TRUE(refused.text == nullptr || log.Texts(1).front() == refused.text);
        EXPECT_EQ(refused.table.GetError().code, refused.table.ColumnCount() == 0 ? refused.table.GetError().code : 0);
        DataFrame table;
        table.ShallowCopy(refused.table);
        EXPECT_EQ(table.DropDuplicatesInplace(refused.subset, refused.keep), refused.error.code);
        EXPECT_TRUE(
            log.Has(1, "invalid dataframe while calling DropDuplicatesInplace: " + std::to_string(refused.error.code)));
        EXPECT_EQ(
            refused.table.DropDuplicatesOutplace(refused.subset, refused.keep).GetError().code, refused.error.code);
    }
}

} // namespace
} // namespace MERVO::Tessera
