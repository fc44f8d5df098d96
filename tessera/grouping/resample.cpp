#include <numeric>
#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/grouping/samples.h"
#include "tessera/grouping/time_resample.h"
#include "tessera/operations/sort_index.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::vector<std::uint32_t>;

} // namespace

Samples DataFrame::ResampleInner(
    unsigned int timeColumn, Positions& index, const DateTime& gap, bool labelLeft, bool closedLeft) const
{
    std::vector<std::int32_t> rows;
    std::vector<std::uint32_t> counts;
    const Func::TimeResampleBase<CONTAINER_ARRAY> resample(index, gap, closedLeft, rows, counts);
    const Error outcome = resample.ProcessSeries((*series)[timeColumn]->GetIterator());
    Positions().swap(index);
    if (outcome.code != ERROR_NONE) {
        LogError("Do time resample failed, error %d", outcome.code);
        return {};
    }
    return Samples::MakeSamples(
        rows, counts, std::shared_ptr<Columns>(series), {timeColumn, labelLeft, closedLeft, gap});
}

Samples DataFrame::Resample(unsigned int timeColumn, const DateTime& gap, bool labelLeft, bool closedLeft) const
{
    if (gap.TimeStamp() < 1) {
        LogError("Invalid time gap: %d", static_cast<int>(gap.TimeStamp()));
        return {};
    }
    if (error.code != ERROR_NONE || ColumnCount() == 0) {
        LogError("Invalid or empty dataframe %d, error %d", static_cast<int>(series->size()), error.code);
        return {};
    }
    try {
        if (!CheckGroupIndex(1, &timeColumn)) {
            return {};
        }
        const SeriesPtr& times = (*series)[timeColumn];
        if (times == nullptr || times->GetTypeId() != TESSERA_DATETIME) {
            LogError("Invalid time column index of dataframe (%d), error %d", static_cast<int>(timeColumn), error.code);
            return {};
        }
        if (times->Size() == 0) {
            LogError("there is no rows in dataframe");
            return {};
        }
        Positions index(times->Size());
        std::iota(index.begin(), index.end(), 0U);
        const Error sorted =
            Func::SortIndexBase<CONTAINER_ARRAY>(index, true, true).ProcessSeries(times->GetIterator());
        if (sorted.code != ERROR_NONE) {
            LogError("Do time resample failed, error %d", sorted.code);
            return {};
        }
        return ResampleInner(timeColumn, index, gap, labelLeft, closedLeft);
    } catch (...) { // no memory, or more rows than a list has room for
        LogError("out of memory on Resample");
        return {};
    }
}

Samples DataFrame::Resample(std::string timeColumnName, const DateTime& gap, bool labelLeft, bool closedLeft) const
{
    Positions positions;
    try {
        if (GetIndexVector(positions, {std::move(timeColumnName)}) != ERROR_NONE) {
            return {};
        }
    } catch (...) {
        LogError("out of memory on Resample");
        return {};
    }
    return Resample(positions.front(), gap, labelLeft, closedLeft);
}

} // namespace MERVO::Tessera
