// Sorting by functor, by table and by flat call, held against std::stable_sort.

#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>
#include <set>

#include "tessera/operations/stable_order.h"
#include "tests/functors/pairing.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Positions = std::vector<std::uint32_t>;

// ---- Cells that take different ways through a sort

/// Texts that differ early, late, or by their length; some only by zero bytes at their end.
std::string RandomText(Random& random, std::uint32_t kind)
{
    switch (kind) {
    case 0:
        return RandomCell<std::string>(random);
    case 1:
        return "all of them begin alike " + std::to_string(random.Below(300));
    case 2:
        return std::string(random.Below(900), 'a') + std::string(random.Below(3), '\0'); // many keys deep
    case 3: {
        std::string text;
        for (std::uint32_t i = random.Below(12); i != 0; --i) {
            text += static_cast<char>(random.Below(256));
        }
        return text;
    }
    default:
        return std::string(random.Below(2) == 0 ? "few" : "few of them, and long ones");
    }
}

/// Any cells; cells close together; few different ones; cells in order; and without NaN, numbers far apart.
template <typename T>
T RandomCellOf(Random& random, std::uint32_t kind, std::uint32_t i)
{
    if constexpr (std::is_same_v<T, std::string>) {
        return RandomText(random, kind);
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return DateTime(RandomCellOf<std::int32_t>(random, kind, i));
    } else if constexpr (std::is_same_v<T, bool>) {
        return kind == 3 ? i > 40 : random.Below(2) == 0;
    } else {
        switch (kind) {
        case 0:
            return RandomCell<T>(random);
        case 1:
            return static_cast<T>(T{77} + static_cast<T>(random.Below(100)) / T{64});
        case 2:
            return static_cast<T>(
                static_cast<T>(random.Below(5)) * static_cast<T>(random.Below(2) == 0 ? 1 : -1)); // -0.0 too
        case 3:
            return static_cast<T>(i / 3);
        default:
            return std::bit_cast<T>(static_cast<std::conditional_t<sizeof(T) == 8, std::uint64_t,
                    std::conditional_t<sizeof(T) == 4, std::uint32_t,
                        std::conditional_t<sizeof(T) == 2, std::uint16_t, std::uint8_t>>>>(
                random.Next() & (std::is_floating_point_v<T> ? 0xBFEFFFFFBF7FFFFFU : ~std::uint64_t{0})));
        }
    }
}
constexpr std::uint32_t KINDS = 5;

template <typename T>
std::vector<T> CellsOfKind(Random& random, std::uint32_t kind, std::uint32_t count)
{
    std::vector<T> cells;
    for (std::uint32_t i = 0; i < count; ++i) {
        cells.push_back(RandomCellOf<T>(random, kind, i));
    }
    return cells;
}

/// As rows come: each once; or any of them, any number of times.
Positions RandomPositions(Random& random, bool isAny, std::uint32_t count)
{
    Positions positions(count);
    std::iota(positions.begin(), positions.end(), 0U);
    for (std::uint32_t i = 0; isAny && i < count; ++i) {
        positions[i] = random.Below(count);
    }
    return positions;
}

template <typename T>
Positions Sorted(const std::vector<T>& cells, Positions positions, bool ascending)
{
    std::stable_sort(positions.begin(), positions.end(), [&](std::uint32_t left, std::uint32_t right) {
        return ascending ? cells[left] < cells[right] : cells[left] > cells[right];
    });
    return positions;
}

/// Equal ones together, in the order of their first appearance; NaN is equal to nothing.
template <typename T>
Positions Grouped(const std::vector<T>& cells, const Positions& positions)
{
    Positions firsts(cells.size());
    Positions ordinals(positions.size());
    std::iota(ordinals.begin(), ordinals.end(), 0U);
    for (std::uint32_t i = 0; i < positions.size(); ++i) {
        const auto first = std::find_if(positions.begin(), positions.begin() + i,
            [&](std::uint32_t other) { return cells[other] == cells[positions[i]]; });
        firsts[i] = static_cast<std::uint32_t>(first - positions.begin());
    }
    std::stable_sort(ordinals.begin(), ordinals.end(),
        [&](std::uint32_t left, std::uint32_t right) { return firsts[left] < firsts[right]; });
    Positions grouped;
    for (const std::uint32_t ordinal : ordinals) {
        grouped.push_back(positions[ordinal]);
    }
    return grouped;
}

