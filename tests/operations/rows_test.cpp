// Selecting and dropping rows, by functor, by table and by flat call.

#include <functional>
#include <memory>
#include <numeric>
#include <set>

#include <gmock/gmock.h>

#include "tests/functors/pairing.h"
#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Positions = std::vector<std::uint32_t>;

/// Bools of which a percentage is true.
std::vector<bool> Marks(Random& random, std::uint32_t count, std::uint32_t percentage)
{
    std::vector<bool> marks(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        marks[i] = random.Below(100) < percentage;
    }
    return marks;
}

// ---- Functors against models

template <typename T>
class RowsOf : public testing::Test {
protected:
    /// Words of marks are 64 long; buffers of bits 512.
    static Positions Lengths()
    {
        return std::is_same_v<T, DataFrame> ? Positions{0, 1, 66} : Positions{0, 1, 64, 131, 1037};
    }

    /// Runs a functor into a window of a column, and holds all of that against what it should be.
    template <typename Run>
    void Check(const std::vector<T>& expected, ContainerID container, Run run)
    {
        const auto length = static_cast<std::uint32_t>(expected.size());
        const std::uint32_t lead = random.Below(9);
        const Surrounded<T> destination(random, lead, length, container);
        const Error outcome = run(destination.Window());
        ASSERT_EQ(outcome.code, 0) << outcome.message;
        std::vector<T> all = destination.CellsBefore();
        std::copy(expected.begin(), expected.end(), all.begin() + lead);
        const std::vector<T> now = destination.CellsNow();
        for (std::size_t i = 0; i < all.size(); ++i) {
            ASSERT_TRUE(HasSameBits<T>(now[i], all[i]))
                << "cell " << i << " of " << all.size() << ", window at " << lead;
        }
    }

    Random random{5};
    const LogCapture log;
};
TYPED_TEST_SUITE(RowsOf, AllValueTypes);

TYPED_TEST(RowsOf, AreFilteredAsByAModel)
{
    using T = TypeParam;
    for (const Containers& containers : AllContainers()) {
        for (const std::uint32_t length : this->Lengths()) {
            for (const std::uint32_t percentage : {0U, 5U, 50U, 97U, 100U}) {
                const Surrounded<T> source(this->random, this->random.Below(9), length, containers[0]);
                const std::uint32_t lead = this->random.Below(9);
                const std::vector<bool> marks = Marks(this->random, lead + length, percentage);
                const SeriesPtr column = Column<bool>("filter", marks, containers[1]);
                const Cursor filter = column->GetIterator(lead, lead + length);
                std::array<std::vector<T>, 2> cellsBy;
                std::set<std::uint32_t> marked;
                for (std::uint32_t i = 0; i < length; ++i) {
                    cellsBy[marks[lead + i] ? 1 : 0].push_back(source.Cell(i));
                    if (marks[lead + i]) {
                        marked.insert(i);
                    }
                }
                const Func::SelectRowByBool<CONTAINER_ARRAY> select;
                const Func::DropRowByBool<CONTAINER_ARRAY> dropByBool;
                const Func::DropRow<CONTAINER_ARRAY, std::set<std::uint32_t>&> drop(marked);
                EXPECT_EQ(select.GetDstAttr(filter, source.Window()).length, cellsBy[1].size());
                EXPECT_EQ(dropByBool.GetDstAttr(filter, source.Window()).length, cellsBy[0].size());
                EXPECT_EQ(drop.GetDstAttr(source.Window()).length, cellsBy[0].size());
                this->Check(cellsBy[1], containers[2],
                    [&](const Cursor& dst) { return select.ProcessSeries(filter, source.Window(), dst); });
                this->Check(cellsBy[0], containers[2],
                    [&](const Cursor& dst) { return dropByBool.ProcessSeries(filter, source.Window(), dst); });
                this->Check(cellsBy[0], containers[2],
                    [&](const Cursor& dst) { return drop.ProcessSeries(source.Window(), dst, true); });
            }
        }
    }
}

