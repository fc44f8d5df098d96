#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/functors/scripted_functors.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Range = DataFrame::Range;
using Row = std::vector<std::int32_t>;
using Cells = std::vector<Row>;

TEST(TableApplyUnary, BuildsNewColumnsAsTheFunctorSays)
{
    const DataFrame source = LetteredTable(3);
    const struct {
        const char* name;
        DataFrameRef source;
        SeriesAttr (*shape)(SeriesAttr);
        int type;
        Cells cells;
        std::vector<std::string> names;
    } cases[] = {
        {"as long as before", source.Slice(1, {1, 3}), [](SeriesAttr attr) { return attr; }, TESSERA_INT32,
            {{200, 202, 204, 206, 208}, {800, 802, 804, 806, 808}}, {"b", "c"}},
        {"a reduction of a window", source.Slice(Range{1, 4}, Range{0, 2}), AsOneCell, TESSERA_INT32, {{6}, {306}},
            {"a", "b"}},
        {"longer", source.Slice(Range{0, 2}, Range{1, 2}), [](SeriesAttr attr) { return WithLength(attr, 3); },
            TESSERA_INT32, {{200, 202, 0}}, {"b"}},
        {"another type", source["c"], AsDouble, TESSERA_DOUBLE, {}, {"c"}},
    };
    for (const auto& [name, src, shape, type, cells, names] : cases) {
        SCOPED_TRACE(name);
        // What the table held before, more or fewer columns, leaves no trace.
        for (const int held : {0, 1, 5}) {
            DataFrame table = LetteredTable(held);
            static_cast<void>(table.GetColumnName()); // so that an old map of names is there to be found stale
            Script script = Shaped(shape);
            ASSERT_EQ(table.ApplyInplace(ScriptedFactory(script), src), 0);
            EXPECT_EQ(static_cast<int>(table.Type()), type);
            if (!cells.empty()) {
                EXPECT_EQ(ColumnsOf(table), cells);
                EXPECT_EQ(table.GetRowIndex(), (Range{0, static_cast<unsigned int>(cells[0].size())}));
            }
            EXPECT_EQ(table.GetColIndex(), (Range{0, static_cast<unsigned int>(names.size())}));
            EXPECT_EQ(table.GetColumnName(), names);
            EXPECT_EQ(table[names.back().c_str()].GetError().code, 0);
            EXPECT_EQ(table.GetNameToIndex()->size(), names.size());
        }
    }
    EXPECT_EQ(ColumnsOf(source), ColumnsOf(LetteredTable(3)));
}

TEST(TableApplyUnary, LandsOnTheColumnsOfItsOwnThatItReads)
{
    for (unsigned int first = 0; first < 4; ++first) {
        for (unsigned int end = first + 1; end <= 4; ++end) {
            DataFrame table = LetteredTable(4);
            const Cells before = ColumnsOf(table);
            Script script;
            ASSERT_EQ(table.ApplyInplace(ScriptedFactory(script), table.Slice(Range{1, 4}, Range{first, end})), 0);
            Cells expected;
            std::vector<std::string> names;
            for (unsigned int k = first; k < end; ++k) {
                expected.push_back({2 * before[k][1], 2 * before[k][2], 2 * before[k][3]});
                names.push_back(std::string(1, static_cast<char>('a' + k)));
            }
            EXPECT_EQ(ColumnsOf(table), expected) << first << " to " << end;
            EXPECT_EQ(table.GetColumnName(), names);
        }
    }
    DataFrame table = LetteredTable(2);
    Script script;
    ASSERT_EQ(table.ApplyInplace(ScriptedFactory(script), table), 0);
    EXPECT_EQ(ColumnsOf(table), (Cells{{0, 2, 4, 6, 8}, {200, 202, 204, 206, 208}}));
}

TEST(TableApply, MakesDuplicatedNamesUnique)
{
    DataFrame source = LetteredTable(3);
    ASSERT_EQ(source.SetColumnName({"x", "x", "y"}), 0);
    DataFrame table = LetteredTable(1);
    Script script;
    ASSERT_EQ(table.ApplyInplace(ScriptedFactory(script), source), 0);
    EXPECT_EQ(table.GetColumn(1)->GetName(), "x") << "until names are needed";
    EXPECT_THAT(table.GetColumnName(), ElementsAre("x", "x_1", "y"));
    EXPECT_EQ(table["a"].GetError().code, 5);
}

