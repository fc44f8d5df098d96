// Groups of rows with equal keys, by table and by flat call.

#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

#include "tests/functors/pairing.h"
#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Positions = std::vector<std::uint32_t>;

constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();

/// Keys of few values, and a column that numbers the rows.
DataFrame KeyedTable(std::uint64_t seed, std::uint32_t rows)
{
    Random random(seed);
    std::vector<std::int32_t> numbers;
    std::vector<std::string> texts;
    Positions row(rows);
    std::iota(row.begin(), row.end(), 0U);
    for (std::uint32_t i = 0; i < rows; ++i) {
        numbers.push_back(static_cast<std::int32_t>(random.Below(4)) - 2);
        texts.push_back(std::string(random.Below(3) * 9, 't') + "x");
    }
    return TableOf(
        Column<std::int32_t>("number", numbers), Column<std::uint32_t>("row", row), Column<std::string>("text", texts));
}

template <typename T>
std::vector<T> CellsOfColumn(const DataFrame& table, unsigned int k)
{
    return CellsOf<T>(table.GetColumn(k)->GetIterator());
}

// Keys ascend or descend, the first one first; without an order each key's values come as they first appear.
TEST(GroupBy, BringsRowsIntoTheGroupsOfAModel)
{
    for (const std::uint32_t rows : {1U, 2U, 100U}) {
        for (const int form : {0, 1, 2}) { // ascending, descending, unsorted
            const DataFrame source = KeyedTable(rows, rows);
            const auto numbers = CellsOfColumn<std::int32_t>(source, 0);
            const auto texts = CellsOfColumn<std::string>(source, 2);
            Positions order(rows);
            std::iota(order.begin(), order.end(), 0U);
            const auto passBy = [&](const auto& cells) {
                const Positions before = order;
                const auto firstOf = [&](std::uint32_t row) {
                    return std::find_if(
                        before.begin(), before.end(), [&](std::uint32_t other) { return cells[other] == cells[row]; });
                };
                std::stable_sort(order.begin(), order.end(), [&](std::uint32_t left, std::uint32_t right) {
                    return form == 0 ? cells[left] < cells[right]
                        : form == 1  ? cells[right] < cells[left]
                                     : firstOf(left) < firstOf(right);
                });
            };
            passBy(texts);
            passBy(numbers);
            Positions begins;
            for (std::uint32_t i = 0; i < rows; ++i) {
                if (i == 0 || numbers[order[i]] != numbers[order[i - 1]] || texts[order[i]] != texts[order[i - 1]]) {
                    begins.push_back(i);
                }
            }
            begins.push_back(rows);
            const DataFrame expected = source.SelectRow(order);

            DataFrame table = source;
            const Groups outside = table.GroupBy({"number", "text"}, false, form == 0, form != 2);
            EXPECT_TRUE(IsSameTable(table, source));
            EXPECT_EQ(outside.GetRowOrder(), order);
            EXPECT_EQ(outside.GetGroupBegins(), begins);
            EXPECT_EQ(outside.GetGroupNum(), begins.size() - 1);
            EXPECT_THAT(outside.GetKeyColumns(), ElementsAre(0, 2));

            const Groups inside = table.GroupBy(Positions{0, 2}, true, form == 0, form != 2);
            EXPECT_TRUE(IsSameTable(table, expected));
            EXPECT_EQ(inside.GetGroupBegins(), begins);
            EXPECT_TRUE(inside.GetRowOrder().empty());

            for (const Groups* groups : {&outside, &inside}) {
                GroupReader<Groups> reader(0, *groups);
                for (std::size_t g = 0; g + 1 < begins.size(); ++g, ++reader) {
                    const auto [group, label] = *reader;
                    EXPECT_TRUE(IsSameTable(group, expected.Slice(0U, {begins[g], begins[g + 1]})));
                    EXPECT_EQ(label.RowCount(), group.RowCount());
                    EXPECT_THAT(label.GetColumnName(), ElementsAre("number", "text"));
                }
                EXPECT_EQ((*reader).first.ColumnCount(), 0U) << "behind the last group";
            }
        }
    }
}