TYPED_TEST(RowsOf, AreTakenByPositionInAnyOrderAndNumber)
{
    using T = TypeParam;
    for (const ContainerID from : BOTH_CONTAINERS) {
        for (const ContainerID to : BOTH_CONTAINERS) {
            for (const std::uint32_t length : this->Lengths()) {
                const Surrounded<T> source(this->random, this->random.Below(9), length, from);
                Positions positions;
                std::vector<T> expected;
                for (std::uint32_t i = 0; i < length * 5 / 4; ++i) {
                    positions.push_back(this->random.Below(length));
                    expected.push_back(source.Cell(positions.back()));
                }
                const Func::SelectRow<CONTAINER_ARRAY, const Positions&> select(positions);
                EXPECT_EQ(select.GetDstAttr(source.Window()).length, positions.size());
                this->Check(
                    expected, to, [&](const Cursor& dst) { return select.ProcessSeries(source.Window(), dst, true); });
            }
        }
    }
}

// ---- What functors refuse

TEST(RowFunctors, RefuseWhatDoesNotFit)
{
    using Set = std::set<std::uint32_t>;
    const SeriesPtr numbers = Column<std::int32_t>("numbers", {1, 2, 3});
    const SeriesPtr others = Column<float>("others", {1, 2, 3});
    const SeriesPtr room = BuildSeries({3, CONTAINER_ARRAY, TESSERA_INT32}, {});
    const SeriesPtr bits = Column<bool>("bits", {false, false, false, true, true, true, true});
    const SeriesPtr list = BuildSeries({3, CONTAINER_ARRAY, TESSERA_UINT32}, {});
    const auto range = [](const SeriesPtr& column, unsigned int end) { return column->GetIterator(0, end); };
    const auto select = [&](Positions positions, const SeriesPtr& dst) {
        const Func::SelectRow<CONTAINER_ARRAY, Positions&> functor(positions);
        return functor.ProcessSeries(range(numbers, 3), dst->GetIterator(), true);
    };
    const auto drop = [&](const Set& rows, unsigned int length, const Cursor& dst) {
        const Func::DropRow<CONTAINER_ARRAY, const Set&> functor(rows);
        return functor.ProcessSeries(range(numbers, length), dst, true);
    };
    const auto filter = [&](const Cursor& marks, const Cursor& dst, bool isAsked) {
        const Func::DropRowByBool<CONTAINER_ARRAY> functor;
        const SeriesAttr attr = isAsked ? functor.GetDstAttr(marks, range(numbers, 3)) : SeriesAttr{};
        EXPECT_EQ(attr.length, 0U);
        return functor.ProcessSeries(marks, range(numbers, 3), dst);
    };
    const auto refusedWith = [](const std::string& name, const std::string& src, const std::string& dst) {
        return "Functor " + name + " check param error, src [" + src + "], dst [" + dst + "]";
    };
    const auto check = [](int line, int code, const std::vector<std::string>& texts, auto run) {
        const LogCapture log;
        EXPECT_EQ(run().code, code) << "of line " << line;
        EXPECT_EQ(log.Texts(1), texts) << "of line " << line;
    };
    check(__LINE__, 21,
        {"there exists index that exceeds length limit",
            refusedWith("SelectRow", "size 3, type int32", "size 3, type int32")},
        [&] {
            return select({0, 3, 1}, room);
        });
    check(__LINE__, 21, {refusedWith("SelectRow", "size 3, type int32", "size 3, type float")}, [&] {
        return select({0, 2, 1}, others);
    });
    check(__LINE__, 21, {refusedWith("SelectRow", "size 3, type int32", "size 3, type int32")}, [&] {
        return select({0, 1}, room);
    });
    check(__LINE__, 1, {}, [&] { return drop({3}, 3, range(room, 2)); });
    check(__LINE__, 1, {}, [&] { return drop({0, 1, 2, 3, 4}, 3, range(room, 0)); });
    check(__LINE__, 21, {refusedWith("DropRow", "size 3, type int32", "size 3, type int32")},
        [&] { return drop({1}, 3, range(room, 3)); });
    check(__LINE__, 21, {refusedWith("DropRow", "size 3, type int32", "size 2, type float")},
        [&] { return drop({1}, 3, range(others, 2)); });
    // More marks than rows, of which more go than there are.
    check(__LINE__, 21,
        {"Functor DropRowByBool check param error, lhs [size 7, type bool], "
         "rhs [size 3, type int32], dst [size 0, type int32]"},
        [&] { return filter(range(bits, 7), range(room, 0), true); });
    check(__LINE__, 1, {"lhs should be TESSERA_BOOL Type in drop row"},
        [&] { return filter(range(list, 3), range(room, 3), true); });
    check(__LINE__, 5, {}, [&] { return filter(range(list, 3), nullptr, false); });
    check(__LINE__, 5, {"the input data is Invalid"}, [&] {
        const Set none;
        return Error{Func::DropRow<CONTAINER_ARRAY, const Set&>(none).OnExecute<bool>(nullptr, range(room, 3)), {}};
    });
    check(__LINE__, 0, {"lhs or dst is empty"}, [&] { // nothing is taken, which is no failure
        return select({}, BuildSeries({0, CONTAINER_ARRAY, TESSERA_INT32}, {}));
    });
}

