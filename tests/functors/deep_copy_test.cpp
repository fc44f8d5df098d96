#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/functors/scripted_functors.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/handle.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Range = DataFrame::Range;
using Cells = std::vector<std::vector<std::int32_t>>;

TEST(DeepCopy, TakesTheWindowAndStandsOnItsOwn)
{
    const DataFrame table = LetteredTable(4);
    DataFrame copy(table.Slice(Range{1, 3}, Range{1, 3}));
    EXPECT_EQ(copy.GetRowIndex(), (Range{0, 2}));
    EXPECT_EQ(copy.GetColIndex(), (Range{0, 2}));
    EXPECT_THAT(copy.GetColumnName(), ElementsAre("b", "c"));
    EXPECT_EQ(ColumnsOf(copy), (Cells{{101, 102}, {401, 402}}));
    ASSERT_TRUE(SetValueToIterator<std::int32_t>(table.GetColumn(1)->GetIterator(), 7, 1));
    EXPECT_EQ(ColumnsOf(copy)[0][0], 101);

    copy.DeepCopy(copy); // onto itself
    EXPECT_EQ(ColumnsOf(copy), (Cells{{101, 102}, {401, 402}}));
    copy = copy["c"]; // columns of its own
    EXPECT_EQ(ColumnsOf(copy), (Cells{{401, 402}}));
    DataFrame& itself = copy;
    copy = itself;
    EXPECT_EQ(ColumnsOf(copy), (Cells{{401, 402}}));
    const DataFrameRef lastRow = copy[1];
    copy = lastRow; // rows of its own
    EXPECT_EQ(ColumnsOf(copy), (Cells{{402}}));
    copy = DataFrameRef();
    EXPECT_EQ(copy.ColumnCount(), 0U);
    EXPECT_EQ(copy.GetError().code, 0);
}

TEST(DeepCopy, OfANestedTableIntoTheOneThatHoldsIt)
{
    DataFrame outer = TableOf(Column<DataFrame>("t", {LetteredTable(2), LetteredTable(3)}));
    const Cursor cells = outer.GetColumn(0)->GetIterator();
    DataFrame& inner = CursorAs<CONTAINER_ARRAY, DataFrame>(cells).mHead[1];
    outer = static_cast<const DataFrame&>(inner);
    EXPECT_EQ(ColumnsOf(outer), ColumnsOf(LetteredTable(3)));
}

TEST(DeepCopy, KeepsAFailureInTheCopy)
{
    const DataFrame failed = FailedTable(9);
    DataFrame copy = LetteredTable(1);
    const LogCapture log;
    copy = failed;
    EXPECT_EQ(copy.GetError().code, 9);
    EXPECT_EQ(copy.GetError().message, "this is from deepcopy");
    EXPECT_EQ(copy.ColumnCount(), 1U) << "what it held stays";
    EXPECT_EQ(DataFrame(failed).GetError().message, "this is from deepcopy");

    // No functor copies lists: the path tells, and the copy keeps the code.
    DataFrame lists = LetteredTable(1);
    lists = static_cast<const DataFrame&>(LetteredTable(2, CONTAINER_LIST));
    EXPECT_EQ(lists.GetError().code, 2);
    EXPECT_EQ(lists.GetError().message, "Copy failed");
    EXPECT_TRUE(log.Has(1, "Functor CopySeries can not change the container type 1 to -1"));
}

TEST(DeepCopyCall, ReplacesWhatTheTableHeldAndTellsItsCode)
{
    const DataFrame source = LetteredTable(3);
    const Handle whole(source);
    const Handle window(source[DataFrame::NameRange{"b", "c"}]);
    const Handle failed(FailedTable(9));
    const Handle target(LetteredTable(1));
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_DeepCopy(target.Get(), whole.Get()), 0);
    EXPECT_EQ(ColumnsOf(target.Table()), ColumnsOf(source));
    EXPECT_EQ(MERVO_TSR_DeepCopy(target.Get(), target.Get()), 0);
    EXPECT_EQ(ColumnsOf(target.Table()), ColumnsOf(source));
    EXPECT_EQ(MERVO_TSR_DeepCopy(target.Get(), failed.Get()), 9);
    EXPECT_EQ(MERVO_TSR_DeepCopy(target.Get(), window.Get()), 0) << "an earlier failure goes with the rest";
    EXPECT_EQ(ColumnsOf(target.Table()), (Cells{{100, 101, 102, 103, 104}}));
    {
        const FailingAllocation shortage(1);
        EXPECT_EQ(MERVO_TSR_DeepCopy(target.Get(), whole.Get()), 3);
    }

    const MERVO_TSR_CONTEXT neither{nullptr, nullptr};
    const std::size_t before = log.Count(1);
    EXPECT_EQ(MERVO_TSR_DeepCopy(window.Get(), whole.Get()), 33) << "a window can't receive a copy";
    EXPECT_EQ(MERVO_TSR_DeepCopy(nullptr, whole.Get()), 33);
    EXPECT_EQ(MERVO_TSR_DeepCopy(target.Get(), nullptr), 33);
    EXPECT_EQ(MERVO_TSR_DeepCopy(target.Get(), &neither), 33);
    ASSERT_EQ(log.Count(1), before + 4);
    EXPECT_EQ(log.Texts(1).back(), "[MERVO_TSR_DeepCopy] Input is nullptr");
}

} // namespace
} // namespace MERVO::Tessera
