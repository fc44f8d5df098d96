#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/core/memory_room.h"
#include "tessera/functors/array_form.h"
#include "tessera/grouping/samples.h"
#include "tessera/grouping/time_windows.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::vector<std::uint32_t>;

} // namespace

Samples DataFrame::ResampleInner(unsigned int timeColumn, const DateTime& gap, bool labelLeft, bool closedLeft) const
{
    const Cursor times = (*series)[timeColumn]->GetIterator();
    if (times == nullptr) {
        LogError("Do time resample failed, error %d", ERROR_OUT_OF_MEMORY);
        return {};
    }
    std::vector<std::int32_t> rows;
    std::vector<std::uint32_t> counts;
    const ErrorCode code = CutIntoWindows(
        TimedRows(Func::ArrayForm(times).Get()), gap.TimeStamp(), closedLeft, RowSizeOf(*series), {rows, counts});
    if (code != ERROR_NONE) {
        LogError("Do time resample failed, error %d", code);
        return {};
    }
    return Samples::MakeSamples(
        std::move(rows), std::move(counts), std::shared_ptr<Columns>(series), {timeColumn, labelLeft, closedLeft, gap});
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
        return ResampleInner(timeColumn, gap, labelLeft, closedLeft);
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