// ---- Tables

DataFrame Letters()
{
    return TableOf(
        Column<std::string>("letter", {"a", "b", "c", "d", "e"}), Column<double>("half", {0, .5, 1, 1.5, 2}));
}

std::string LettersOf(const DataFrameRef& table)
{
    std::string letters;
    for (unsigned int row = 0; row < table.RowCount(); ++row) {
        const auto& letter =
            CursorAs<CONTAINER_ARRAY, std::string>(table.GetSlicedIterator(table.GetColumn(0))).mHead[row];
        letters += letter;
        if (table.ColumnCount() > 1) {
            const double half = GetValueFromIterator<double>(table.GetSlicedIterator(table.GetColumn(1)), row);
            EXPECT_EQ(half, (letter[0] - 'a') / 2.0);
        }
    }
    return letters;
}

DataFrame Filter(const std::vector<bool>& bits, ContainerID container = CONTAINER_ARRAY)
{
    return TableOf(Column<bool>("filter", bits, container));
}

DataFrame Failed(ErrorCode code)
{
    DataFrame table;
    table.SetError({code, "an earlier failure"});
    return table;
}

/// One way to choose rows: by a filter or a list, into a new table or in place.
struct Choice {
    int line;
    std::function<DataFrame(const DataFrame&)> make;
    std::function<ErrorCode(DataFrame&)> change;
};

template <typename Rows>
Choice Select(int line, Rows rows)
{
    const auto kept = std::make_shared<const Rows>(std::move(rows)); // a table in a list can't be copied
    return {line, [kept](const DataFrame& table) { return table.SelectRow(*kept); },
        [kept](DataFrame& table) { return table.SelectRowInplace(*kept); }};
}

template <typename Rows>
Choice Drop(int line, Rows rows)
{
    const auto kept = std::make_shared<const Rows>(std::move(rows)); // a table in a list can't be copied
    return {line, [kept](const DataFrame& table) { return table.DropRow(*kept); },
        [kept](DataFrame& table) { return table.DropRowInplace(*kept); }};
}

/// What choosing gives of a table, in both ways; the table itself stays as it was.
DataFrame Choose(const Choice& choice, const DataFrame& table)
{
    const DataFrame made = choice.make(table);
    DataFrame changed = table;
    EXPECT_EQ(choice.change(changed), made.GetError().code);
    EXPECT_EQ(changed.GetError().message, made.GetError().message);
    EXPECT_EQ(changed.GetColumnName(), made.GetColumnName());
    EXPECT_EQ(changed.RowCount(), made.RowCount());
    return made;
}

