#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/functors/scripted_functors.h"
#include "tests/support/log_capture.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Range = DataFrame::Range;
using Cells = std::vector<std::vector<std::int32_t>>;

TEST(WindowApplyNullary, RunsOnItsCells)
{
    const DataFrame table = LetteredTable(3);
    DataFrameRef window = table.Slice(Range{1, 3}, Range{1, 3});
    Script script;
    EXPECT_EQ(window.ApplyInplace(RaiseFactory(script)), 0);
    EXPECT_EQ(ColumnsOf(table), (Cells{{0, 1, 2, 3, 4}, {100, 1101, 1102, 103, 104}, {400, 1401, 1402, 403, 404}}));
}

TEST(WindowApplyUnary, WritesIntoTheCellsOfItsWindow)
{
    const DataFrame target = LetteredTable(4);
    const BaseSeries* column = target.GetColumn(1).get();
    const DataFrame source = LetteredTable(3);
    DataFrameRef window = target.Slice(Range{2, 4}, Range{1, 3});
    Script script;
    EXPECT_EQ(window.ApplyInplace(ScriptedFactory(script), source.Slice(Range{3, 5}, Range{0, 2})), 0);
    EXPECT_EQ(ColumnsOf(target),
        (Cells{{0, 1, 2, 3, 4}, {100, 101, 6, 8, 104}, {400, 401, 206, 208, 404}, {900, 901, 902, 903, 904}}));
    EXPECT_EQ(target.GetColumn(1).get(), column) << "the column is the same";
    EXPECT_THAT(target.GetColumnName(), ElementsAre("a", "b", "c", "d")) << "and has its name";
}

// Overlap is told by columns: rows that don't meet are computed before they are written as well.
TEST(WindowApplyUnary, ReadsOldValuesWhereItOverlapsItsSource)
{
    for (const int shift : {-1, 0, 1}) {
        const DataFrame table = LetteredTable(4);
        Cells expected = ColumnsOf(table);
        const auto first = static_cast<unsigned int>(1 + shift);
        DataFrameRef window = table.Slice(Range{0, 4}, Range{1, 3});
        Script script;
        EXPECT_EQ(window.ApplyInplace(ScriptedFactory(script), table.Slice(Range{1, 5}, Range{first, first + 2})), 0);
        const Cells before = ColumnsOf(LetteredTable(4));
        for (std::size_t k = 0; k < 2; ++k) {
            for (std::size_t r = 0; r < 4; ++r) {
                expected[1 + k][r] = 2 * before[first + k][r + 1];
            }
        }
        EXPECT_EQ(ColumnsOf(table), expected) << "shifted by " << shift;
    }
}

TEST(WindowApply, WritesNothingAtAllWhenAnOverlappingRunFails)
{
    const DataFrame table = LetteredTable(4);
    const Cells before = ColumnsOf(table);
    const DataFrame other = LetteredTable(2);
    Script script;
    script.code = 12;
    script.runsBeforeCode = 1;
    {
        DataFrameRef window = table.Slice(1, {0, 2});
        EXPECT_EQ(window.ApplyInplace(ScriptedFactory(script), table.Slice(1, {1, 3})), 12);
        EXPECT_EQ(ColumnsOf(table), before);
    }
    {
        DataFrameRef window = table.Slice(1, {0, 2});
        script.runs = 0;
        EXPECT_EQ(window.ApplyInplace(MinusFactory(script), other, table.Slice(1, {1, 3})), 12);
        EXPECT_EQ(ColumnsOf(table), before);
    }
    // Without overlap the columns that were finished keep their results.
    DataFrameRef window = table.Slice(1, {0, 2});
    script.runs = 0;
    EXPECT_EQ(window.ApplyInplace(ScriptedFactory(script), table.Slice(1, {2, 4})), 12);
    EXPECT_EQ(ColumnsOf(table)[0], (std::vector<std::int32_t>{800, 802, 804, 806, 808}));
    EXPECT_EQ(ColumnsOf(table)[1], before[1]);
}

