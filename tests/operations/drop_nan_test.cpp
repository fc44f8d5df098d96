// Dropping rows and columns that have missing values.

#include <cmath>
#include <functional>
#include <set>

#include <gmock/gmock.h>

#include "tests/functors/pairing.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Positions = std::vector<std::uint32_t>;
using Names = std::vector<std::string>;

constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();

/// Cells of which a percentage is NaN; whether each is, is told to `missing`.
template <std::floating_point T>
std::vector<T> CellsWithGaps(Random& random, std::uint32_t count, std::uint32_t percentage, std::vector<bool>& missing)
{
    std::vector<T> cells = RandomCells<T>(random, count);
    missing.resize(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (random.Below(100) < percentage) {
            cells[i] = std::copysign(std::numeric_limits<T>::quiet_NaN(), random.Below(2) == 0 ? T{1} : T{-1});
        }
        missing[i] = std::isnan(cells[i]);
    }
    return cells;
}

/// A table whose first column is the rows' numbers, and what is missing of each of its columns.
struct Sample {
    DataFrame table;
    std::vector<std::vector<bool>> missing;

    Sample(Random& random, std::uint32_t rows, std::uint32_t percentage) : missing(5, std::vector<bool>(rows))
    {
        std::vector<std::int32_t> numbers(rows);
        for (std::uint32_t row = 0; row < rows; ++row) {
            numbers[row] = static_cast<std::int32_t>(row);
        }
        table = TableOf(Column<std::int32_t>("number", numbers),
            Column<float>("float", CellsWithGaps<float>(random, rows, percentage, missing[1])),
            Column<std::string>("text", std::vector<std::string>(rows, "nan")),
            Column<double>("double", CellsWithGaps<double>(random, rows, percentage, missing[3])),
            Column<double>("mostly missing", CellsWithGaps<double>(random, rows, 97, missing[4])));
    }
    std::uint32_t Rows() const { return static_cast<std::uint32_t>(missing[0].size()); }

    /// The numbers of the rows that have at least `wanted` present cells in some columns.
    std::vector<std::int32_t> RowsWith(std::size_t wanted, const Positions& columns) const
    {
        std::vector<std::int32_t> kept;
        for (std::uint32_t row = 0; row < Rows(); ++row) {
            std::size_t present = 0;
            for (const std::uint32_t column : columns) {
                present += missing[column][row] ? 0 : 1;
            }
            if (present >= wanted) {
                kept.push_back(static_cast<std::int32_t>(row));
            }
        }
        return kept;
    }
    Names ColumnsWith(std::size_t wanted) const
    {
        Names kept;
        for (std::size_t k = 0; k < missing.size(); ++k) {
            if (static_cast<std::size_t>(std::count(missing[k].begin(), missing[k].end(), false)) >= wanted) {
                kept.push_back(table.GetColumnName()[k]);
            }
        }
        return kept;
    }
};

std::vector<std::int32_t> NumbersOf(const DataFrame& table)
{
    EXPECT_EQ(table.GetError().code, 0) << table.GetError().message;
    EXPECT_EQ(table.ColumnCount(), 5U);
    return CellsOf<std::int32_t>(table.GetSlicedIterator(table.GetColumn(0)));
}

// Blocks of rows are 2048 long, and cells of a row are counted in bytes that hold up to 255.
// Large tables of numbers are gone through once, into room for as many rows as samples let expect.
TEST(DropNanRow, OfLargeTablesKeepsTheRowsOfItsMarks)
{
    constexpr std::uint32_t ROWS = 1'500'077;
    constexpr std::uint32_t FIRST = 5;
    const std::function<bool(Random&, std::uint32_t)> patterns[] = {
        [](Random&, std::uint32_t) { return false; },
        [](Random& random, std::uint32_t) { return random.Below(100) < 30; },
        [](Random&, std::uint32_t row) { return row < 1'000 || row > 48'000; }, // between two samples
        [](Random&, std::uint32_t) { return true; },
    };
    for (const auto& isMissing : patterns) {
        Random random{7};
        std::vector<double> doubles(ROWS);
        std::vector<float> floats(ROWS);
        std::vector<bool> marks(ROWS - FIRST);
        for (std::uint32_t row = 0; row < ROWS; ++row) {
            doubles[row] = isMissing(random, row) ? NO_VALUE : row;
            floats[row] = isMissing(random, row) ? std::nanf("") : static_cast<float>(row);
            if (row >= FIRST) {
                marks[row - FIRST] = std::isnan(doubles[row]) || std::isnan(floats[row]);
            }
        }
        DataFrame table = TableOf(
            Column<double>("double", doubles), Column<float>("float", floats), Column<double>("other", doubles));
        table.SetRowIndex({FIRST, ROWS});
        const DataFrame expected = table.DropRow(TableOf(Column<bool>("marks", marks)));
        EXPECT_TRUE(IsSameTable(table.DropNanRow(true, Positions{0, 1}), expected)) << &isMissing - patterns;
    }
}