TEST(Rows, StayOrGoByFilterAndByList)
{
    const std::pair<Choice, const char*> cases[] = {
        {Select(__LINE__, Filter({true, false, false, true, true})), "ade"},
        {Select(__LINE__, Filter({true, true, true, true, true})), "abcde"},
        {Select(__LINE__, Filter({false, false, false, false, false})), ""},
        {Select(__LINE__, Filter({true, false, false, true, true}, CONTAINER_LIST)), "ade"},
        {Select(__LINE__, Positions{2, 0, 2}), "cac"},
        {Select(__LINE__, Positions{}), ""},
        {Drop(__LINE__, Filter({true, false, false, true, true})), "bc"},
        {Drop(__LINE__, Filter({true, true, true, true, true})), ""},
        {Drop(__LINE__, Positions{1, 1}), "acde"},
        {Drop(__LINE__, Positions{4, 0, 1}), "cd"},
        {Drop(__LINE__, Positions{}), "abcde"},
    };
    const LogCapture log;
    const DataFrame whole = Letters();
    // A table may itself be a window, as one that was moved from a slice's columns.
    const DataFrame around = TableOf(Column<std::string>("letter", {"x", "a", "b", "c", "d", "e", "y", "z"}),
        Column<double>("half", {9, 0, .5, 1, 1.5, 2, 9, 9}));
    DataFrame cut;
    cut.ShallowCopy(around.Slice({1, 6}, {0, 2}));
    DataFrame single;
    single.ShallowCopy(around.Slice({1, 6}, {0, 1}));
    for (const auto& [choice, letters] : cases) {
        SCOPED_TRACE(choice.line);
        for (const DataFrame* table : {static_cast<const DataFrame*>(&whole), static_cast<const DataFrame*>(&cut),
                 static_cast<const DataFrame*>(&single)}) {
            const DataFrame chosen = Choose(choice, *table);
            EXPECT_EQ(chosen.GetError().code, 0) << chosen.GetError().message;
            EXPECT_EQ(LettersOf(chosen), letters);
            EXPECT_EQ(chosen.RowCount(), std::string(letters).size());
            EXPECT_EQ(chosen.GetColumnName(), table->GetColumnName());
            EXPECT_EQ(LettersOf(*table), "abcde");
        }
    }
}

// All columns get their rows at once, in blocks; the functors take one column after the other.
TEST(Rows, OfWholeTablesAreThoseOfTheFunctors)
{
    using namespace Func;
    constexpr std::uint32_t ROWS = 65536 + 400;
    constexpr std::size_t PLAIN_TYPES = TESSERA_DATAFRAME;
    DataFrame::Columns columns;
    [&columns]<std::size_t... I>(std::index_sequence<I...>)
    {
        (columns.push_back(Column<ValueTypes::At<I>>(VALUE_TYPE_NAMES[I], SampleValues<ValueTypes::At<I>>(ROWS))), ...);
    }
    (std::make_index_sequence<PLAIN_TYPES>{});
    DataFrame table(std::move(columns));
    Random random{8};
    for (const std::uint32_t first : {0U, 3U}) { // as a whole, then as a window
        table.SetRowIndex({first, ROWS});
        for (const std::uint32_t percentage : {0U, 1U, 50U, 100U}) {
            const DataFrame filter = Filter(Marks(random, ROWS - first, percentage));
            DataFrame selected, dropped;
            EXPECT_EQ(selected.ApplyInplace(FunctorFactory<SelectRowByBool, BinaryBase>{}, filter, table), 0);
            EXPECT_EQ(dropped.ApplyInplace(FunctorFactory<DropRowByBool, BinaryBase>{}, filter, table), 0);
            EXPECT_TRUE(IsSameTable(table.SelectRow(filter), selected)) << percentage;
            EXPECT_TRUE(IsSameTable(table.DropRow(filter), dropped)) << percentage;
        }
        Positions positions(900);
        std::generate(positions.begin(), positions.end(), [&] { return random.Below(ROWS - first); });
        DataFrame taken;
        EXPECT_EQ(taken.ApplyInplace(FunctorFactory<SelectRow, UnaryBase, const Positions&>{positions}, table), 0);
        EXPECT_TRUE(IsSameTable(table.SelectRow(positions), taken));
    }
}