template <typename T>
Positions RunSortIndex(const Cursor& column, Positions positions, bool ascending, bool sorted)
{
    const Func::SortIndex<CONTAINER_ARRAY, Positions&, bool&, bool&> functor(positions, ascending, sorted);
    EXPECT_EQ(functor.ProcessSeries(column).code, 0);
    return positions;
}

/// A column of some cells, behind three others.
template <typename T>
SeriesPtr ColumnBehind(const std::vector<T>& cells, ContainerID container)
{
    std::vector<T> all(3);
    all.insert(all.end(), cells.begin(), cells.end());
    return Column<T>("column", all, container);
}

template <typename T>
class OrderOf : public testing::Test {
protected:
    Random random{3};
    const LogCapture log;
};
using OrderedTypes = testing::Types<bool, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
    std::uint32_t, std::int64_t, std::uint64_t, float, double, std::string, DateTime>;
TYPED_TEST_SUITE(OrderOf, OrderedTypes);

// Lengths around those from which on there are other digits, and from which on there are digits at all.
TYPED_TEST(OrderOf, IsThatOfTheStandardStableSort)
{
    using T = TypeParam;
    for (std::uint32_t kind = 0; kind < KINDS; ++kind) {
        for (const std::uint32_t length : {0U, 1U, 2U, 24U, 25U, 300U, 5000U}) {
            const std::vector<T> cells = CellsOfKind<T>(this->random, kind, length);
            for (const ContainerID container : BOTH_CONTAINERS) {
                if (container == CONTAINER_LIST && length > 300) {
                    continue; // a list fills slowly
                }
                const SeriesPtr column = ColumnBehind(cells, container);
                const Cursor window = column->GetIterator(3, length + 3);
                for (const bool isAny : {false, true}) {
                    const Positions positions = RandomPositions(this->random, isAny, length);
                    for (const bool ascending : {true, false}) {
                        ASSERT_EQ(
                            RunSortIndex<T>(window, positions, ascending, true), Sorted(cells, positions, ascending))
                            << length << " of kind " << kind << ", ascending " << ascending << ", any " << isAny;
                    }
                }
            }
        }
    }
}

/// Sorts in little room, with flags where keys can have them, and without.
template <typename T>
void ExpectOrder(const std::vector<T>& cells, const Positions& unsorted, bool ascending)
{
    const SeriesPtr column = Column<T>("column", cells);
    const std::unique_ptr<SortKeys> keys = KeysOf(column->GetIterator());
    const Positions expected = Sorted(cells, unsorted, ascending);
    std::vector<std::uint8_t> flags(keys->MayHaveNan() ? 0 : cells.size());
    Positions positions = unsorted;
    OrderStably(*keys, ascending, positions, flags, SortRoom::SCARCE);
    ASSERT_EQ(positions, expected);
    for (std::size_t i = 1; i < flags.size(); ++i) {
        ASSERT_EQ(flags[i], cells[expected[i]] != cells[expected[i - 1]] ? 1 : 0) << i;
    }
    positions = unsorted;
    OrderStably(*keys, ascending, positions, {}, SortRoom::SCARCE);
    ASSERT_EQ(positions, expected);
}

constexpr std::uint32_t MANY = 9001; // enough to be sorted in parts, and of no even share for each