TEST(TableApplyUnary, KeepsTheColumnsThatItReplacedBeforeAFailure)
{
    DataFrame table = LetteredTable(3);
    Script script = FailingAfter(1);
    EXPECT_EQ(table.ApplyInplace(ScriptedFactory(script), LetteredTable(3).Slice(1, {1, 3})), 12);
    EXPECT_EQ(ColumnsOf(table), (Cells{{200, 202, 204, 206, 208}, {100, 101, 102, 103, 104}, ColumnsOf(table)[2]}));
    EXPECT_EQ(table.ColumnCount(), 3U);
}

TEST(TableApplyNullary, RunsOnItsColumns)
{
    DataFrame table = LetteredTable(2);
    Script script;
    EXPECT_EQ(table.ApplyInplace(RaiseFactory(script)), 0);
    EXPECT_EQ(ColumnsOf(table)[1], (Row{1100, 1101, 1102, 1103, 1104}));
    // A walk ends with a refreshed view, so a length that a functor keeps may differ from what it says.
    script.shape = AsOneCell;
    ASSERT_EQ(table.SetColumnName({"x", "x"}), 0);
    EXPECT_EQ(table.ApplyInplace(RaiseFactory(script)), 0);
    EXPECT_EQ(table.GetColumn(1)->GetName(), "x_1");
}

// All ways in which sources of one to three columns may lie on the table that receives, or beside it. Left stays left.
TEST(TableApplyBinary, IsTheSameWhereverItsSourcesLie)
{
    const DataFrame beside = LetteredTable(7).Slice(1, {3, 7});
    for (unsigned int code = 0; code < 4 * 3 * 4 * 3 * 2 * 2; ++code) {
        Choices choices(code);
        const unsigned int lhsFirst = choices.Next(4);
        const unsigned int lhsEnd = lhsFirst + 1 + choices.Next(3);
        const unsigned int rhsFirst = choices.Next(4);
        const unsigned int rhsEnd = rhsFirst + 1 + choices.Next(3);
        const bool isLeftBeside = choices.Next(2) == 1;
        const bool isRightBeside = choices.Next(2) == 1;
        const bool broadcasts =
            lhsEnd - lhsFirst == rhsEnd - rhsFirst || lhsEnd - lhsFirst == 1 || rhsEnd - rhsFirst == 1;
        for (const int heldColumns : {4, 1}) {
            const bool isPossible = heldColumns == 4 || (isLeftBeside && isRightBeside);
            if (lhsEnd > 4 || rhsEnd > 4 || !broadcasts || !isPossible) {
                continue;
            }
            DataFrame table = LetteredTable(heldColumns);
            const DataFrameRef lhs = (isLeftBeside ? beside : table).Slice(Range{0, 3}, Range{lhsFirst, lhsEnd});
            const DataFrameRef rhs = (isRightBeside ? beside : table).Slice(Range{2, 5}, Range{rhsFirst, rhsEnd});
            const Cells expected = DifferenceOf(lhs, rhs);
            const auto names = (lhs.ColumnCount() >= rhs.ColumnCount() ? lhs : rhs).GetColumnName();
            Script script;
            ASSERT_EQ(table.ApplyInplace(MinusFactory(script), lhs, rhs), 0);
            ASSERT_EQ(ColumnsOf(table), expected) << "choices " << code;
            ASSERT_EQ(table.GetColumnName(), names);
            ASSERT_EQ(table.GetRowIndex(), (Range{0, 3}));
        }
    }
    EXPECT_EQ(ColumnsOf(beside), ColumnsOf(LetteredTable(7).Slice(1, {3, 7})));
}