TEST(DropNanRow, KeepsWhatAModelKeeps)
{
    Random random(3);
    const std::vector<Positions> subsets = {{}, {0, 2}, {1}, {3, 4}, {4, 1, 3, 1}, Positions(300, 3)};
    for (const std::uint32_t rows : {1U, 9U, 2048U, 4101U}) {
        for (const std::uint32_t percentage : {0U, 5U, 60U, 100U}) {
            const Sample sample(random, rows, percentage);
            for (const Positions& subset : subsets) {
                const Positions columns = subset.empty() ? Positions{0, 1, 2, 3, 4} : subset;
                const std::set<std::uint32_t> distinct(columns.begin(), columns.end());
                const Positions once(distinct.begin(), distinct.end());
                EXPECT_EQ(NumbersOf(sample.table.DropNanRow(true, subset)), sample.RowsWith(once.size(), once));
                EXPECT_EQ(NumbersOf(sample.table.DropNanRow(false, subset)), sample.RowsWith(1, once));
                for (const std::size_t wanted : {std::size_t{1}, columns.size() / 2 + 1, columns.size()}) {
                    EXPECT_EQ(NumbersOf(sample.table.DropNanRow(static_cast<int>(wanted), subset)),
                        sample.RowsWith(wanted, columns));
                }
            }
            const std::size_t half = rows / 2 + 1;
            EXPECT_EQ(sample.table.DropNanCol(true).GetColumnName(), sample.ColumnsWith(rows));
            EXPECT_EQ(sample.table.DropNanCol(false).GetColumnName(), sample.ColumnsWith(1));
            EXPECT_EQ(sample.table.DropNanCol(static_cast<int>(half)).GetColumnName(), sample.ColumnsWith(half));
        }
    }
}

TEST(DropNan, ByNamesOfWindowsAndInPlace)
{
    Random random(4);
    const Sample sample(random, 100, 50);
    const auto wanted = sample.RowsWith(1, {1, 3});
    EXPECT_EQ(NumbersOf(sample.table.DropNanRow(false, Names{"double", "float"})), wanted);
    EXPECT_EQ(NumbersOf(sample.table.DropNanRow(1, Names{"double", "float"})), wanted);
    DataFrame changed = sample.table;
    EXPECT_EQ(changed.DropNanRowInplace(false, Names{"double", "float"}), 0);
    EXPECT_EQ(NumbersOf(changed), wanted);
    EXPECT_EQ(changed.DropNanRowInplace(2, Names{"double", "float"}), 0);
    EXPECT_EQ(NumbersOf(changed), sample.RowsWith(2, {1, 3}));
    EXPECT_EQ(changed.DropNanRowInplace(true, Positions{4}), 0);
    EXPECT_EQ(NumbersOf(changed), sample.RowsWith(3, {1, 3, 4}));
    EXPECT_EQ(changed.DropNanRowInplace(6), 0);
    EXPECT_EQ(changed.ColumnCount(), 0U);
    changed = sample.table;
    EXPECT_EQ(changed.DropNanColInplace(true), 0);
    EXPECT_THAT(changed.GetColumnName(), ElementsAre("number", "text"));
    EXPECT_EQ(changed.DropNanColInplace(101), 0);
    EXPECT_EQ(changed.ColumnCount(), 0U);

    DataFrame window;
    window.ShallowCopy(sample.table.Slice({10, 30}, {1, 4}));
    EXPECT_EQ(window.DropNanRow(true, Positions{2}).RowCount(), window.DropNanRow(true, Names{"double"}).RowCount());
    const LogCapture log;
    EXPECT_EQ(window.DropNanRow(true, Names{"number"}).GetError().code, 4) << "outside of the window";
}