TYPED_TEST(OrderOf, IsTheSameInLittleRoom)
{
    using T = TypeParam;
    for (std::uint32_t kind = 0; kind < KINDS; ++kind) {
        const std::vector<T> cells = CellsOfKind<T>(this->random, kind, MANY);
        for (const bool ascending : {true, false}) {
            SCOPED_TRACE(testing::Message() << "kind " << kind << ", ascending " << ascending);
            ExpectOrder(cells, RandomPositions(this->random, ascending, MANY), ascending);
        }
    }
}

/// Cells of which parts are too large, empty, divided once more, or sorted by what follows from a later byte on.
template <typename MakeCell>
auto UnevenCells(MakeCell makeCell)
{
    Random random(23);
    std::vector<decltype(makeCell(random, 0U))> cells;
    for (std::uint32_t i = 0; i < MANY; ++i) {
        cells.push_back(makeCell(random, i));
    }
    return cells;
}

std::int64_t HalfTheSame(Random& random, std::uint32_t)
{
    return random.Below(2) == 0 ? -5 : static_cast<std::int64_t>(random.Next());
}

double OfFewMagnitudes(Random& random, std::uint32_t)
{
    return (static_cast<double>(random.Below(2000000)) - 1000000) * 0.37; // and 0, far from all others
}

std::string InLargeRuns(Random& random, std::uint32_t i)
{
    return std::string(9, static_cast<char>('a' + i / 4000)) + std::to_string(random.Below(2000));
}

TEST(OrderInLittleRoom, HoldsForUnevenKeys)
{
    Positions unsorted(MANY);
    std::iota(unsorted.begin(), unsorted.end(), 0U);
    for (const bool ascending : {true, false}) {
        ExpectOrder(UnevenCells(&HalfTheSame), unsorted, ascending);
        ExpectOrder(UnevenCells(&OfFewMagnitudes), unsorted, ascending);
        ExpectOrder(UnevenCells(&InLargeRuns), unsorted, ascending);
    }
}

TEST(OrderInLittleRoom, HoldsWithoutMemory)
{
    const auto cells = UnevenCells(&HalfTheSame);
    const SeriesPtr column = Column<std::int64_t>("column", cells);
    const std::unique_ptr<SortKeys> keys = KeysOf(column->GetIterator());
    Positions unsorted(MANY);
    std::iota(unsorted.begin(), unsorted.end(), 0U);
    const Positions expected = Sorted(cells, unsorted, true);
    for (AllocationRounds rounds; rounds.Next();) {
        Positions positions = unsorted;
        std::vector<std::uint8_t> flags(MANY);
        {
            const FailingAllocation failing(rounds.Spared());
            OrderStably(*keys, true, positions, flags, SortRoom::SCARCE);
        }
        ASSERT_EQ(positions, expected) << "after " << rounds.Spared();
        const auto values = std::set<std::int64_t>(cells.begin(), cells.end()).size();
        ASSERT_EQ(std::count(flags.begin(), flags.end(), 1), static_cast<std::ptrdiff_t>(values - 1));
    }
}

// Bools, stamps and lists are sorted, whatever is asked.
TYPED_TEST(OrderOf, BringsEqualOnesTogetherWhereNoOrderIsAsked)
{
    using T = TypeParam;
    for (std::uint32_t kind = 0; kind < KINDS; ++kind) {
        const std::vector<T> cells = CellsOfKind<T>(this->random, kind, 700);
        const Positions positions = RandomPositions(this->random, true, 700);
        for (const ContainerID container : BOTH_CONTAINERS) {
            const SeriesPtr column = ColumnBehind(cells, container);
            const bool isSorted = container == CONTAINER_LIST || std::is_same_v<T, bool> || std::is_same_v<T, DateTime>;
            ASSERT_EQ(RunSortIndex<T>(column->GetIterator(3, 703), positions, false, false),
                isSorted ? Sorted(cells, positions, false) : Grouped(cells, positions))
                << "kind " << kind;
        }
    }
}

