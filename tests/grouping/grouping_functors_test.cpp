// What the functors behind groups and samples say of themselves, what a host may ask of groups, and labels as a column.

#include <gmock/gmock.h>

#include <tuple>

#include "tessera/tessera.hpp"
#include "tests/support/log_capture.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Counts = std::vector<std::uint32_t>;
using Rows = std::vector<std::int32_t>;

TEST(GroupingFunctors, SayWhatTheirDestinationIs)
{
    constexpr ContainerID ARRAY = CONTAINER_ARRAY;
    Counts begins{0, 2, 5};
    Counts counts{2, 1};
    Counts none;
    Rows rows{0, -1, 1};
    bool isLeft = true;
    DateTime gap(10);
    const Func::GroupTransform<ARRAY, Counts&> spread(begins);
    const Func::GroupTransform<ARRAY, Counts&> spreadNone(none);
    const Func::ApplyGroupOtherCol<ARRAY, Rows&> samples(rows);
    const Func::ApplyGroupTimeLabel<ARRAY, Rows&, Counts&, bool&, bool&, DateTime&> labels(
        rows, counts, isLeft, isLeft, gap);
    const Func::NanRows<ARRAY> nothing;
    const Func::Unique<ARRAY, Counts&> unique(counts);
    const Func::TimeResample<ARRAY, Counts&, const DateTime&, bool&, Rows&, Counts&> windows(
        counts, gap, isLeft, rows, counts);
    const SeriesPtr column = Column<DateTime>("c", {DateTime(1), DateTime(2)});
    const auto expect = [&](const auto& functor, const char* name, std::uint32_t length) {
        const SeriesAttr attr = functor.GetDstAttr(column->GetIterator());
        EXPECT_EQ(functor.GetName(), name);
        EXPECT_EQ(attr.length, length) << name;
        EXPECT_EQ(attr.typeId, TESSERA_DATETIME) << name;
    };
    expect(spread, "GroupTransform", 5);
    expect(spreadNone, "GroupTransform", 0);
    expect(samples, "ApplyGroupOtherCol", 3);
    expect(labels, "ApplyGroupTimeLabel", 3);
    expect(nothing, "NanRows", 2);
    expect(unique, "Unique", 2);
    expect(windows, "TimeResample", 2);
}

TEST(GroupingFunctors, SpreadUntilTheSourceOrTheListEnds)
{
    struct Case {
        std::vector<std::int32_t> source;
        Counts begins;
        std::vector<std::int32_t> result;
    };
    for (Case given : {Case{{7, 8}, {0, 2, 5}, {7, 7, 8, 8, 8}}, Case{{7}, {0, 2, 5}, {7, 7, 0, 0, 0}},
             Case{{7, 8, 9}, {0, 2, 5}, {7, 7, 8, 8, 8}}, Case{{7, 8, 9}, {0, 0, 1, 4}, {8, 9, 9, 9}}}) {
        const SeriesPtr source = Column<std::int32_t>("v", given.source);
        const SeriesPtr result = Column<std::int32_t>("v", std::vector<std::int32_t>(given.result.size()));
        const Func::GroupTransform<CONTAINER_ARRAY, Counts&> spread(given.begins);
        EXPECT_EQ(spread.ProcessSeries(source->GetIterator(), result->GetIterator(), true).code, 0);
        EXPECT_EQ(CellsOf<std::int32_t>(result->GetIterator()), given.result);
    }
}

TEST(GroupingFunctors, NoWindowHasNoWidth)
{
    const LogCapture log;
    Counts index{0};
    Counts counts;
    Rows rows;
    bool isLeft = true;
    const DateTime noWidth(0);
    const Func::TimeResample<CONTAINER_ARRAY, Counts&, const DateTime&, bool&, Rows&, Counts&> windows(
        index, noWidth, isLeft, rows, counts);
    EXPECT_EQ(windows.ProcessSeries(Column<DateTime>("t", {DateTime(3)})->GetIterator()).code, 5);
    EXPECT_TRUE(log.Has(1, "Invalid time gap: 0"));
    EXPECT_THAT(rows, ElementsAre());
}

TEST(Groups, TellWhereResultsBegin)
{
    DataFrame table = TableOf(Column<std::int32_t>("key", {5, 1, 5, 5, 1}), Column<double>("value", {1, 2, 3, 4, 5}));
    const Groups groups = table.GroupBy({0}, false, true, true);
    const UnaryFactory copy = Func::FunctorFactory<Func::CopySeries, Func::UnaryBase>{};
    const UnaryFactory sum = Func::FunctorFactory<Func::Sum, Func::UnaryBase>{};
    unsigned int total = 0;
    EXPECT_THAT(groups.GetDstBeginIndex(copy, total), ElementsAre(0, 2, 5));
    EXPECT_EQ(total, 5U);
    EXPECT_THAT(groups.GetDstBeginIndex(sum, total), ElementsAre(0, 1, 2));
    EXPECT_EQ(total, 2U);
    EXPECT_THAT(Groups().GetDstBeginIndex(sum, total), ElementsAre(0));
    EXPECT_EQ(total, 0U);
    const LogCapture log;
    EXPECT_EQ(groups.ApplyInner({sum}, {0, 1, 2}, 2).RowCount(), 2U);
    for (const auto& [creators, begins, rows] :
        {std::tuple{BaseGroups::Creators{}, Counts{0, 1, 2}, 2U}, {{sum}, {0, 1}, 1U}, {{sum}, {0, 1, 2}, 3U}}) {
        EXPECT_EQ(groups.ApplyInner(creators, begins, rows).GetError().code, 2);
    }
}

TEST(Labels, AreShownAndNamedAsAnyColumn)
{
    const DataFrame table = TableOf(Column<DateTime>("t", {DateTime(0), DateTime(15)}), Column<int>("v", {1, 2}));
    DataFrame samples = table.Resample("t", DateTime(10), true, true).GetProcessedDataFrame();
    ASSERT_EQ(samples.SetColumnName({"same", "same"}), 0);
    EXPECT_THAT(samples.GetColumnName(), ElementsAre("same", "same_1"));
    testing::internal::CaptureStdout();
    samples.Show("");
    const std::string shown = testing::internal::GetCapturedStdout();
    EXPECT_THAT(shown, HasSubstr("\"same\" : " + DateTime(0).ToString() + ", " + DateTime(10).ToString() + ", \n"));
}

} // namespace
} // namespace MERVO::Tessera