// What is left to do where there is nothing to look at, or too little.
TEST(DropNan, OfFewRowsOrColumns)
{
    const DataFrame three =
        TableOf(Column<double>("a", {NO_VALUE, 1, 2}), Column<double>("b", {0, NO_VALUE, NO_VALUE}));
    const DataFrame noRows = GetEmptyDataFrame({0, 2}, TESSERA_FLOAT);
    const LogCapture log;
    EXPECT_EQ(three.DropNanRow(true).RowCount(), 0U) << "every row has one";
    EXPECT_EQ(three.DropNanRow(0).RowCount(), 3U);
    EXPECT_EQ(three.DropNanRow(3).ColumnCount(), 0U);
    EXPECT_EQ(three.DropNanRow(2147483647).GetError().code, 0);
    EXPECT_EQ(three.DropNanCol(-1).ColumnCount(), 2U);
    EXPECT_EQ(log.Count(), 0U);
    EXPECT_EQ(three.DropNanCol(4).GetError().code, 0);
    EXPECT_THAT(log.Texts(2), ElementsAre("Empty DataFrame after drop col"));
    EXPECT_EQ(noRows.DropNanRow(true).ColumnCount(), 2U);
    EXPECT_EQ(noRows.DropNanRow(1).GetError().message, "dropping row on an empty dataframe.");
    EXPECT_EQ(noRows.DropNanCol(true).ColumnCount(), 2U);
    EXPECT_EQ(noRows.DropNanCol(false).ColumnCount(), 0U);
    EXPECT_EQ(DataFrame().DropNanRow(true).GetError().code, 0);
    EXPECT_TRUE(log.Has(1, "Invalid dataframe shape [0, 0] error 0"));
    EXPECT_TRUE(log.Has(1, "DropNanRow(any) check param failed, error 0"));
    EXPECT_EQ(DataFrame().DropNanRow(1).GetError().code, 0);
    EXPECT_TRUE(log.Has(1, "Invalid DataFrame shape [0, 0] error 0"));
    EXPECT_TRUE(log.Has(1, "DropNanRow(thresh) check param failed, error 0"));
}

TEST(DropNan, RefusesWithCodeAndMessage)
{
    DataFrame failed;
    failed.SetError({9, "an earlier failure"});
    const DataFrame plain = TableOf(Column<double>("a", {NO_VALUE}), Column<double>("b", {0}));
    const DataFrame nested = TableOf(Column<float>("a", {0}), Column<DataFrame>("b", {DataFrame()}));
    const DataFrame list = TableOf(Column<float>("a", {0}, CONTAINER_LIST));
    const char* const any = "DropNanRow(any) check param failed";
    const char* const thresh = "DropNanRow(thresh) check param failed";
    struct Case {
        int line;
        DataFrame result;
        Error error;
    };
    const LogCapture log;
    const Case cases[] = {
        {__LINE__, failed.DropNanRow(true), {9, any}},
        {__LINE__, failed.DropNanRow(1), {9, thresh}},
        {__LINE__, failed.DropNanCol(true), {9, "Dataframe 9 invalid."}},
        {__LINE__, failed.DropNanCol(1), {9, "an earlier failure"}},
        {__LINE__, plain.DropNanRow(true, Positions{2}), {4, any}},
        {__LINE__, plain.DropNanRow(1, Positions{0, 4294967295U, 1}), {4, thresh}},
        {__LINE__, plain.DropNanRow(false, Names{"a", "c"}), {5, any}},
        {__LINE__, plain.DropNanRow(1, Names{"c"}), {5, "DropNanRow(thresh, subset) check param failed"}},
        {__LINE__, nested.DropNanRow(true), {1, "Error on calling functor: IsNan"}},
        {__LINE__, nested.DropNanRow(2), {1, "Error on calling functor: IsNanInt"}},
        {__LINE__, nested.DropNanCol(true), {1, "Drop nan error on calculate isnan."}},
        {__LINE__, nested.DropNanCol(1), {1, "DropNanCol(thresh): Error on calculate isnan"}},
        {__LINE__, DataFrame().DropNanCol(true), {7, "Drop nan error on calculate isnan."}},
        {__LINE__, list.DropNanRow(true), {21, "Check param failed in functor: ErrorUnaryFunctor"}},
    };
    for (const Case& tested : cases) {
        EXPECT_EQ(tested.result.GetError().code, tested.error.code) << tested.line;
        EXPECT_EQ(tested.result.GetError().message, tested.error.message) << tested.line;
    }
    for (const char* text : {"Invalid dataframe shape [0, 0] error 9", "DropNanRow(any) check param failed, error 9",
             "Invalid DataFrame shape [0, 0] error 9", "DropNanRow(thresh) check param failed, error 4",
             "Dataframe 9 invalid.", "DropNanCol(thresh): Dataframe 9 invalid.", "IsNan not support Type DataFrame",
             "IsNanInt not support Type DataFrame"}) {
        EXPECT_TRUE(log.Has(1, text)) << text;
    }
    EXPECT_EQ(nested.DropNanRow(true, Positions{0}).RowCount(), 1U) << "only what is looked at counts";
    DataFrame kept = plain;
    EXPECT_EQ(kept.DropNanRowInplace(1, Names{"c"}), 5);
    EXPECT_EQ(kept.DropNanRowInplace(true, Names{"c"}), 5);
    EXPECT_EQ(kept.ColumnCount(), 2U) << "a name that can't be found changes nothing";
    EXPECT_EQ(kept.DropNanRowInplace(true, Positions{2}), 4);
    EXPECT_EQ(kept.ColumnCount(), 0U);
}

