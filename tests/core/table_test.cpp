#include "tessera/core/data_frame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "tests/core/letters.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(sizeof(DataFrame) == sizeof(DataFrameRef) && sizeof(DataFrame) == sizeof(DataFrameView),
    "nested tables are stored by value, whatever class they were written as");

TEST(NewTable, IsHealthyAndEmpty)
{
    const DataFrame table;
    EXPECT_EQ(table.GetError().code, 0);
    EXPECT_EQ(table.GetError().message, "healthy dataframe");
    EXPECT_EQ(table.GetRowIndex(), (Range{0, 0}));
    EXPECT_EQ(table.GetColIndex(), (Range{0, 0}));
    EXPECT_EQ(table.Type(), TESSERA_INVALID);
    EXPECT_EQ(table.ContainerType(), NO_CONTAINER);
    EXPECT_THAT(table.GetColumnName(), IsEmpty());
    EXPECT_THAT(*table.GetNameToIndex(), IsEmpty());
    EXPECT_EQ(table.GetColumn(0), nullptr);
}

TEST(TableError, KeepsTheFirstFailure)
{
    const DataFrame table;
    const LogCapture log;
    table.SetError({0, "nothing happened"});
    EXPECT_EQ(table.GetError().message, "healthy dataframe");
    EXPECT_EQ(log.Count(), 0U);
    table.SetError({7, "first"});
    table.SetError({4, "second"});
    table.SetError({0, "nothing happened"});
    EXPECT_EQ(table.GetError().code, 7);
    EXPECT_EQ(table.GetError().message, "first");
    EXPECT_THAT(log.Texts(1), ElementsAre("set df error 7, first, df error 7", "set df error 4, second, df error 7"));
}

TEST(TableError, IsLiftedByAssignmentAlone)
{
    DataFrame table;
    table.SetError({7, "first"});
    {
        const LogCapture log;
        EXPECT_EQ(table.RefreshView(), 7);
        EXPECT_TRUE(log.Has(1, "Invalid dataframe 7 while refreshing view"));
    }
    table = Letters();
    EXPECT_EQ(table.GetError().code, 0);
    EXPECT_EQ(table.ColumnCount(), 4U);
    table.SetError({7, "first"});
    const DataFrame healthy = Letters();
    table = healthy;
    EXPECT_EQ(table.GetError().code, 0);
    EXPECT_EQ(Flat(table), Flat(healthy));
}

TEST(ColumnNames, BecomeUniqueWhenNeeded)
{
    using Names = std::vector<std::string>;
    const struct {
        Names given;
        Names unique;
        bool warns;
    } cases[] = {
        {{"a", "b", "c", "d"}, {"a", "b", "c", "d"}, false},
        {{"a", "a", "a", "A"}, {"a", "a_1", "a_1_1", "A"}, true},
        {{"a", "a_1", "a", "a"}, {"a", "a_1", "a_1_1", "a_1_1_1"}, true},
        {{"a", "a", "a_1", "x"}, {"a", "a_1", "a_1_1", "x"}, true},
        {{"", "", "", "_1"}, {"", "_1", "_1_1", "_1_1_1"}, true},
    };
    for (const auto& [given, unique, warns] : cases) {
        SCOPED_TRACE(testing::PrintToString(given));
        DataFrame table = Letters();
        const LogCapture log;
        EXPECT_EQ(table.SetColumnName(given), 0);
        EXPECT_EQ(log.Has(2, "Some names are duplicated, the actual column name might be different"), warns);
        EXPECT_EQ(table.GetColumn(2)->GetName(), given[2]) << "names are made unique only when they are needed";
        EXPECT_EQ(table.GetColumnName(), unique);
        for (unsigned int k = 0; k < 4; ++k) {
            EXPECT_EQ(table.GetColumn(k)->GetName(), unique[k]) << "the columns carry the unique names";
            EXPECT_EQ(table.GetNameToIndex()->at(unique[k]), k);
        }
        EXPECT_EQ(table.GetNameToIndex()->size(), 4U);
    }
}