// A large result is written past the caches, in lines of which a block rarely ends one.
TEST(Rows, ThatAreManyAreThoseOfTheFunctors)
{
    using namespace Func;
    constexpr std::uint32_t ROWS = 1'200'003;
    std::vector<double> wide(ROWS);
    std::iota(wide.begin(), wide.end(), 0.5);
    const std::vector<float> narrow(wide.begin(), wide.end());
    DataFrame table = TableOf(Column<double>("wide", wide), Column<float>("narrow", narrow));
    table.SetRowIndex({3, ROWS});
    Random random{9};
    std::vector<bool> marks = Marks(random, ROWS - 3, 90);
    for (std::uint32_t row = 0; row < marks.size(); ++row) { // many rows, then fewer than fill a line, and so on
        marks[row] = marks[row] && (row / 100'000 % 2 == 0 || row % 97 == 0);
    }
    const DataFrame filter = Filter(marks);
    DataFrame selected;
    ASSERT_EQ(selected.ApplyInplace(FunctorFactory<SelectRowByBool, BinaryBase>{}, filter, table), 0);
    EXPECT_TRUE(IsSameTable(table.SelectRow(filter), selected));
}

TEST(Rows, RefuseWithCodeAndMessage)
{
    const DataFrame two = TableOf(Column<bool>("x", std::vector<bool>(5)), Column<bool>("y", std::vector<bool>(5)));
    const DataFrame numbers = TableOf(Column<std::int8_t>("x", {0, 1, 0, 1, 1}));
    DataFrame list = TableOf(Column<std::string>("letter", {"a", "b"}, CONTAINER_LIST));
    const DataFrame noRows = GetEmptyDataFrame({0, 1}, TESSERA_STRING);
    struct Case {
        Choice choice;
        DataFrame table;
        Error error;
        const char* log; ///< the first of them; null where a refusal is not told
    };
    const char* const earlier = "an earlier failure";
    const std::vector<bool> four(4);
    const Case cases[] = {
        {Select(__LINE__, Filter({})), Failed(9), {9, earlier},
            "Invalid dataframe 9 while selecting row for DataFrame"},
        {Drop(__LINE__, Filter({})), Failed(9), {9, earlier}, "Invalid dataframe 9 while dropping row"},
        {Select(__LINE__, Positions{1}), Failed(9), {9, earlier}, "Invalid dataframe 9 while selecting row for vector"},
        {Drop(__LINE__, Positions{}), Failed(9), {9, earlier}, "Invalid dataframe on drop row 9"},
        {Select(__LINE__, Filter(four)), Letters(), {17, "SelectRow received invalid bool dataframe."},
            "Select row shape mismatch, boolFilter[4, 1], this[5, 2]"},
        {Select(__LINE__, two), Letters(), {17, "SelectRow received invalid bool dataframe."},
            "Select row shape mismatch, boolFilter[5, 2], this[5, 2]"},
        {Drop(__LINE__, Filter(four)), Letters(), {17, "DropNan received invalid bool dataframe."}, nullptr},
        {Drop(__LINE__, two), Letters(), {17, "DropNan received invalid bool dataframe."}, nullptr},
        {Select(__LINE__, numbers), Letters(), {2, "SelectRow received invalid bool dataframe."},
            "lhs should be TESSERA_BOOL Type in select row"},
        {Drop(__LINE__, numbers), Letters(), {2, "DropNan received invalid bool dataframe."},
            "lhs should be TESSERA_BOOL Type in drop row"},
        {Select(__LINE__, Positions{0}), noRows, {7, "selecting row on an empty dataframe."}, nullptr},
        {Drop(__LINE__, Positions{}), DataFrame(), {7, "dropping row on an empty dataframe."}, nullptr},
        {Select(__LINE__, Positions{5}), Letters(), {21, "Check param failed in functor: SelectRow"},
            "there exists index that exceeds length limit"},
        {Drop(__LINE__, Positions{0, 5, 1}), Letters(), {4, "Invalid series index:5"}, nullptr},
        {Drop(__LINE__, Positions{4294967295U}), Letters(), {4, "Invalid series index:4294967295"}, nullptr},
        {Select(__LINE__, Positions{1}), std::move(list), {2, "the container type is changed"},
            "Trying to get an error functor's attribute"},
    };
    for (const Case& tested : cases) {
        SCOPED_TRACE(tested.choice.line);
        const LogCapture log;
        const DataFrame result = tested.choice.make(tested.table);
        EXPECT_EQ(result.GetError().code, tested.error.code);
        EXPECT_EQ(result.GetError().message, tested.error.message);
        const std::string set = "set df error " + std::to_string(tested.error.code);
        const std::vector<std::string> texts = log.Texts(1);
        ASSERT_FALSE(texts.empty());
        EXPECT_EQ(texts.front().substr(0, set.size()) == set, tested.log == nullptr);
        EXPECT_TRUE(tested.log == nullptr || texts.front() == tested.log) << texts.front();
        DataFrame replaced;
        replaced.ShallowCopy(tested.table);
        EXPECT_EQ(tested.choice.change(replaced), tested.error.code);
        EXPECT_EQ(replaced.GetError().message, tested.error.message);
    }
    const LogCapture log; // of a filter that failed before, the code of the table is told
    EXPECT_EQ(Letters().SelectRow(Failed(9)).GetError().code, 9);
    EXPECT_EQ(Letters().DropRow(Failed(9)).GetError().message, earlier);
    EXPECT_TRUE(log.Has(1, "Invalid boolFilter 0 while selecting row"));
    EXPECT_TRUE(log.Has(1, "Invalid boolFilter 0 while dropping row"));
}

TEST(Rows, AreNumberedByNamesOfColumns)
{
    DataFrame table = Letters();
    const DataFrameRef second = table.Slice(1U, {1, 2});
    Positions index{7, 7, 7};
    EXPECT_EQ(second.GetIndexVector(index, {"half", "letter"}), 0);
    EXPECT_THAT(index, ElementsAre(1, 0)); // of all columns, whatever the window
    const LogCapture log;
    EXPECT_EQ(table.GetIndexVector(index, {"half", "Half"}), 5);
    EXPECT_TRUE(log.Has(1, "dataframe does not contain this column name: Half"));
}

// ---- Flat calls

TEST(FlatRows, AreDroppedFromTables)
{
    const Handle table(Letters());
    const Handle result;
    const std::uint32_t rows[] = {3, 0, 3};
    EXPECT_EQ(MERVO_TSR_DropRowByIndex(result.Get(), table.Get(), rows, 3), 0);
    EXPECT_EQ(LettersOf(result.Table()), "bce");
    const DataFrame bits = Filter({true, true, true, false, false, true, false});
    const Handle filter(bits.Slice(0U, {2, 7}));
    EXPECT_EQ(MERVO_TSR_DropRowByBool(result.Get(), table.Get(), filter.Get()), 0);
    EXPECT_EQ(LettersOf(result.Table()), "bce");
    EXPECT_EQ(
        MERVO_TSR_DropRowByBool(table.Get(), table.Get(), Handle(Filter({true, false, true, true, true})).Get()), 0);
    EXPECT_EQ(LettersOf(table.Table()), "b");
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_DropRowByIndex(result.Get(), table.Get(), rows, 3), 4);
    EXPECT_EQ(result.Table().GetError().message, "Invalid series index:3");
    EXPECT_EQ(MERVO_TSR_DropRowByIndex(result.Get(), table.Get(), rows + 1, 1), 0) << "a failed table is replaced";
}