TEST(DropNan, TellsWantOfMemoryForItsMarks)
{
    const DataFrame table = GetEmptyDataFrame({1U << 20, 1}, TESSERA_INT8);
    const LogCapture log;
    const FailingAllocation failing(0, (1U << 20) / 8);
    EXPECT_EQ(table.DropNanRow(true).GetError().code, 3);
}

TEST(FlatDropNan, AnswersInTheDestination)
{
    const Handle table(TableOf(Column<double>("a", {NO_VALUE, 1, NO_VALUE}), Column<float>("b", {0, 1, NAN})));
    const Handle window{DataFrameRef(table.Table())};
    const Handle result;
    EXPECT_EQ(MERVO_TSR_DropNanRow(result.Get(), table.Get(), true), 0);
    EXPECT_EQ(result.Table().RowCount(), 1U);
    EXPECT_EQ(MERVO_TSR_DropNanRow(result.Get(), table.Get(), false), 0);
    EXPECT_EQ(result.Table().RowCount(), 2U);
    EXPECT_EQ(MERVO_TSR_DropNanCol(result.Get(), result.Get(), true), 0);
    EXPECT_THAT(result.Table().GetColumnName(), ElementsAre("b"));
    EXPECT_EQ(MERVO_TSR_DropNanCol(result.Get(), table.Get(), false), 0);
    EXPECT_EQ(result.Table().ColumnCount(), 2U);
    const LogCapture log;
    for (MERVO_TSR_CONTEXT* const bad : {static_cast<MERVO_TSR_CONTEXT*>(nullptr), window.Get()}) {
        EXPECT_EQ(MERVO_TSR_DropNanRow(bad, table.Get(), true), 33);
        EXPECT_EQ(MERVO_TSR_DropNanRow(table.Get(), bad, true), 33);
        EXPECT_EQ(MERVO_TSR_DropNanCol(bad, table.Get(), true), 33);
        EXPECT_EQ(MERVO_TSR_DropNanCol(table.Get(), bad, true), 33);
    }
    const std::string row = "[MERVO_TSR_DropNanRow] Input is nullptr";
    const std::string column = "[MERVO_TSR_DropNanCol] Input is nullptr";
    EXPECT_THAT(log.Texts(1), ElementsAre(row, row, column, column, row, row, column, column));
    EXPECT_EQ(MERVO_TSR_DropNanCol(result.Get(), Handle().Get(), true), 7);
}

} // namespace
} // namespace MERVO::Tessera