TYPED_TEST(OrderOf, IsWrittenOutForNumbersAndBools)
{
    using T = TypeParam;
    for (const ContainerID container : BOTH_CONTAINERS) {
        for (std::uint32_t kind = 0; kind < KINDS; ++kind) {
            const std::vector<T> cells = CellsOfKind<T>(this->random, kind, 200);
            const SeriesPtr source = ColumnBehind(cells, container);
            const SeriesPtr result = ColumnBehind(std::vector<T>(200), container);
            for (bool ascending : {true, false}) {
                const Func::SortValue<CONTAINER_ARRAY, bool&> functor(ascending);
                const ErrorCode code =
                    functor.ProcessSeries(source->GetIterator(3, 203), result->GetIterator(3, 203), true).code;
                ASSERT_EQ(code, Arithmetic<T> ? 0 : 1);
                const Positions order = Sorted(cells, RandomPositions(this->random, false, 200), ascending);
                const std::vector<T> sorted = CellsOf<T>(result->GetIterator());
                for (std::uint32_t i = 0; Arithmetic<T> && i < order.size(); ++i) {
                    ASSERT_TRUE(HasSameBits<T>(sorted[i + 3], cells[order[i]])) << i << " of kind " << kind;
                }
            }
        }
    }
    EXPECT_EQ(this->log.Count(), 0U);
}

// ---- Tables

/// A table of all value types, a column that numbers the rows, and one of texts that all lie within their cells.
DataFrame RandomTable(std::uint64_t seed, std::uint32_t rows)
{
    Random random(seed);
    DataFrame::Columns columns;
    const auto add = [&]<typename T>(std::type_identity<T>) {
        std::vector<T> cells = RandomCells<T>(random, rows);
        if constexpr (std::is_same_v<T, std::string>) {
            cells = CellsOfKind<T>(random, 4, rows);
        }
        columns.push_back(Column<T>(GetTypeNameById(TYPE_ID_OF<T>), cells));
    };
    [&]<std::size_t... I>(std::index_sequence<I...>) { (add(std::type_identity<ValueTypes::At<I>>{}), ...); }
    (std::make_index_sequence<TESSERA_TYPE_END>{});
    columns.push_back(Column<std::uint32_t>("row", RandomPositions(random, false, rows)));
    std::vector<std::string> shortTexts(rows);
    for (std::uint32_t i = 0; i < rows; ++i) {
        shortTexts[i] = std::to_string(i * 0x9E3779B97F4A7C15U).substr(0, i % 16) + std::string(i % 16 == 3, '\0');
    }
    columns.push_back(Column<std::string>("short", shortTexts));
    return DataFrame(std::move(columns));
}

/// The order of rows by some columns, the last of them first: each pass keeps what is equal in it.
Positions OrderOfRows(const DataFrame& table, const Positions& keys, bool ascending)
{
    constexpr auto SORTS = ForEachValueType([](auto number) -> Positions (*)(const Cursor&, const Positions&, bool) {
        using T = ValueTypes::At<number()>;
        return [](const Cursor& column, const Positions& positions, bool isAscending) {
            if constexpr (std::is_same_v<T, DataFrame>) {
                return positions;
            } else {
                return Sorted(CellsOf<T>(column), positions, isAscending);
            }
        };
    });
    Positions order(table.RowCount());
    std::iota(order.begin(), order.end(), 0U);
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        const Cursor column = table.GetColumn(*key)->GetIterator();
        order = SORTS[static_cast<std::size_t>(column->GetAttr().typeId)](column, order, ascending);
    }
    return order;
}

const Positions KEY_LISTS[] = {{0}, {11}, {9, 10}, {0, 2}, {0, 11, 12}, {3, 0, 14}, {10, 11, 0, 1}};

