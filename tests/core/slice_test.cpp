#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "tests/core/letters.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned int ALL = 0xFFFFFFFFU;

TEST(Slice, CountsFromTheWindow)
{
    const DataFrame table = Letters();
    const DataFrameRef middle = table.Slice(Range{1, 4}, Range{1, 4});
    EXPECT_EQ(middle.GetRowIndex(), (Range{1, 4}));
    EXPECT_EQ(middle.GetColIndex(), (Range{1, 4}));
    const struct {
        const char* name;
        DataFrameRef slice;
        std::vector<std::int32_t> cells;
    } cases[] = {
        {"both", middle.Slice(Range{1, 3}, Range{0, 2}), {12, 22, 13, 23}},
        {"rows", middle.Slice(0, {2, 3}), {13, 23, 33}},
        {"columns", middle.Slice(1, {2, 3}), {31, 32, 33}},
        {"any other axis", middle.Slice(7, {0, 1}), {11, 12, 13}},
        {"names, the second exclusive", middle.Slice(Range{0, 1}, NameRange{"b", "d"}), {11, 21}},
        {"brackets with a range", middle[Range{0, 2}], {11, 21, 12, 22, 13, 23}},
        {"brackets with a number", middle[1], {21, 22, 23}},
        {"brackets with all ones", middle[ALL], {11, 21, 31, 12, 22, 32, 13, 23, 33}},
        {"brackets with a name", middle["d"], {31, 32, 33}},
        {"brackets with two names", middle[NameRange{"c", "d"}], {21, 22, 23}},
        {"a slice of a slice of a slice", middle[Range{1, 3}].Slice(0, {1, 3})["d"], {32, 33}},
    };
    for (const auto& [name, slice, cells] : cases) {
        EXPECT_EQ(slice.GetError().code, 0) << name;
        EXPECT_EQ(Flat(slice), cells) << name;
    }
}

TEST(Slice, BracketsOfATableMeanRows)
{
    const DataFrame table = Letters();
    EXPECT_THAT(Flat(table[Range{1, 3}]), ElementsAre(1, 11, 21, 31, 2, 12, 22, 32));
    EXPECT_THAT(Flat(table[3U]), ElementsAre(3, 13, 23, 33));
    EXPECT_THAT(Flat(table[0]), ElementsAre(0, 10, 20, 30));
    EXPECT_EQ(Flat(table[ALL]), Flat(table));
    EXPECT_THAT(Flat(table["c"]), ElementsAre(20, 21, 22, 23, 24));
    EXPECT_THAT(Flat(table[NameRange{"b", "c"}]), ElementsAre(10, 11, 12, 13, 14));
    const DataFrameRef& seenAsWindow = table;
    EXPECT_THAT(Flat(seenAsWindow[3U]), ElementsAre(3, 13, 23, 33)) << "the object decides, not the reference";
    EXPECT_THAT(Flat(DataFrameRef(table)[3U]), ElementsAre(30, 31, 32, 33, 34));
}

TEST(Slice, RefusesWhatTheWindowDoesNotHave)
{
    const DataFrame table = Letters();
    const DataFrameRef window = table.Slice(Range{1, 4}, Range{1, 3});
    const char* const reversed = "The first index in slicing range should less than ths second";
    const char* const outside = "Out of index range in Slicing";
    const auto missing = [](const std::string& name) {
        return "The dataframe does not contain this column name: " + name + ".";
    };
    const struct {
        DataFrameRef slice;
        ErrorCode code;
        std::string message;
    } cases[] = {
        {table.Slice(0, {2, 2}), 4, reversed},
        {table.Slice(0, {3, 2}), 4, reversed},
        {table.Slice(1, {1, 0}), 4, reversed},
        {table.Slice(0, {0, 6}), 4, outside},
        {table.Slice(0, {5, 6}), 4, outside},
        {table.Slice(1, {3, 5}), 4, outside},
        {window.Slice(0, {2, 4}), 4, outside}, // the columns have such a row, the window does not
        {window.Slice(1, {1, 3}), 4, outside},
        {window.Slice(0, {1, ALL}), 4, outside}, // would wrap to a small number
        {window[ALL - 1], 4, outside},
        {window[2], 4, outside},
        {table[5], 4, outside},
        {DataFrame()[ALL], 4, reversed},
        {DataFrame().Slice(0, {0, 1}), 4, reversed},
        {table["e"], 5, missing("e")},
        {table["A"], 5, missing("A")},
        {table[""], 5, missing("")},
        {window["a"], 5, missing("a")}, // a column of the table, to the left of the window
        {table[static_cast<const char*>(nullptr)], 5, "Column name cannot be nullptr in operator []."},
        {table[NameRange{"a", "x"}], 5, missing("x")},
        {table.Slice(Range{0, 1}, NameRange{"x", "y"}), 5, missing("x")},
        {table[NameRange{"c", "b"}], 4, reversed},
        {table.Slice(Range{0, 9}, NameRange{"a", "b"}), 4, outside},
    };
    for (const auto& [slice, code, message] : cases) {
        EXPECT_EQ(slice.GetError().code, code) << message;
        EXPECT_EQ(slice.GetError().message, message);
        EXPECT_EQ(slice.ColumnCount(), 0U);
        EXPECT_EQ(slice.GetColumn(0), nullptr);
    }
    EXPECT_EQ(table.GetError().code, 0) << "the source is not marked";
    EXPECT_EQ(window.GetError().code, 0);
}