TEST(ColumnNames, AreThoseOfTheWindow)
{
    const DataFrame table = Letters();
    DataFrameRef window = table.Slice(1, {1, 3});
    EXPECT_THAT(window.GetColumnName(), ElementsAre("b", "c"));
    EXPECT_EQ(window.SetColumnName({"x", "a"}), 0);
    EXPECT_THAT(window.GetColumnName(), ElementsAre("x", "a_1")) << "unique among all columns, not those of the window";
    EXPECT_EQ(Flat(window["a_1"])[0], 20);
    EXPECT_EQ(table.GetColumn(0)->GetName(), "a");
    EXPECT_EQ(table.GetColumn(3)->GetName(), "d");
}

TEST(ColumnNames, AreRefusedByCountAndState)
{
    DataFrame table = Letters();
    DataFrameRef window = table.Slice(1, {1, 3});
    const LogCapture log;
    EXPECT_EQ(table.SetColumnName({"x"}), 5);
    EXPECT_EQ(window.SetColumnName({"w", "x", "y", "z"}), 5);
    EXPECT_THAT(log.Texts(1),
        ElementsAre("Number of column names and number of series in DataFrame not match (1 != 4)",
            "Number of column names and number of series in DataFrame not match (4 != 2)"));
    EXPECT_EQ(table.GetError().code, 0);
    window.SetError({9, "failed"});
    EXPECT_EQ(window.SetColumnName({"x", "y"}), 6);
    EXPECT_TRUE(log.Has(1, "Trying to set ColumnName from invalid Dataframe [9]"));
    EXPECT_THAT(window.GetColumnName(), IsEmpty());
    EXPECT_TRUE(log.Has(1, "Trying to get ColumnName from invalid Dataframe [9]"));
    EXPECT_THAT(table.GetColumnName(), ElementsAre("a", "b", "c", "d"));
}

TEST(ColumnNames, WithoutMemoryFailTheTable)
{
    const DataFrame table = Letters();
    const LogCapture log;
    {
        const FailingAllocation failing(0);
        EXPECT_EQ(table.GetNameToIndex(), nullptr);
    }
    EXPECT_EQ(table.GetError().code, 3);
    EXPECT_EQ(table.GetError().message, "out of memory on refreshing view.");
    EXPECT_TRUE(log.Has(1, "Failed to get name2Index 3"));

    const DataFrame other = Letters();
    std::optional<FailingAllocation> failing(std::in_place, 0U);
    const DataFrameRef slice = other.Slice(0, {0, 1});
    failing.reset();
    EXPECT_EQ(slice.GetError().code, 3);
    EXPECT_EQ(slice.GetError().message, "Failed to get name2Index");
}

TEST(TypeOfATable, IsTheCommonOneOfItsColumns)
{
    const auto ints = [](ContainerID container) { return Column<std::int32_t>("i", {1, 2}, container); };
    const auto doubles = [] { return Column<double>("d", {1, 2}); };
    const DataFrame mixed = TableOf(ints(CONTAINER_ARRAY), doubles(), doubles());
    const DataFrame containers = TableOf(ints(CONTAINER_LIST), ints(CONTAINER_ARRAY));
    const DataFrame failed = TableOf(doubles());
    failed.SetError({1, "failed"});
    const struct {
        const char* name;
        DataFrameRef table;
        int type;
        int container;
    } cases[] = {
        {"one type", TableOf(doubles(), doubles()), TESSERA_DOUBLE, CONTAINER_ARRAY},
        {"mixed types", mixed, 15, CONTAINER_ARRAY},
        {"a window of one type", mixed.Slice(1, {1, 3}), TESSERA_DOUBLE, CONTAINER_ARRAY},
        {"lists", TableOf(ints(CONTAINER_LIST)), TESSERA_INT32, CONTAINER_LIST},
        {"mixed containers", containers, TESSERA_INT32, -1},
        {"failed", failed, -1, -1},
        {"empty", DataFrame(), -1, -1},
        {"no rows", TableOf(Column<double>("d", {})), TESSERA_DOUBLE, CONTAINER_ARRAY},
    };
    for (const auto& [name, table, type, container] : cases) {
        EXPECT_EQ(static_cast<int>(table.Type()), type) << name;
        EXPECT_EQ(static_cast<int>(table.ContainerType()), container) << name;
    }
}