TEST(FlatRows, RefuseHandles)
{
    const Handle table(Letters());
    const Handle window{DataFrameRef(Letters())};
    MERVO_TSR_CONTEXT neither{nullptr, nullptr};
    const std::uint32_t rows[] = {0};
    MERVO_TSR_CONTEXT* const good = table.Get();
    const LogCapture log;
    for (MERVO_TSR_CONTEXT* const bad : {static_cast<MERVO_TSR_CONTEXT*>(nullptr), &neither, window.Get()}) {
        EXPECT_EQ(MERVO_TSR_DropRowByIndex(bad, good, rows, 1), 33);
        EXPECT_EQ(MERVO_TSR_DropRowByIndex(good, bad, rows, 1), 33);
        EXPECT_EQ(MERVO_TSR_DropRowByBool(bad, good, good), 33);
        EXPECT_EQ(MERVO_TSR_DropRowByBool(good, bad, good), 33);
    }
    EXPECT_EQ(MERVO_TSR_DropRowByIndex(good, good, nullptr, 1), 33);
    EXPECT_EQ(MERVO_TSR_DropRowByIndex(good, good, rows, 0), 33);
    EXPECT_EQ(MERVO_TSR_DropRowByBool(good, good, nullptr), 33);
    EXPECT_EQ(MERVO_TSR_DropRowByBool(good, good, &neither), 33);
    EXPECT_EQ(log.Count(1), 16U);
    EXPECT_TRUE(log.Has(1, "[MERVO_TSR_DropRowByIndex] Input is nullptr"));
    EXPECT_TRUE(log.Has(1, "[MERVO_TSR_DropRowByBool] Input is nullptr"));
    EXPECT_EQ(LettersOf(table.Table()), "abcde");
}

