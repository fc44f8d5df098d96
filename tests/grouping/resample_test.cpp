// Windows of time, by table, by functor and by flat call.

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>

#include "tests/functors/pairing.h"
#include "tests/support/handle.h"
#include "tests/support/log_capture.h"
#include "tests/support/same_tables.h"

namespace MERVO::Tessera {
namespace {

using testing::ElementsAre;
using Counts = std::vector<std::uint32_t>;
using Rows = std::vector<std::int32_t>;
using Stamps = std::vector<std::int64_t>;
template <template <ContainerID> class F>
using Reducer = Func::FunctorFactory<F, Func::UnaryBase>;

constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t FIRST = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t LAST = std::numeric_limits<std::int32_t>::max();

SeriesPtr Times(const Stamps& stamps)
{
    std::vector<DateTime> cells;
    for (const std::int64_t stamp : stamps) {
        cells.emplace_back(static_cast<long>(stamp));
    }
    return Column<DateTime>("time", cells);
}

Stamps StampsOf(const SeriesPtr& column)
{
    Stamps stamps;
    for (const DateTime& cell : CellsOf<DateTime>(column->GetIterator())) {
        stamps.push_back(cell.TimeStamp());
    }
    return stamps;
}

/// What windows make of stamps, found by dividing.
struct Model {
    Model(const Stamps& stamps, std::int64_t gap, bool labelLeft, bool closedLeft)
    {
        const std::int64_t first = *std::min_element(stamps.begin(), stamps.end());
        std::vector<std::pair<std::int64_t, std::int32_t>> order;
        for (std::size_t row = 0; row < stamps.size(); ++row) {
            order.emplace_back(stamps[row], static_cast<std::int32_t>(row));
        }
        std::sort(order.begin(), order.end());
        std::map<std::int64_t, Rows> windows; // the first row's is number 0
        for (const auto& [stamp, row] : order) {
            windows[closedLeft ? (stamp - first) / gap : (stamp - first + gap - 1) / gap].push_back(row);
        }
        for (std::int64_t window = 0; window <= windows.rbegin()->first; ++window) {
            const auto found = windows.find(window);
            const Rows taken = found == windows.end() ? Rows{-1} : found->second;
            const std::int64_t start = first + (window - (closedLeft ? 0 : 1)) * gap;
            begins.push_back(static_cast<std::uint32_t>(rows.size()));
            counts.push_back(static_cast<std::uint32_t>(taken.size()));
            rows.insert(rows.end(), taken.begin(), taken.end());
            labels.insert(labels.end(), taken.size(), std::clamp(start + (labelLeft ? 0 : gap), FIRST, LAST));
        }
        begins.push_back(static_cast<std::uint32_t>(rows.size()));
    }