TEST(TableApplyBinary, ConvertsSourcesToTheContainerOfTheColumnItReplaces)
{
    Script script;
    const auto make = ForBothContainers<ScriptedMinus, Func::BinaryBase>(script);
    for (const ContainerID held : BOTH_CONTAINERS) {
        for (const ContainerID left : BOTH_CONTAINERS) {
            for (const ContainerID right : BOTH_CONTAINERS) {
                for (const int rightCount : {1, 2}) {
                    DataFrame table = LetteredTable(2, held);
                    const DataFrame lhs = LetteredTable(2, left);
                    const DataFrame rhs = LetteredTable(rightCount, right);
                    ASSERT_EQ(table.ApplyInplace(make, lhs[Range{1, 3}], rhs[Range{0, 2}]), 0);
                    EXPECT_EQ(ColumnsOf(table), (Cells{{1, 1}, rightCount == 1 ? Row{101, 101} : Row{1, 1}}));
                    EXPECT_EQ(table.ContainerType(), held);

                    DataFrame empty; // takes the container of the side with several columns, else of the left one
                    ASSERT_EQ(empty.ApplyInplace(make, lhs, rhs), 0);
                    EXPECT_EQ(empty.ContainerType(), left);
                    DataFrame flipped;
                    ASSERT_EQ(flipped.ApplyInplace(make, rhs, lhs), 0);
                    EXPECT_EQ(flipped.ContainerType(), rightCount == 1 ? left : right);
                }
            }
        }
    }
}

TEST(TableApplyBinary, TellsAConversionWithoutMemory)
{
    const std::vector<std::int32_t> cells(5000, 1);
    const DataFrame lists = TableOf(Column<std::int32_t>("a", cells, CONTAINER_LIST));
    const DataFrame arrays = TableOf(Column<std::int32_t>("a", cells));
    const DataFrame pair = TableOf(Column<std::int32_t>("a", cells), Column<std::int32_t>("b", cells));
    const struct {
        const DataFrame* lhs;
        const char* log;
    } cases[] = {
        {&arrays, "Error on converting container type of series while applying binary op N vs N"},
        {&pair, "Error on converting container type of series while applying binary op 1 vs N"},
    };
    for (const auto& [lhs, text] : cases) {
        DataFrame table;
        Script script;
        const LogCapture log;
        const FailingAllocation failing(0, 20000);
        EXPECT_NE(table.ApplyInplace(MinusFactory(script), *lhs, lists), 0);
        EXPECT_TRUE(FailingAllocation::HasFailed());
        EXPECT_TRUE(log.Has(1, text));
    }
    // A single column of the table's own is copied first, for the results may be written over it.
    DataFrame table = TableOf(Column<std::int32_t>("a", cells), Column<std::int32_t>("b", cells));
    Script script;
    const LogCapture log;
    const FailingAllocation failing(0, 20000);
    EXPECT_EQ(table.ApplyInplace(MinusFactory(script), table, table["a"]), 3);
    EXPECT_TRUE(log.Has(1, "Error on copying single series to tmp."));
    EXPECT_EQ(table.ColumnCount(), 2U);
}

TEST(TableApply, TellsAResultWithoutMemory)
{
    const DataFrame source = TableOf(Column<std::int32_t>("a", std::vector<std::int32_t>(5000, 1)));
    Script script;
    const auto apply = [&](auto&& call) {
        DataFrame table = LetteredTable(2);
        const FailingAllocation failing(0, 20000);
        const ErrorCode code = call(table);
        EXPECT_EQ(code, 3);
        EXPECT_EQ(table.GetError().code, 3);
        return table.GetError().message;
    };
    EXPECT_EQ(apply([&](DataFrame& table) { return table.ApplyInplace(ScriptedFactory(script), source); }),
        "out of memory on building series for functor: Scripted");
    EXPECT_EQ(apply([&](DataFrame& table) { return table.ApplyInplace(MinusFactory(script), source, source); }),
        "out of memory on building series for functor: Minus");
    DataFrameRef window(source);
    const FailingAllocation failing(0, 20000);
    EXPECT_EQ(window.ApplyInplace(ScriptedFactory(script), source), 3);
    EXPECT_EQ(window.GetError().code, 3);
}

} // namespace
} // namespace MERVO::Tessera
