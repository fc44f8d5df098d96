#include "tessera/grouping/time_resample.h"

#include "tessera/core/data_frame.h"
#include "tessera/core/flat_call.h"
#include "tessera/functors/array_form.h"
#include "tessera/functors/gather.h"
#include "tessera/grouping/time_windows.h"

namespace MERVO::Tessera::Func {

template <ContainerID CID>
std::string TimeResampleBase<CID>::GetName() const
{
    return "TimeResample";
}

template <ContainerID CID>
SeriesAttr TimeResampleBase<CID>::GetDstAttr(const Cursor& cursor) const
{
    return cursor->GetAttr();
}

template <ContainerID CID>
bool TimeResampleBase<CID>::CheckParams(const Cursor&) const
{
    return true;
}

template <ContainerID CID>
template <typename T>
ErrorCode TimeResampleBase<CID>::OnExecute(const Cursor& cursor) const
{
    if constexpr (std::is_same_v<T, DateTime>) {
        if (!AreBelow(index, cursor->Length())) {
            LogError("there exists index that exceeds length limit");
            return ERROR_OUT_OF_RANGE;
        }
        if (gap.TimeStamp() < 1) {
            LogError("Invalid time gap: %d", static_cast<int>(gap.TimeStamp()));
            return ERROR_BAD_VALUE;
        }
        return Guarded("TimeResample", [&]() -> ErrorCode {
            const TimedRows rows(ArrayForm(cursor).Get(), index);
            return CutIntoWindows(rows, gap.TimeStamp(), closedLeft, sizeof(DateTime), {sampleRows, sampleCounts});
        });
    } else {
        return ERROR_GENERAL;
    }
}

template const NullaryTable<1> Nullary<TimeResampleBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class TimeResampleBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