TEST(GroupBy, IsReadForwardsAndBackwards)
{
    DataFrame table = TableOf(Column<std::int32_t>("key", {3, 1, 2, 1}));
    const Groups groups = table.GroupBy({0}, false, true, true);
    const Groups others = table.GroupBy({0}, false, false, true);
    GroupReader<Groups> reader(0, groups);
    const auto key = [&reader] { return CellsOfColumn<std::int32_t>(reader.GetGroup(), 0); };
    EXPECT_THAT(key(), ElementsAre(1, 1));
    EXPECT_TRUE(reader++ == GroupReader<Groups>(0, others)) << "the number alone counts";
    EXPECT_THAT(key(), ElementsAre(2));
    EXPECT_TRUE(++reader != GroupReader<Groups>(1, groups));
    EXPECT_THAT(key(), ElementsAre(3));
    EXPECT_TRUE(reader-- == GroupReader<Groups>(2, groups));
    EXPECT_THAT(key(), ElementsAre(2));
    reader -= 1;
    EXPECT_THAT(key(), ElementsAre(1, 1));
    reader += 2;
    EXPECT_TRUE(--reader == GroupReader<Groups>(1, groups));
    reader -= 2; // before the first group: a number that no group has
    EXPECT_EQ(reader.GetGroup().ColumnCount() + reader.GetLabel().ColumnCount(), 0U);
}

TEST(GroupBy, KeepsKeysInAscendingOrderOnlyInPlace)
{
    DataFrame table = KeyedTable(3, 5);
    EXPECT_THAT(table.GroupBy({2, 0}, false, true, true).GetKeyColumns(), ElementsAre(2, 0));
    EXPECT_THAT(table.GroupBy({2, 0}, true, true, true).GetKeyColumns(), ElementsAre(0, 2));
}

TEST(GroupBy, TellsFloatingKeysApartByToleranceAndNanAlways)
{
    const std::pair<std::vector<double>, Positions> cases[] = {
        {{1, 2, 1}, {0, 2, 3}},
        {{0.0, 1e-17}, {0, 2}},
        {{0.0, 1e-15}, {0, 1, 2}},
        {{0, 2e-16, 4e-16, 6e-16}, {0, 4}}, // each is as good as equal to the next one
        {{1.0, NO_VALUE, NO_VALUE}, {0, 1, 2, 3}},
    };
    for (const auto& [keys, begins] : cases) {
        DataFrame table = TableOf(Column<double>("key", keys));
        EXPECT_EQ(table.GroupBy({0}, false, true, true).GetGroupBegins(), begins);
    }
}

TEST(GroupBy, OutlivesItsTableAndSeesWhatIsWritten)
{
    auto table = std::make_unique<DataFrame>(KeyedTable(3, 20));
    const Groups groups = table->GroupBy({"number"}, true, true, true);
    EXPECT_TRUE(SetValueToIterator<std::uint32_t>(table->GetColumn(1)->GetIterator(), 777, 0));
    table.reset();
    EXPECT_EQ(CellsOfColumn<std::uint32_t>(groups.CopyGroup(0), 1).front(), 777U);
}

