#include "tessera/grouping/samples.h"

#include <algorithm>
#include <utility>

#include "tessera/core/flat_call.h"
#include "tessera/core/memory_room.h"
#include "tessera/functors/column_runs.h"
#include "tessera/functors/table_combination.h"
#include "tessera/grouping/label_series.h"
#include "tessera/grouping/sample_functors.h"

namespace MERVO::Tessera {
namespace {

/// The column, if it is one of labels that nobody has seen.
LabelSeries* UnwrittenLabels(const SeriesPtr& column)
{
    auto* const labels = dynamic_cast<LabelSeries*>(column.get());
    return labels == nullptr || labels->IsWritten() ? nullptr : labels;
}

} // namespace

Samples::Samples(std::vector<std::int32_t> rows, std::vector<std::uint32_t> counts,
    std::shared_ptr<DataFrame::Columns>&& sharedColumns, const SampleParams& params)
    : BaseGroups(std::move(sharedColumns), {params.timeColumn}), sampleRows(std::move(rows)),
      sampleCounts(std::move(counts)), labelLeft(params.labelLeft), closedLeft(params.closedLeft), gap(params.gap)
{
}

Samples Samples::MakeSamples(std::vector<std::int32_t> rows, std::vector<std::uint32_t> counts,
    std::shared_ptr<DataFrame::Columns>&& sharedColumns, const SampleParams& params)
{
    try {
        Samples samples(std::move(rows), std::move(counts), std::move(sharedColumns), params);
        if (samples.ReorderRows() == ERROR_NONE) {
            return samples;
        }
    } catch (...) { // the reason is no memory, and the message the same
    }
    LogError("Resample current dataframe failed.");
    return {};
}

Error Samples::BuildLabels(const SeriesPtr& times, SeriesPtr& result) const
{
    const Cursor source = times->GetIterator();
    if (source == nullptr) {
        return {ERROR_OUT_OF_MEMORY, "out of memory on resampling"};
    }
    if (times->GetTypeId() != TESSERA_DATETIME || gap.TimeStamp() < 0 ||
        !AreSamplesOf(source->Length(), sampleRows, sampleCounts)) {
        return {ERROR_PARAMETERS_REFUSED, "there is no windows of such rows and counts"};
    }
    const auto firstRow = static_cast<std::uint32_t>(sampleRows.front());
    const TimeWindows first(GetValueFromIterator<DateTime>(source, firstRow).TimeStamp(), gap.TimeStamp(), closedLeft);
    const auto length = static_cast<std::uint32_t>(sampleRows.size());
    result = SeriesPtr(new LabelSeries(first, labelLeft, sampleCounts, length, times->GetName()));
    return {};
}

/// Fills the column with the sample rows of the one at a position, or with the windows' labels. `isWhole`: no window is
/// empty.
Error Samples::BuildColumn(std::uint32_t position, bool isWhole, SeriesPtr& result) const
{
    const SeriesPtr& source = (*columns)[position];
    if (source == nullptr) {
        return {ERROR_BAD_VALUE, "no column to resample"};
    }
    if (position == keyColumns.front()) {
        return BuildLabels(source, result);
    }
    result = BuildSeries(
        {static_cast<std::uint32_t>(sampleRows.size()), CONTAINER_ARRAY, source->GetTypeId()}, source->GetName());
    const Cursor from = source->GetIterator();
    const Cursor to = result->GetIterator();
    if (from == nullptr || to == nullptr) {
        return {ERROR_OUT_OF_MEMORY, "out of memory on resampling"};
    }
    if (!isWhole) {
        Error outcome = Func::NanRows<CONTAINER_ARRAY>().ProcessSeries(to);
        if (outcome.code != ERROR_NONE) {
            LogError("Generate N rows of NaN values failed, column name is %s, column index is %d",
                source->GetName().c_str(), static_cast<int>(position));
            return outcome;
        }
    }
    return Func::ApplyGroupOtherColBase<CONTAINER_ARRAY>(sampleRows).ProcessSeries(from, to, true);
}

Cursor Samples::RowsToAsk(const SeriesPtr& column) const
{
    LabelSeries* const labels = UnwrittenLabels(column);
    return labels == nullptr ? RowsOf(column) : labels->FirstRows();
}

ErrorCode Samples::BuildColumns(Columns& results) const
{
    const bool isWhole = std::find(sampleRows.begin(), sampleRows.end(), NO_SAMPLE) == sampleRows.end();
    for (std::uint32_t position = 0; position < columns->size(); ++position) {
        SeriesPtr result;
        const Error outcome = BuildColumn(position, isWhole, result);
        if (outcome.code != ERROR_NONE) {
            LogError("%s", outcome.message.c_str());
            return outcome.code;
        }
        results.push_back(std::move(result));
    }
    return ERROR_NONE;
}

/// Where groups begin and, behind that, their rows end: each window is a group, but windows without a width have one
/// label, so that all of their rows are.
std::vector<std::uint32_t> Samples::WindowBegins() const
{
    std::vector<std::uint32_t> begins;
    begins.reserve(sampleCounts.size() + 1);
    std::uint32_t row = 0;
    for (const std::uint32_t count : sampleCounts) {
        if (count != 0 && (begins.empty() || gap.TimeStamp() != 0)) {
            begins.push_back(row);
        }
        row += count;
    }
    begins.push_back(row);
    return begins;
}

ErrorCode Samples::ReorderRows()
{
    return Guarded("Samples", [this]() -> ErrorCode {
        if (columns == nullptr || columns->empty()) {
            LogError("there is no columns to resample");
            return ERROR_EMPTY_TABLE;
        }
        if (keyColumns.empty() || keyColumns.front() >= columns->size()) {
            LogError("there is no time column to resample by");
            return ERROR_BAD_VALUE;
        }
        if (!HasRoomFor(sampleRows.size(), RowSizeOf(*columns))) {
            LogError("Too many rows to resample into: %zu", sampleRows.size());
            return ERROR_OUT_OF_MEMORY;
        }
        auto results = std::make_shared<Columns>();
        const ErrorCode code = BuildColumns(*results);
        if (code == ERROR_NONE) {
            groupBegins = WindowBegins();
            groupCount = static_cast<std::uint32_t>(groupBegins.size() - 1);
            columns = std::move(results);
            processedColumns = columns;
        }
        return code;
    });
}

void Samples::Show() const { ShowGroups(); }

ErrorCode Samples::ApplyKey(
    const SeriesPtr& src, const SeriesPtr& dst, const std::vector<std::uint32_t>& dstBegin, bool) const
{
    const LabelSeries* const labels = UnwrittenLabels(src);
    if (labels == nullptr) {
        return SelectFirstRows(src, dst, dstBegin, false);
    }
    return Guarded("ApplyKey", [&]() -> ErrorCode {
        const Cursor results = dst == nullptr ? nullptr : dst->GetIterator();
        if (results == nullptr || results->GetAttr().typeId != TESSERA_DATETIME ||
            dstBegin.size() != groupBegins.size() || results->Length() != dstBegin.back()) {
            return ERROR_PARAMETERS_REFUSED;
        }
        std::vector<std::uint32_t> counts(sampleCounts.size());
        std::uint32_t group = 0;
        for (std::size_t window = 0; window < counts.size() && group < groupCount; ++window) {
            if (sampleCounts[window] != 0) {
                counts[window] = dstBegin[group + 1] - dstBegin[group];
                ++group;
            }
        }
        labels->WriteTo(results, counts);
        return ERROR_NONE;
    });
}

ErrorCode Samples::ApplyValue(const Func::UnaryBase& functor, const SeriesPtr& src, const SeriesPtr& dst,
    const std::vector<std::uint32_t>& dstBegin) const
{
    return ApplyToRuns(functor, src, dst, dstBegin);
}

Error Samples::ApplyGlobally(const UnaryFactory& creator, const SeriesPtr& column, SeriesPtr& result) const
{
    constexpr const char* FAILURE = "Global Apply failed";
    constexpr const char* REFUSAL =
        "Applied functor is invalid, functor for GlobalApply should not change series's size.";
    const Cursor rows = RowsOf(column);
    if (rows == nullptr) {
        return {ERROR_BAD_VALUE, FAILURE};
    }
    Func::FunctorSlots<Func::UnaryBase> functors(creator);
    const Func::UnaryBase& functor = functors.For(Func::ContainerOf(column));
    const SeriesAttr attr = functor.GetDstAttr(rows);
    if (attr.length != rows->Length()) {
        LogError("%s", REFUSAL);
        return {ERROR_BAD_KIND, REFUSAL};
    }
    result = BuildSeries(attr, column->GetName());
    const Cursor results = result->GetIterator();
    if (results == nullptr && result->GetTypeId() != TESSERA_INVALID) {
        return {ERROR_OUT_OF_MEMORY, FAILURE};
    }
    return {functor.ProcessSeries(rows, results, true).code, FAILURE};
}

DataFrame Samples::GlobalApply(const UnaryFactory& creator) const
{
    return Func::GuardedTable("GlobalApply", [&] {
        if (groupCount == 0) {
            LogError("Empty groups do not support apply");
            return Func::FailedTable(ERROR_BAD_KIND, "Empty groups do not support apply operation");
        }
        auto results = std::make_shared<Columns>(columns->size());
        for (std::size_t c = 0; c < results->size(); ++c) {
            const Error outcome = ApplyGlobally(creator, (*columns)[c], (*results)[c]);
            if (outcome.code != ERROR_NONE) {
                return Func::FailedTable(outcome.code, outcome.message);
            }
        }
        processedColumns = std::move(results);
        return GetProcessedDataFrame();
    });
}

} // namespace MERVO::Tessera