TEST(Tables, AreSortedByTheirKeysAsTablesAndAsWindows)
{
    const LogCapture log;
    for (const std::uint32_t rows : {1U, 60U, 400U}) {
        for (const Positions& keys : KEY_LISTS) {
            for (const bool ascending : {true, false}) {
                const DataFrame source = RandomTable(keys.size() + rows, rows);
                const DataFrame expected = source.SelectRow(OrderOfRows(source, keys, ascending));
                DataFrame table = source;
                ASSERT_EQ(table.Sort(keys, ascending), 0);
                ASSERT_TRUE(IsSameTable(table, expected)) << "by " << testing::PrintToString(keys);

                DataFrame around = source;
                DataFrameRef window = around.Slice({0, rows}, {0, around.ColumnCount()});
                const Cursor held = around.GetColumn(5)->GetIterator();
                ASSERT_EQ(window.Sort(keys, ascending), 0);
                ASSERT_TRUE(IsSameTable(around, expected));
                EXPECT_EQ(CellsOf<std::int32_t>(held), CellsOf<std::int32_t>(expected.GetColumn(5)->GetIterator()))
                    << "the window has cells of its own";
            }
        }
    }
}

TEST(Tables, OfWhichAPartIsSortedKeepTheRest)
{
    DataFrame table = TableOf(Column<std::int32_t>("a", {9, 3, 1, 2, 0}), Column<std::int32_t>("b", {0, 1, 2, 3, 4}),
        Column<std::string>("c", {"v", "w", "x", "y", "z"}));
    CursorAs<CONTAINER_ARRAY, std::string>(table.GetColumn(2)->GetIterator()).mHead[1].reserve(100);
    DataFrameRef window = table.Slice({1, 4}, {1, 3});
    EXPECT_EQ(window.Sort({"b"}, false), 0);
    const LogCapture log;
    EXPECT_EQ(window.Sort({"a"}, true), 4) << "in front of the window";
    EXPECT_THAT(CellsOf<std::int32_t>(table.GetColumn(0)->GetIterator()), ElementsAre(9, 3, 1, 2, 0));
    EXPECT_THAT(CellsOf<std::int32_t>(table.GetColumn(1)->GetIterator()), ElementsAre(0, 3, 2, 1, 4));
    EXPECT_THAT(CellsOf<std::string>(table.GetColumn(2)->GetIterator()), ElementsAre("v", "y", "x", "w", "z"));

    // A table that is a window itself keeps no more than the window.
    DataFrame cut;
    cut.ShallowCopy(table.Slice({0, 3}, {0, 2}));
    EXPECT_EQ(cut.Sort({0}, true), 0);
    EXPECT_THAT(cut.To1DVector<std::int32_t>(), ElementsAre(1, 2, 3, 3, 9, 0));
}

TEST(Tables, AreSortedAgainWithoutAChange)
{
    const LogCapture log;
    DataFrame table = RandomTable(8, 40);
    ASSERT_EQ(table.Sort({11, 5}, true), 0);
    const DataFrame once = table;
    ASSERT_EQ(table.Sort({"string", "int32"}, true), 0);
    EXPECT_TRUE(IsSameTable(table, once));
}

// Whichever allocation fails, the rows are in the old order in all columns, or in the new one.
TEST(Tables, AreSortedWhollyOrNotAtAll)
{
    const LogCapture log;
    const DataFrame source = RandomTable(6, 70);
    const DataFrame expected = source.SelectRow(OrderOfRows(source, {3, 11}, true));
    const Positions keys{3, 11};
    bool didSortInPlace = false;
    for (AllocationRounds rounds; rounds.Next();) {
        DataFrame table = source;
        ErrorCode code = 0;
        {
            const FailingAllocation failing(rounds.Spared());
            code = table.Sort(keys, true);
            didSortInPlace = didSortInPlace || (code == 0 && FailingAllocation::HasFailed());
        }
        ASSERT_TRUE(code == 0 || code == 3 || code == 5 || code == 21) << code; // 5 where no cursor could be had
        DataFrame wanted = code == 0 ? expected : source;
        wanted.SetError(table.GetError());
        ASSERT_TRUE(IsSameTable(table, wanted)) << "after " << rounds.Spared();
    }
    EXPECT_TRUE(didSortInPlace);
}