TEST(TableOfColumns, NeedsOneLength)
{
    EXPECT_EQ(TableOf().GetError().code, 0);
    EXPECT_EQ(Letters().GetRowIndex(), (Range{0, 5}));
    EXPECT_EQ(Letters().GetColIndex(), (Range{0, 4}));
    const DataFrame uneven = TableOf(Column<double>("d", {1, 2}), Column<double>("d", {1}));
    EXPECT_EQ(uneven.GetError().code, 15);
    EXPECT_EQ(uneven.GetError().message, "series should have the same length");
    EXPECT_EQ(TableOf(Column<double>("d", {1, 2}), SeriesPtr()).GetError().code, 15);
    EXPECT_EQ(TableOf(SeriesPtr(), Column<double>("d", {1, 2})).GetError().code, 15);
    const LogCapture log;
    EXPECT_EQ(TableOf(Column<double>("d", {1, 2}), GetErrorSeries()).GetError().code, 15);
}

TEST(MovedTable, SharesWithWhereItWasMovedTo)
{
    DataFrame source = Letters();
    DataFrame target(std::move(source));
    EXPECT_EQ(Flat(source), Flat(target)); // NOLINT: what was moved from can still be asked
    ASSERT_TRUE(SetValueToIterator<std::int32_t>(target.GetColumn(0)->GetIterator(), 99, 0));
    EXPECT_EQ(Flat(source)[0], 99);
    DataFrame third;
    third = std::move(target);
    EXPECT_EQ(Flat(third)[0], 99);
    EXPECT_EQ(third.GetColumn(0), source.GetColumn(0)) << "no cell was copied";

    source.SetError({9, "failed"});
    third = std::move(source);
    EXPECT_EQ(third.GetError().code, 9) << "the error comes along";
}

TEST(MovingAssignment, OfColumnsOfTheTableMovesThem)
{
    DataFrame table = Letters();
    const BaseSeries* second = table.GetColumn(1).get();
    const DataFrameRef older = table.Slice(Range{0, 5}, Range{0, 3});
    table = table.Slice(1, {1, 3});
    EXPECT_EQ(table.GetColumn(0).get(), second) << "moved, not copied";
    EXPECT_EQ(table.GetColIndex(), (Range{0, 2}));
    EXPECT_EQ(table.GetRowIndex(), (Range{0, 5}));
    EXPECT_THAT(table.GetColumnName(), ElementsAre("b", "c"));
    EXPECT_THAT(Flat(table["c"]), ElementsAre(20, 21, 22, 23, 24));

    const LogCapture log;
    EXPECT_NE(older.GetColumn(0), nullptr) << "what was not chosen stays with older slices";
    EXPECT_EQ(older.GetColumn(1), nullptr);
    EXPECT_EQ(older.GetColumn(2), nullptr);
    EXPECT_THAT(Flat(older), IsEmpty());
    EXPECT_THAT(older.GetColumnName(), ElementsAre("a", "", ""));
    EXPECT_EQ(static_cast<int>(older.Type()), 15);
    EXPECT_EQ(static_cast<int>(older.ContainerType()), -1);
    EXPECT_EQ(older[1].Type(), TESSERA_INVALID);
    DataFrame copy;
    EXPECT_EQ(CopyOver(copy, older), 5);
    EXPECT_EQ(copy.GetError().message, "nullptr error in unary functorCopySeries");
    DataFrameRef target(older);
    EXPECT_EQ(CopyOver(target, Letters().Slice(1, {0, 3})), 5);
}

TEST(MovingAssignment, FindsNamesAmongTheColumnsThatStayed)
{
    DataFrame table = Letters();
    DataFrameRef slice = table.Slice(1, {1, 3});
    EXPECT_THAT(slice.GetColumnName(), ElementsAre("b", "c")); // its map now counts from the old first column
    table = std::move(slice);
    EXPECT_THAT(Flat(table["b"]), ElementsAre(10, 11, 12, 13, 14));
    EXPECT_EQ(table["a"].GetError().code, 5);
    EXPECT_THAT(*table.GetNameToIndex(), ElementsAre(testing::Pair("b", 0U), testing::Pair("c", 1U)));
}