TEST(FlatSlice, MakesWindowsOnTablesAndOnWindows)
{
    const Handle table(Letters());
    const std::uint32_t rows[] = {1, 4};
    const std::uint32_t columns[] = {0, 1};
    MERVO_TSR_CONTEXT* outer = MERVO_TSR_Slice(table.Get(), rows, columns, 2, 2);
    ASSERT_NE(outer, nullptr);
    EXPECT_EQ(LettersOf(*outer->dataFrameRef), "bcd");
    MERVO_TSR_CONTEXT* inner = MERVO_TSR_Slice(outer, rows, columns, 2, 2);
    EXPECT_EQ(inner, nullptr) << "rows 1 to 4 of three";
    const std::uint32_t lastRows[] = {1, 3};
    inner = MERVO_TSR_Slice(outer, lastRows, columns, 2, 2);
    ASSERT_NE(inner, nullptr);
    EXPECT_TRUE(SetValueToIterator<std::string>(table.Table().GetColumn(0)->GetIterator(), "C", 2));
    MERVO_TSR_Release(&outer);
    EXPECT_EQ(LettersOf(*inner->dataFrameRef), "Cd") << "cells are shared, and outlive the window between";
    MERVO_TSR_Release(&inner);

    MERVO_TSR_CONTEXT neither{nullptr, nullptr};
    const std::uint32_t empty[] = {2, 2};
    struct Case {
        int line;
        const MERVO_TSR_CONTEXT* source;
        const std::uint32_t* rows;
        const std::uint32_t* columns;
        std::uint32_t rowsLength;
        std::uint32_t columnsLength;
        const char* text;
    };
    for (const Case& refused : {Case{__LINE__, table.Get(), nullptr, columns, 2, 2, "input shape is invalid"},
             Case{__LINE__, table.Get(), rows, nullptr, 2, 2, "input shape is invalid"},
             Case{__LINE__, table.Get(), rows, columns, 3, 2, "input shape is invalid"},
             Case{__LINE__, table.Get(), rows, columns, 2, 1, "input shape is invalid"},
             Case{__LINE__, nullptr, rows, columns, 2, 2, "Input is invalid"},
             Case{__LINE__, &neither, rows, columns, 2, 2, "Input is invalid"},
             Case{__LINE__, table.Get(), empty, columns, 2, 2, "slice failed"}}) {
        const LogCapture log;
        EXPECT_EQ(
            MERVO_TSR_Slice(refused.source, refused.rows, refused.columns, refused.rowsLength, refused.columnsLength),
            nullptr)
            << refused.line;
        EXPECT_EQ(log.Texts(1).back(), std::string("[MERVO_TSR_Slice] ") + refused.text) << refused.line;
    }
}

} // namespace
} // namespace MERVO::Tessera