TEST(Sorting, RefusesWithCodeAndMessage)
{
    struct Refusal {
        int line;
        DataFrame table;
        Positions keys;
        ErrorCode code;
        std::string text;
    };
    const auto numbers = [] { return Column<double>("numbers", {3, 1, 2}); };
    const auto nested = [] { return Column<DataFrame>("tables", SampleValues<DataFrame>(3)); };
    const auto list = [] { return Column<double>("list", {3, 1, 2}, CONTAINER_LIST); };
    DataFrame failed;
    failed.ShallowCopy(TableOf(numbers()));
    failed.SetError({9, "an earlier failure"});
    const LogCapture outside;
    const std::string sortFailed = "Error happens when performing sortIndex functor";
    const std::string moveFailed = "Error happens when performing Reorder functor";
    Refusal cases[] = {
        {__LINE__, TableOf(numbers()), {}, 5, "the input indexlist is an empty vector"},
        {__LINE__, TableOf(numbers()), {1}, 4, "the indexlist contains index which is out of range"},
        {__LINE__, TableOf(numbers()), {4294967295U, 0}, 4, "the indexlist contains index which is out of range"},
        {__LINE__, TableOf(numbers(), nested()), {0, 1}, 1, sortFailed},
        {__LINE__, TableOf(numbers(), list()), {0, 1}, 21, sortFailed},
        {__LINE__, TableOf(numbers(), list()), {0}, 2, moveFailed},
        {__LINE__, std::move(failed), {0}, 9, moveFailed},
        {__LINE__, DataFrame(), {0}, 4, "the indexlist contains index which is out of range"},
    };
    for (Refusal& refused : cases) {
        SCOPED_TRACE(refused.line);
        const std::vector<double> before = refused.table.ColumnCount() == 0
            ? std::vector<double>()
            : CellsOf<double>(refused.table.GetColumn(0)->GetIterator());
        const LogCapture log;
        EXPECT_EQ(refused.table.Sort(refused.keys, true), refused.code);
        EXPECT_EQ(log.Texts(1).back(), refused.text);
        EXPECT_TRUE(before.empty() || before == CellsOf<double>(refused.table.GetColumn(0)->GetIterator()));
    }
    const LogCapture log;
    EXPECT_EQ(TableOf(numbers()).Sort({"numbers", "Numbers"}, true), 5);
    EXPECT_EQ(log.Texts(1).back(), "Error on transformming string list to index list in Sort.");
    EXPECT_EQ(GetEmptyDataFrame({0, 2}, TESSERA_STRING).Sort({0, 1}, true), 0) << "no rows";
}

TEST(Sorting, RefusesPositionsBeyondTheColumn)
{
    const SeriesPtr column = Column<std::int16_t>("column", {3, 1, 2});
    Positions positions{0, 3, 1};
    const LogCapture log;
    const Func::SortIndex<CONTAINER_ARRAY, Positions&, bool> functor(positions, true);
    EXPECT_EQ(functor.ProcessSeries(column->GetIterator()).code, 4);
    EXPECT_THAT(positions, ElementsAre(0, 3, 1));
    EXPECT_EQ(functor.GetName(), "SortIndex");
    EXPECT_TRUE(log.Has(1, "there exists index that exceeds length limit"));
}

// ---- Reorder

template <typename T>
class ReorderOf : public testing::Test {
};
TYPED_TEST_SUITE(ReorderOf, AllValueTypes);

TYPED_TEST(ReorderOf, TakesCellsByPosition)
{
    using T = TypeParam;
    Random random(2);
    const Func::Reorder<CONTAINER_ARRAY> functor;
    for (const Containers& containers : AllContainers()) {
        const Surrounded<T> source(random, 3, 50, containers[1]);
        const Positions positions = RandomPositions(random, true, 50);
        const SeriesPtr list = Column<std::uint32_t>("list", positions, containers[0]);
        const SeriesAttr attr = functor.GetDstAttr(list->GetIterator(), source.Window());
        EXPECT_EQ(attr.containerId, containers[0]);
        const SeriesPtr result = BuildSeries({attr.length, containers[2], attr.typeId}, {});
        ASSERT_EQ(functor.ProcessSeries(list->GetIterator(), source.Window(), result->GetIterator()).code, 0);
        const std::vector<T> cells = CellsOf<T>(result->GetIterator());
        ASSERT_EQ(cells.size(), positions.size());
        for (std::uint32_t i = 0; i < cells.size(); ++i) {
            ASSERT_TRUE(HasSameBits<T>(cells[i], source.Cell(positions[i])));
        }
    }
}