TEST(Slice, OfAFailedTableHasItsCodeAndText)
{
    const DataFrame table = Letters();
    table.SetError({12, "it failed"});
    const LogCapture log;
    for (const DataFrameRef& slice : {table.Slice(0, {0, 1}), table[0], table["a"], table[NameRange{"a", "b"}]}) {
        EXPECT_EQ(slice.GetError().code, 12);
        EXPECT_EQ(slice.GetError().message, "it failed");
    }
    EXPECT_TRUE(log.Has(1, "Invalid dataFrame 12 for slice"));
}

TEST(Slice, SharesCellsButNotErrors)
{
    const DataFrame table = Letters();
    const DataFrameRef column = table["b"];
    const DataFrameRef row = table[2];
    ASSERT_TRUE(SetValueToIterator<std::int32_t>(column.GetSlicedIterator(column.GetColumn(0)), 77, 2));
    EXPECT_EQ(Flat(table)[4 * 2 + 1], 77);
    EXPECT_THAT(Flat(row), ElementsAre(2, 77, 22, 32));
    row.SetError({1, "failed"});
    EXPECT_EQ(table.GetError().code, 0);
    EXPECT_EQ(column.GetError().code, 0);
}

TEST(Slice, LooksUpNamesThatTheTableGotSince)
{
    DataFrame table = Letters();
    const DataFrameRef slice = table.Slice(1, {1, 4});
    ASSERT_EQ(table.SetColumnName({"b", "x", "y", "d"}), 0);
    EXPECT_THAT(Flat(slice["x"]), ElementsAre(10, 11, 12, 13, 14));
    EXPECT_EQ(slice["c"].GetError().code, 5);
    EXPECT_EQ(slice["b"].GetError().code, 5) << "the column of that name now lies outside";
}

TEST(Slice, OutlivesItsTable)
{
    std::optional<DataFrameRef> column;
    {
        const DataFrame table = Letters();
        column.emplace(table["c"]);
    }
    EXPECT_THAT(Flat(*column), ElementsAre(20, 21, 22, 23, 24));
    EXPECT_THAT(column->GetColumnName(), ElementsAre("c"));
}

TEST(Window, OpensToTheWholeTableWhenRefreshed)
{
    const DataFrame table = Letters();
    DataFrameRef window = table.Slice(Range{1, 2}, Range{2, 3});
    window.RefreshShape();
    EXPECT_EQ(window.GetRowIndex(), (Range{0, 5}));
    EXPECT_EQ(window.GetColIndex(), (Range{0, 4}));
    EXPECT_EQ(Flat(window), Flat(table));
}

TEST(Window, SetToNonsenseAnswersWithCodes)
{
    const Range windows[] = {{4, 2}, {0, 9}, {7, 9}, {ALL, 0}};
    for (const Range& odd : windows) {
        SCOPED_TRACE(testing::PrintToString(odd));
        const LogCapture log;
        const DataFrame table = Letters();
        DataFrameRef rows(table);
        rows.SetRowIndex(odd);
        EXPECT_THAT(Flat(rows), IsEmpty());
        EXPECT_EQ(rows.GetSlicedIterator(rows.GetColumn(0)), nullptr);
        DataFrame copy;
        EXPECT_EQ(CopyOver(copy, rows), 5);
        EXPECT_EQ(CopyOver(rows, table), 5);

        DataFrameRef columns(table);
        columns.SetColIndex(odd);
        EXPECT_THAT(Flat(columns), IsEmpty());
        EXPECT_EQ(columns.GetColumnName().size(), columns.ColumnCount());
        DataFrame other;
        EXPECT_NE(CopyOver(other, columns), 0);
    }
}

TEST(Window, ClaimingMoreRowsThanMemoryHasIsRefusedBeforeRoomIsMade)
{
    const DataFrame table = Letters();
    DataFrameRef window(table);
    window.SetRowIndex({0, ALL});
    const LogCapture log;
    EXPECT_THAT(Flat(window), IsEmpty());
    EXPECT_THAT(window.ToVector<std::int32_t>(), IsEmpty());
    EXPECT_EQ(window.Transpose().GetError().code, 6);
}

// A table that receives results changes the columns under its older slices.
TEST(StaleWindow, AnswersWithACodeOnceTheColumnsGotShorterOrFewer)
{
    DataFrame table = Letters();
    DataFrameRef rows = table[Range{2, 5}];
    DataFrameRef lastColumn = table["d"];
    DataFrameRef kept = table.Slice(Range{0, 2}, Range{0, 2});
    ASSERT_EQ(CopyOver(table, Letters().Slice(Range{0, 3}, Range{2, 4})), 0);
    ASSERT_EQ(table.ColumnCount(), 2U);
    const LogCapture log;
    for (DataFrameRef* stale : {&rows, &lastColumn}) {
        EXPECT_THAT(Flat(*stale), IsEmpty());
        EXPECT_EQ(stale->GetColumnName().size(), stale->ColumnCount());
        DataFrame copy;
        EXPECT_EQ(CopyOver(copy, *stale), 5);
        EXPECT_EQ(CopyOver(*stale, Letters().Slice(Range{0, stale->RowCount()}, Range{0, stale->ColumnCount()})), 5);
    }
    EXPECT_THAT(Flat(kept), ElementsAre(20, 30, 21, 31)) << "a window that still fits sees the new cells";
}

} // namespace
} // namespace MERVO::Tessera