TEST(MovingAssignment, TakesTheErrorOfTheSlice)
{
    DataFrame table = Letters();
    DataFrameRef slice = table.Slice(1, {2, 4});
    slice.SetError({9, "failed"});
    table = std::move(slice);
    EXPECT_EQ(table.GetError().code, 9);
    EXPECT_EQ(table.GetColIndex(), (Range{0, 2}));
}

TEST(MovingAssignment, OfAnythingElseCopies)
{
    DataFrame table = Letters();
    const DataFrameRef older = table["d"];
    table = table[Range{1, 3}]; // rows
    EXPECT_EQ(table.GetRowIndex(), (Range{0, 2}));
    EXPECT_THAT(Flat(table), ElementsAre(1, 11, 21, 31, 2, 12, 22, 32));
    EXPECT_THAT(Flat(older), ElementsAre(30, 31, 32, 33, 34));

    const DataFrame other = Letters();
    table = other["b"];
    EXPECT_THAT(Flat(table), ElementsAre(10, 11, 12, 13, 14));
    EXPECT_NE(table.GetColumn(0), other.GetColumn(1));

    DataFrameRef& itself = table;
    table = std::move(itself);
    EXPECT_THAT(Flat(table), ElementsAre(10, 11, 12, 13, 14));

    const LogCapture log;
    table = other["missing"];
    EXPECT_EQ(table.GetError().code, 5);
    EXPECT_EQ(table.GetError().message, "this is from deepcopy");
}

TEST(GetEmptyDataFrame, MakesColumnsOfAShapeAndType)
{
    const DataFrame table = GetEmptyDataFrame({3, 2}, TESSERA_STRING);
    EXPECT_EQ(table.GetError().code, 0);
    EXPECT_THAT(table.GetColumnName(), ElementsAre("col_0", "col_1"));
    EXPECT_EQ(table.Type(), TESSERA_STRING);
    EXPECT_EQ(table.ContainerType(), CONTAINER_ARRAY);
    EXPECT_EQ(table.ToVector<std::string>(), (std::vector<std::vector<std::string>>(3, {"", ""})));
    EXPECT_EQ(GetEmptyDataFrame({3, 0}, TESSERA_STRING).ColumnCount(), 0U);
    EXPECT_EQ(GetEmptyDataFrame({0, 3}, TESSERA_INT8).ColumnCount(), 3U);
    const LogCapture log;
    EXPECT_EQ(GetEmptyDataFrame({3, 2}, TESSERA_TYPE_END).Type(), TESSERA_INVALID);
}

TEST(GetEmptyDataFrame, MakesColumnsLikeThoseOfAWindow)
{
    const DataFrame table = TableOf(Column<std::int32_t>("a", {1, 2, 3}), Column<std::string>("b", {"x", "y", "z"}),
        Column<bool>("c", {true, true, true}, CONTAINER_LIST));
    const DataFrame like = GetEmptyDataFrame(table.Slice(Range{1, 3}, Range{1, 3}));
    EXPECT_EQ(like.GetRowIndex(), (Range{0, 2}));
    EXPECT_THAT(like.GetColumnName(), ElementsAre("col_0", "col_1"));
    EXPECT_EQ(like.GetColumn(0)->GetTypeId(), TESSERA_STRING);
    EXPECT_EQ(like.GetColumn(1)->GetTypeId(), TESSERA_BOOL);
    EXPECT_EQ(like.GetColumn(1)->GetAttr().containerId, CONTAINER_LIST);
    EXPECT_THAT(like["col_0"].To1DVector<std::string>(), ElementsAre("", ""));
    EXPECT_THAT(like["col_1"].To1DVector<bool>(), ElementsAre(false, false));
}

} // namespace
} // namespace MERVO::Tessera