/// The code of a flat reordering of five numbers by a column of positions; 0 has been told by its cells.
ErrorCode ReorderBy(const SeriesPtr& positions, const std::vector<double>& cells, const std::vector<double>& expected)
{
    DataFrame::Columns list;
    list.push_back(SeriesPtr(positions.get(), {false}));
    const Handle order(DataFrame(std::move(list)));
    const Handle source(TableOf(Column<double>("a", cells), Column<double>("b", cells)));
    const Handle result;
    const ErrorCode code = MERVO_TSR_Reorder(result.Get(), order.Get(), source.Get());
    for (unsigned int k = 0; k < 2 && code == 0; ++k) {
        EXPECT_EQ(CellsOf<double>(result.Table().GetColumn(k)->GetIterator()), expected);
    }
    return code;
}

TEST(FlatReorder, TakesRowsByPositionOrRefuses)
{
    EXPECT_EQ(ReorderBy(Column<std::uint32_t>("p", {2, 2, 0}), {5, 6, 7}, {7, 7, 5}), 0);
    const LogCapture log;
    EXPECT_EQ(ReorderBy(Column<std::uint32_t>("p", {2, 3, 0}), {5, 6, 7}, {}), 4);
    EXPECT_TRUE(log.Has(1, "there exists position that exceeds length limit in Reorder"));
    EXPECT_EQ(ReorderBy(Column<std::int32_t>("p", {2, 1, 0}), {5, 6, 7}, {}), 21);
    EXPECT_TRUE(log.Has(1, "the data type of indexlist should be uint32"));
    EXPECT_EQ(ReorderBy(Column<std::uint32_t>("p", {}), {5, 6, 7}, {}), 21);
    EXPECT_EQ(ReorderBy(Column<std::uint32_t>("p", {0}), {}, {}), 21);
    const Handle good(TableOf(Column<double>("a", {1, 2})));
    EXPECT_EQ(MERVO_TSR_Reorder(good.Get(), nullptr, good.Get()), 33);
    EXPECT_TRUE(log.Has(1, "[MERVO_TSR_Reorder] Input is nullptr"));
    EXPECT_EQ(MERVO_TSR_SortValue(nullptr, good.Get(), true), 33);
    EXPECT_TRUE(log.Has(1, "[MERVO_TSR_SortValue] Input is nullptr"));
}

TEST(FlatSortValue, SortsEachColumnForItself)
{
    const Handle source(TableOf(Column<std::int32_t>("a", {5, -1, 3}), Column<double>("b", {.5, 2.5, 1.5})));
    EXPECT_EQ(MERVO_TSR_SortValue(source.Get(), source.Get(), false), 0);
    EXPECT_TRUE(IsSameTable(
        source.Table(), TableOf(Column<std::int32_t>("a", {5, 3, -1}), Column<double>("b", {2.5, 1.5, .5}))));
    const Handle window{source.Table().Slice({0, 2}, {0, 2})};
    EXPECT_EQ(MERVO_TSR_SortValue(window.Get(), window.Get(), true), 0);
    EXPECT_TRUE(IsSameTable(
        source.Table(), TableOf(Column<std::int32_t>("a", {3, 5, -1}), Column<double>("b", {1.5, 2.5, .5}))));
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_SortValue(Handle().Get(), Handle(TableOf(Column<std::string>("s", {"x"}))).Get(), true), 1);
}

} // namespace
} // namespace MERVO::Tessera