TEST(GroupBy, RefusesWithAMessageAndNoGroups)
{
    DataFrame failed = KeyedTable(1, 3);
    failed.SetError({9, "an earlier failure"});
    struct Refusal {
        int line;
        DataFrame table;
        Positions keys;
        const char* text; ///< null where none is told
    };
    const Refusal cases[] = {
        {__LINE__, DataFrame(), {0}, "Invalid or empty dataframe 0, error 0"},
        {__LINE__, KeyedTable(1, 3), {}, "Group index is zero"},
        {__LINE__, KeyedTable(1, 3), {1, 7}, "Group index 7 is out of range 3"},
        {__LINE__, KeyedTable(1, 3), {0, 0}, nullptr},
        {__LINE__, GetEmptyDataFrame({0, 1}, TESSERA_BOOL), {0}, "there is no rows in dataframe"},
        {__LINE__, TableOf(Column<bool>("k", {true}), Column<bool>("list", {true}, CONTAINER_LIST)), {0},
            "Failed to bring the rows into groups, error 2"},
    };
    for (const Refusal& refused : cases) {
        for (const bool inPlace : {false, true}) {
            SCOPED_TRACE(refused.line);
            DataFrame table;
            table.ShallowCopy(refused.table);
            const LogCapture log;
            const Groups groups = table.GroupBy(refused.keys, inPlace, true, true);
            EXPECT_EQ(groups.GetGroupNum(), 0U);
            EXPECT_TRUE(groups.GetGroupBegins().empty());
            EXPECT_EQ(table.GetError().code, 0);
            EXPECT_TRUE(refused.text == nullptr ? log.Count() == 0 : log.Has(1, refused.text));
        }
    }
    const LogCapture log;
    EXPECT_EQ(failed.GroupBy({0}, true, true, true).GetGroupNum(), 0U);
    EXPECT_TRUE(log.Has(1, "Invalid or empty dataframe 3, error 9"));
    EXPECT_EQ(KeyedTable(1, 3).GroupBy(2, nullptr, true, true, true).GetGroupNum(), 0U);
    EXPECT_EQ(KeyedTable(1, 3).GroupBy({"nobody"}, true, true, true).GetGroupNum(), 0U);

    // Nested tables neither sort nor end groups, and are moved all the same.
    DataFrame nested =
        TableOf(Column<DataFrame>("t", SampleValues<DataFrame>(3)), Column<bool>("b", {true, false, true}));
    EXPECT_THAT(nested.GroupBy({1, 0}, true, true, true).GetGroupBegins(), ElementsAre(0, 1, 3));
    EXPECT_EQ(CellsOfColumn<DataFrame>(nested, 0)[0].To1DVector<std::int32_t>()[0], 1);
}

// ---- Flat calls

TEST(FlatGroupBy, MakesATableOfEachGroupInDescendingOrder)
{
    const Handle table(TableOf(Column<std::int32_t>("k", {1, 2, 1}), Column<std::string>("v", {"a", "b", "c"})));
    const uint32_t keys[] = {0};
    MERVO_TSR_GROUP_ARRAY* array = MERVO_TSR_GroupBy(table.Get(), keys, 1);
    ASSERT_NE(array, nullptr);
    ASSERT_EQ(array->count, 2U);
    EXPECT_TRUE(IsSameTable(
        *array->entries[0].dataFrame, TableOf(Column<std::int32_t>("k", {2}), Column<std::string>("v", {"b"}))));
    EXPECT_TRUE(IsSameTable(*array->entries[1].dataFrame,
        TableOf(Column<std::int32_t>("k", {1, 1}), Column<std::string>("v", {"a", "c"}))));
    EXPECT_THAT(CellsOfColumn<std::string>(table.Table(), 1), ElementsAre("b", "a", "c"));
    MERVO_TSR_ReleaseGroupArray(&array);
    EXPECT_EQ(array, nullptr);
}

TEST(FlatGroupBy, RefusesWithAMessage)
{
    const Handle table(KeyedTable(2, 4));
    const Handle window{DataFrameRef(table.Table())};
    const uint32_t keys[] = {0, 9};
    struct Refusal {
        int line;
        MERVO_TSR_CONTEXT* table;
        const uint32_t* keys;
        uint32_t count;
        const char* text;
    };
    for (const Refusal& refused : {Refusal{__LINE__, table.Get(), nullptr, 1, "Input is nullptr"},
             Refusal{__LINE__, table.Get(), keys, 0, "Input is nullptr"},
             Refusal{__LINE__, nullptr, keys, 1, "Input is nullptr checking data frame"},
             Refusal{__LINE__, window.Get(), keys, 1, "Input is nullptr checking data frame"},
             Refusal{__LINE__, table.Get(), keys, 2, "Groupby length is zero"}}) {
        const LogCapture log;
        EXPECT_EQ(MERVO_TSR_GroupBy(refused.table, refused.keys, refused.count), nullptr) << refused.line;
        EXPECT_EQ(log.Texts(1).back(), std::string("[MERVO_TSR_GroupBy] ") + refused.text) << refused.line;
    }
    const LogCapture log;
    MERVO_TSR_GROUP_ARRAY* none = nullptr;
    MERVO_TSR_ReleaseGroupArray(&none);
    MERVO_TSR_ReleaseGroupArray(nullptr);
    EXPECT_THAT(log.Texts(1),
        ElementsAre(
            "[MERVO_TSR_ReleaseGroupArray] Input is nullptr", "[MERVO_TSR_ReleaseGroupArray] Input is nullptr"));
}

} // namespace
} // namespace MERVO::Tessera