    Rows rows;
    Counts counts;
    Counts begins;
    Stamps labels;
};

template <typename T>
SeriesPtr Sampled(const SeriesPtr& source, const Rows& rows)
{
    const std::vector<T> from = CellsOf<T>(source->GetIterator());
    std::vector<T> cells;
    for (const std::int32_t row : rows) {
        cells.push_back(row >= 0 ? from[static_cast<std::size_t>(row)] : T());
        if constexpr (std::is_floating_point_v<T>) {
            cells.back() = row >= 0 ? cells.back() : std::numeric_limits<T>::quiet_NaN();
        }
    }
    return Column<T>(source->GetName(), cells);
}

DataFrame SampledTable(const DataFrame& source, const Model& model)
{
    constexpr auto SAMPLED = ForEachValueType([](auto number) { return &Sampled<ValueTypes::At<number()>>; });
    DataFrame::Columns columns;
    for (unsigned int k = 0; k < source.ColumnCount(); ++k) {
        const SeriesPtr& column = source.GetColumn(k);
        columns.push_back(column->GetName() == "time"
                ? Times(model.labels)
                : SAMPLED[static_cast<std::size_t>(column->GetTypeId())](column, model.rows));
    }
    return DataFrame(std::move(columns));
}

/// Columns of all types around a column of moments, one of them in a list.
DataFrame RandomTable(Random& random, const Stamps& stamps)
{
    const auto count = static_cast<std::uint32_t>(stamps.size());
    DataFrame::Columns columns;
    const auto add = [&]<std::size_t... I>(std::index_sequence<I...>)
    {
        ((columns.push_back(Column("c" + std::to_string(I), RandomCells<ValueTypes::At<I>>(random, count)))), ...);
    };
    add(std::make_index_sequence<6>{});
    columns.push_back(Times(stamps));
    add(std::make_index_sequence<ValueTypes::COUNT>{});
    columns.push_back(Column("list", RandomCells<double>(random, count), CONTAINER_LIST));
    DataFrame table(std::move(columns));
    EXPECT_EQ(table.RefreshView(), 0);
    return table;
}

// Ties, gaps, and stamps on the edges of windows; few and many rows in one.
TEST(Resample, MakesTheWindowsOfAModel)
{
    Random random(5);
    for (const std::uint32_t count : {1U, 2U, 30U, 300U}) {
        for (const std::int64_t gap : {1, 7, 10, 4000}) {
            for (const unsigned int sides : {0U, 1U, 2U, 3U}) {
                SCOPED_TRACE(testing::Message() << count << " rows by " << gap << ", sides " << sides);
                const bool labelLeft = (sides & 1) != 0;
                const bool closedLeft = (sides & 2) != 0;
                Stamps stamps;
                for (std::uint32_t i = 0; i < count; ++i) {
                    stamps.push_back(random.Below(count * 8) - std::int64_t{50});
                }
                if (count == 30) {
                    std::sort(stamps.begin(), stamps.end());
                }
                const Model model(stamps, gap, labelLeft, closedLeft);
                auto table = std::make_unique<DataFrame>(RandomTable(random, stamps));
                const DataFrame expected = SampledTable(*table, model);
                const DateTime width(static_cast<long>(gap));
                const Samples samples = count % 2 == 0 ? table->Resample("time", width, labelLeft, closedLeft)
                                                       : table->Resample(6, width, labelLeft, closedLeft);
                EXPECT_TRUE(table->GetError().code == 0 && table->RowCount() == count);
                table.reset();
                EXPECT_EQ(samples.GetSampleRows(), model.rows);
                EXPECT_EQ(samples.GetSampleCounts(), model.counts);
                EXPECT_EQ(samples.GetGroupBegins(), model.begins);
                EXPECT_THAT(samples.GetKeyColumns(), ElementsAre(6));
                EXPECT_TRUE(samples.GetRowOrder().empty());
                GroupReader<Samples> reader(0, samples);
                for (unsigned int g = 0; g < std::min(samples.GetGroupNum(), 4U); ++g, ++reader) {
                    const auto [group, label] = *reader;
                    const DataFrame wanted = expected.Slice(0U, {model.begins[g], model.begins[g + 1]});
                    EXPECT_TRUE(IsSameTable(group, wanted));
                    EXPECT_TRUE(IsSameTable(label, wanted.SelectCol(Counts{6})));
                }
                EXPECT_TRUE(IsSameTable(samples.GetProcessedDataFrame(), expected));
            }
        }
    }
}

// Near the ends of the range of moments windows go on beyond it, and labels end with it.
TEST(Resample, NeitherWrapsNorLoopsAtTheEndsOfTime)
{
    const std::pair<Stamps, std::int64_t> cases[] = {
        {{FIRST, LAST}, LAST},
        {{LAST, LAST - 3, LAST - 25}, 10},
        {{FIRST, FIRST + 25}, 10},
        {{FIRST, LAST, 0}, 1 << 30},
        {{FIRST}, LAST},
        {{LAST}, LAST},
        {{0, 35}, 10},
    };
    for (const auto& [stamps, gap] : cases) {
        for (const unsigned int sides : {0U, 1U, 2U, 3U}) {
            const Model model(stamps, gap, (sides & 1) != 0, (sides & 2) != 0);
            const DataFrame table = TableOf(Times(stamps));
            const Samples samples =
                table.Resample(0, DateTime(static_cast<long>(gap)), (sides & 1) != 0, (sides & 2) != 0);
            EXPECT_EQ(samples.GetSampleRows(), model.rows) << stamps.size() << " by " << gap;
            EXPECT_EQ(samples.GetGroupBegins(), model.begins);
            EXPECT_EQ(StampsOf(samples.GetProcessedDataFrame().GetColumn(0)), model.labels);
        }
    }
}

TEST(Resample, RefusesWithAMessageAndNoWindows)
{
    DataFrame failed = TableOf(Times({1}));
    failed.SetError({9, "an earlier failure"});
    DataFrame wide; // columns that have no room for what the moments alone have
    for (int i = 0; i < 60; ++i) {
        ASSERT_EQ(wide.AppendColInplace(TableOf(Times({0, 300000000}))), 0);
    }
    struct Refusal {
        int line;
        DataFrame table;
        std::uint32_t column;
        long gap;
        const char* text;
    };
    const Refusal cases[] = {
        {__LINE__, TableOf(Times({1})), 0, 0, "Invalid time gap: 0"},
        {__LINE__, TableOf(Times({1})), 0, -5, "Invalid time gap: -5"},
        {__LINE__, DataFrame(), 0, 1, "Invalid or empty dataframe 0, error 0"},
        {__LINE__, TableOf(Times({1})), 3, 1, "Group index 3 is out of range 1"},
        {__LINE__, TableOf(Times({1}), Column<std::int64_t>("n", {1})), 1, 1,
            "Invalid time column index of dataframe (1), error 0"},
        {__LINE__, TableOf(Times({})), 0, 1, "there is no rows in dataframe"},
        {__LINE__, TableOf(Times({FIRST, LAST})), 0, 1, "Too many rows to resample into: 4294967296"},
        {__LINE__, TableOf(Times({LAST, -1})), 0, 1, "Too many rows to resample into: 2147483649"},
        {__LINE__, wide, 0, 1, "Too many rows to resample into: 300000001"},
    };
    for (const Refusal& refused : cases) {
        const LogCapture log;
        const Samples samples = refused.table.Resample(refused.column, DateTime(refused.gap), true, true);
        EXPECT_TRUE(samples.GetGroupNum() == 0 && samples.GetGroupBegins().empty()) << refused.line;
        EXPECT_TRUE(samples.IsLabelLeft() && samples.IsClosedLeft() && samples.GetGap() == DateTime());
        EXPECT_TRUE(log.Has(1, refused.text)) << refused.line;
        EXPECT_EQ(samples.Apply(Reducer<Func::Mean>{}).GetError().code, 2);
        EXPECT_EQ(samples.GlobalApply(Reducer<Func::CopySeries>{}).GetError().code, 2);
    }
    const LogCapture log;
    EXPECT_EQ(failed.Resample(0, DateTime(1), true, true).GetGroupNum(), 0U);
    EXPECT_TRUE(log.Has(1, "Invalid or empty dataframe 1, error 9"));
    EXPECT_EQ(failed.Resample("nobody", DateTime(1), true, true).GetGroupNum(), 0U);
}

// ---- Evaluation of windows

DataFrame Readings() { return TableOf(Times({25, 5, 0, 10, 44}), Column<double>("v", {4, 2, 1, 3, 5})); }

// Labels are written when they are asked for; that must not show.
TEST(SamplesEvaluation, GivesTheSameBeforeAndAfterLabelsAreRead)
{
    Stamps many(3000); // more rows than decide what is a reduction
    std::iota(many.begin(), many.end(), 0);
    for (const bool areRead : {false, true}) {
        const Samples samples = Readings().Resample(0, DateTime(10), true, true);
        EXPECT_EQ(areRead ? samples.CopyLabel(0).RowCount() : 2, 2U);
        EXPECT_TRUE(IsSameTable(samples.Apply(Reducer<Func::Sum>{}),
            TableOf(Times({0, 10, 20, 30, 40}), Column<double>("v", {3, 3, 4, NO_VALUE, 5}))));
        EXPECT_TRUE(IsSameTable(samples.Apply(Reducer<Func::CopySeries>{}),
            TableOf(Times({0, 0, 10, 20, 30, 40}), Column<double>("v", {1, 2, 3, 4, NO_VALUE, 5}))));

        const Samples longer = TableOf(Times(many)).Resample(0, DateTime(2999), false, true);
        EXPECT_EQ(areRead ? longer.CopyLabel(0).RowCount() : 2999, 2999U);
        EXPECT_EQ(longer.Apply(Reducer<Func::CopySeries>{}).RowCount(), 3000U);
        EXPECT_EQ(StampsOf(longer.Apply(Reducer<Func::Max>{}).GetColumn(0)), (Stamps{2999, 5998}));
    }
    const Samples samples = Readings().Resample(0, DateTime(10), false, true);
    EXPECT_TRUE(IsSameTable(samples.Transform(Reducer<Func::Mean>{}),
        TableOf(Times({10, 10, 20, 30, 40, 50}), Column<double>("v", {1.5, 1.5, 3, 4, NO_VALUE, 5}))));

    testing::internal::CaptureStdout();
    samples.Show();
    EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::HasSubstr("num 4"));
}

TEST(SamplesEvaluation, SeesLabelsThatWereWrittenTo)
{
    const Samples samples = Readings().Resample(0, DateTime(10), true, true);
    const DataFrame rows = samples.GetProcessedDataFrame();
    EXPECT_TRUE(SetValueToIterator<DateTime>(rows.GetColumn(0)->GetIterator(), DateTime(77), 0));
    EXPECT_EQ(StampsOf(samples.Apply(Reducer<Func::Sum>{}).GetColumn(0)), (Stamps{77, 10, 20, 30, 40}));
}

TEST(SamplesEvaluation, AppliesGloballyAcrossWindows)
{
    const Samples samples = Readings().Resample(0, DateTime(10), true, true);
    const Counts reversed{5, 4, 3, 2, 1, 0};
    using Reversal = Func::FunctorFactory<Func::SelectRow, Func::UnaryBase, const Counts&>;
    EXPECT_TRUE(IsSameTable(samples.GlobalApply(Reversal{reversed}),
        TableOf(Times({40, 30, 20, 10, 0, 0}), Column<double>("v", {5, NO_VALUE, 4, 3, 2, 1}))));
    EXPECT_EQ(samples.GetProcessedDataFrame().ColumnCount(), 0U);

    const LogCapture log;
    const DataFrame refused = samples.GlobalApply(Reducer<Func::Sum>{});
    EXPECT_EQ(refused.GetError().code, 2);
    EXPECT_TRUE(log.Has(1, "Applied functor is invalid, functor for GlobalApply should not change series's size."));
    EXPECT_EQ(samples.GlobalApply(Func::FunctorFactory<Func::Diff, Func::UnaryBase, int>{1}).GetError().message,
        "Global Apply failed");
}

// ---- Functors

TEST(SampleFunctors, RefuseWhatDoesNotFit)
{
    const LogCapture log;
    Rows rows{0, 1, -1};
    Counts counts{2, 1};
    bool isLeft = true;
    DateTime gap(10);
    const SeriesPtr two = Times({0, 5});
    const SeriesPtr one = Times({0});
    const SeriesPtr three = Times({0, 0, 0});
    const SeriesPtr numbers = Column<std::int32_t>("n", {1, 2});
    const auto label = [&](const SeriesPtr& from, const SeriesPtr& to) {
        using Labels = Func::ApplyGroupTimeLabel<CONTAINER_ARRAY, Rows&, Counts&, bool&, bool&, DateTime&>;
        return Labels(rows, counts, isLeft, isLeft, gap)
            .ProcessSeries(from->GetIterator(), to->GetIterator(), true)
            .code;
    };
    EXPECT_EQ(label(two, three), 0); // one sample row more than the source has
    EXPECT_EQ(StampsOf(three), (Stamps{0, 0, 10}));
    EXPECT_EQ(label(one, three), 21);
    EXPECT_EQ(label(two, two), 21);
    EXPECT_EQ(label(numbers, three), 21);
    const auto place = [&](const SeriesPtr& from, const SeriesPtr& to) {
        const Func::ApplyGroupOtherCol<CONTAINER_ARRAY, Rows&> functor(rows);
        return functor.ProcessSeries(from->GetIterator(), to->GetIterator(), true).code;
    };
    const SeriesPtr kept = Column<std::int32_t>("n", {7, 8, 9});
    EXPECT_EQ(place(numbers, kept), 0);
    EXPECT_THAT(CellsOf<std::int32_t>(kept->GetIterator()), ElementsAre(1, 2, 9));
    EXPECT_EQ(place(one, three), 21);
    EXPECT_EQ(place(numbers, numbers), 21);
    EXPECT_EQ(place(numbers, three), 21);
    for (Counts wrong : {Counts{}, Counts{3, 1}, Counts{0xFFFFFFFF, 4}}) {
        counts.swap(wrong);
        EXPECT_EQ(label(two, three), 21);
        EXPECT_EQ(Samples::MakeSamples(rows, counts, std::make_shared<DataFrame::Columns>(), {}).GetGroupNum(), 0U);
    }
    EXPECT_TRUE(log.Has(1, "Resample current dataframe failed."));
    counts = {3};
    for (Rows wrong : {Rows{}, Rows{-1, 0, 1}, Rows{2, 0, 1}, Rows{-7, 0, 1}}) {
        rows.swap(wrong);
        EXPECT_EQ(label(two, three), 21);
    }
}

// In an index that is not by time, what comes too late finds no window; that ends the windows, and never hangs.
TEST(SampleFunctors, TimeResampleTakesRowsAsTheyCome)
{
    struct Case {
        Stamps stamps;
        Counts index;
        Rows rows;
        Counts counts;
    };
    const Case cases[] = {
        {{0, 5, 10, 25}, {0, 1, 2, 3}, {0, 1, 2, 3}, {2, 1, 1}},
        {{10, 0, 25}, {0, 1, 2}, {0, -1}, {1, 1}},
        {{30, 0, 5}, {0, 1, 2}, {}, {}},
        {{0, 5, 10}, {}, {}, {}},
    };
    for (const Case& given : cases) {
        Counts index = given.index;
        Rows rows;
        Counts counts;
        bool isLeft = true;
        using Windows = Func::TimeResample<CONTAINER_ARRAY, Counts&, const DateTime&, bool&, Rows&, Counts&>;
        const Windows windows(index, DateTime(10), isLeft, rows, counts);
        EXPECT_EQ(windows.ProcessSeries(Times(given.stamps)->GetIterator()).code, 0);
        EXPECT_EQ(rows, given.rows);
        EXPECT_EQ(counts, given.counts);
        EXPECT_EQ(windows.ProcessSeries(Column<double>("v", {1, 2, 3, 4})->GetIterator()).code, 1);
        EXPECT_EQ(windows.ProcessSeries(Times({})->GetIterator()).code, given.index.empty() ? 0 : 4);
    }
}

// ---- Flat call

TEST(FlatResample, MakesATableOfEachWindow)
{
    const Handle table(Readings());
    MERVO_TSR_GROUP_ARRAY* array = MERVO_TSR_Resample(table.Get(), 0, 10, false, false);
    ASSERT_NE(array, nullptr);
    ASSERT_EQ(array->count, 6U);
    EXPECT_EQ(StampsOf(array->entries[1].dataFrame->GetColumn(0)), (Stamps{10, 10}));
    EXPECT_THAT(CellsOf<double>(array->entries[1].dataFrame->GetColumn(1)->GetIterator()), ElementsAre(2, 3));
    MERVO_TSR_ReleaseGroupArray(&array);

    const Handle window{DataFrameRef(table.Table())};
    const LogCapture log;
    EXPECT_EQ(MERVO_TSR_Resample(nullptr, 0, 10, true, true), nullptr);
    EXPECT_EQ(MERVO_TSR_Resample(window.Get(), 0, 10, true, true), nullptr);
    EXPECT_EQ(MERVO_TSR_Resample(table.Get(), 0, 0, true, true), nullptr);
    EXPECT_THAT(log.Texts(1),
        ElementsAre("[MERVO_TSR_Resample] Input is nullptr", "[MERVO_TSR_Resample] Input is nullptr",
            "Invalid time gap: 0", "[MERVO_TSR_Resample] Groupby length is zero"));
}

} // namespace
} // namespace MERVO::Tessera