// All ways in which two windows of one or two columns may lie on a table of four, or beside it.
TEST(WindowApplyBinary, IsTheSameWhereverItsSourcesLie)
{
    const DataFrame beside = LetteredTable(6).Slice(1, {2, 6});
    for (unsigned int code = 0; code < 3 * 4 * 2 * 4 * 2 * 4; ++code) {
        Choices choices(code);
        const unsigned int first = choices.Next(3);
        const unsigned int lhsFirst = choices.Next(4);
        const unsigned int lhsEnd = lhsFirst + 1 + choices.Next(2);
        const unsigned int rhsFirst = choices.Next(4);
        const unsigned int rhsEnd = rhsFirst + 1 + choices.Next(2);
        const DataFrame table = LetteredTable(4);
        const DataFrame& leftTable = choices.Next(2) == 1 ? beside : table;
        const DataFrame& rightTable = choices.Next(2) == 1 ? beside : table;
        const unsigned int count = std::max(lhsEnd - lhsFirst, rhsEnd - rhsFirst);
        if (lhsEnd > 4 || rhsEnd > 4 || first + count > 4) {
            continue;
        }
        const DataFrameRef lhs = leftTable.Slice(Range{0, 3}, Range{lhsFirst, lhsEnd});
        const DataFrameRef rhs = rightTable.Slice(Range{2, 5}, Range{rhsFirst, rhsEnd});
        const Cells difference = DifferenceOf(lhs, rhs);
        Cells expected = ColumnsOf(table);
        for (std::size_t k = 0; k < count; ++k) {
            std::copy(difference[k].begin(), difference[k].end(), expected[first + k].begin() + 1);
        }
        DataFrameRef window = table.Slice(Range{1, 4}, Range{first, first + count});
        Script script;
        ASSERT_EQ(window.ApplyInplace(MinusFactory(script), lhs, rhs), 0);
        ASSERT_EQ(ColumnsOf(table), expected) << "choices " << code;
    }
}

TEST(WindowAssignment, CopiesCellsAndDoesNotRepointTheWindow)
{
    const DataFrame table = LetteredTable(3);
    const DataFrame other = LetteredTable(3);
    DataFrameRef window = table.Slice(1, {0, 2});
    window = other.Slice(1, {1, 3});
    EXPECT_EQ(ColumnsOf(table)[0], ColumnsOf(other)[1]);
    EXPECT_EQ(ColumnsOf(table)[1], ColumnsOf(other)[2]);
    window = table.Slice(1, {1, 3}); // now a, b, c of the table hold b, c, c
    EXPECT_EQ(ColumnsOf(table)[0], ColumnsOf(other)[2]);
    EXPECT_EQ(window.GetColIndex(), (Range{0, 2}));
    EXPECT_EQ(ColumnsOf(other), ColumnsOf(LetteredTable(3)));

    const LogCapture log;
    window = other.Slice(Range{0, 2}, Range{0, 2});
    EXPECT_EQ(window.GetError().code, 20);
    EXPECT_EQ(window.GetError().message, "operator = (assign) failed");
    EXPECT_EQ(table.GetError().code, 0);
    DataFrameRef otherType = table.Slice(1, {0, 1});
    otherType = TableOf(Column<double>("d", {1, 2, 3, 4, 5}));
    EXPECT_EQ(otherType.GetError().code, 21);
    EXPECT_EQ(otherType.GetError().message, "operator = (assign) failed") << "in place of the functor's text";
}

TEST(WindowApply, ServesListsThroughAHostsFactory)
{
    const DataFrame table = LetteredTable(3, CONTAINER_LIST);
    DataFrameRef window = table.Slice(Range{1, 4}, Range{0, 2});
    Script script;
    const LogCapture log;
    // The result is made, but the functor that moves it into the cells exists for arrays only.
    EXPECT_EQ(window.ApplyInplace(ForBothContainers<Scripted, Func::UnaryBase>(script), window), 21);
    EXPECT_EQ(window.GetError().message, "Check param failed in functor: ErrorUnaryFunctor");
    EXPECT_EQ(ColumnsOf(table), ColumnsOf(LetteredTable(3)));

    DataFrameRef other = table.Slice(Range{1, 4}, Range{0, 2});
    EXPECT_EQ(other.ApplyInplace(ForBothContainers<ScriptedRaise, Func::NullaryBase>(script)), 0);
    EXPECT_EQ(ColumnsOf(table)[1], (std::vector<std::int32_t>{100, 1101, 1102, 1103, 104}));
}

TEST(WindowApply, WithoutAFactoryIsRefused)
{
    const DataFrame table = LetteredTable(1);
    DataFrameRef window(table);
    const LogCapture log;
    EXPECT_EQ(window.ApplyInplace(UnaryFactory(), LetteredTable(1)), 18);
    EXPECT_EQ(window.ApplyInplace(NullaryFactory()), 18);
    EXPECT_EQ(window.ApplyInplace(BinaryFactory(), table, table), 18);
    EXPECT_EQ(ColumnsOf(table), ColumnsOf(LetteredTable(1)));
}

} // namespace
} // namespace MERVO::Tessera
