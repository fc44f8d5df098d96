#include "tessera/grouping/sample_functors.h"

#include <algorithm>
#include <numeric>

#include "tessera/core/data_frame.h"
#include "tessera/core/flat_call.h"
#include "tessera/functors/element_walk.h"
#include "tessera/functors/gather_present.h"
#include "tessera/functors/missing_cell.h"
#include "tessera/grouping/time_windows.h"

namespace MERVO::Tessera::Func {
namespace {

/// The same rows, -1 as NO_ROW.
std::span<const std::uint32_t> RowsOf(const std::vector<std::int32_t>& sampleRows)
{
    return {reinterpret_cast<const std::uint32_t*>(sampleRows.data()), sampleRows.size()};
}

template <typename T>
void FillMissing(const Cursor& cursor)
{
    const T missing = MissingCell<T>();
    ForEachElement<T>(cursor, [&missing](auto&& cell) { cell = missing; });
}

} // namespace

// ---- NanRows

template <ContainerID CID>
std::string NanRows<CID>::GetName() const
{
    return "NanRows";
}

template <ContainerID CID>
SeriesAttr NanRows<CID>::GetDstAttr(const Cursor& cursor) const
{
    return cursor->GetAttr();
}

template <ContainerID CID>
bool NanRows<CID>::CheckParams(const Cursor&) const
{
    return true;
}

template <ContainerID CID>
template <typename T>
ErrorCode NanRows<CID>::OnExecute(const Cursor& cursor) const
{
    return Guarded("NanRows", [&]() -> ErrorCode {
        FillMissing<T>(cursor);
        return ERROR_NONE;
    });
}

// ---- ApplyGroupOtherCol

template <ContainerID CID>
std::string ApplyGroupOtherColBase<CID>::GetName() const
{
    return "ApplyGroupOtherCol";
}

template <ContainerID CID>
SeriesAttr ApplyGroupOtherColBase<CID>::GetDstAttr(const Cursor& src) const
{
    return WithLength(src->GetAttr(), static_cast<std::uint32_t>(sampleRows.size()));
}

template <ContainerID CID>
bool ApplyGroupOtherColBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->GetAttr().typeId == dst->GetAttr().typeId && dst->Length() == sampleRows.size() &&
        AreRowsBelow(RowsOf(sampleRows), src->Length());
}

template <ContainerID CID>
template <typename T>
ErrorCode ApplyGroupOtherColBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    return Guarded("ApplyGroupOtherCol", [&]() -> ErrorCode {
        GatherPresent(src, RowsOf(sampleRows), dst);
        return ERROR_NONE;
    });
}

// ---- ApplyGroupTimeLabel

template <ContainerID CID>
std::string ApplyGroupTimeLabelBase<CID>::GetName() const
{
    return "ApplyGroupTimeLabel";
}

template <ContainerID CID>
SeriesAttr ApplyGroupTimeLabelBase<CID>::GetDstAttr(const Cursor& src) const
{
    return WithLength(src->GetAttr(), static_cast<std::uint32_t>(sampleRows.size()));
}

template <ContainerID CID>
bool ApplyGroupTimeLabelBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->GetAttr().typeId == TESSERA_DATETIME && dst->GetAttr().typeId == TESSERA_DATETIME &&
        gap.TimeStamp() >= 0 && AreSamplesOf(src->Length(), sampleRows, sampleCounts) &&
        dst->Length() == sampleRows.size();
}

template <ContainerID CID>
template <typename T>
ErrorCode ApplyGroupTimeLabelBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (std::is_same_v<T, DateTime>) {
        const auto firstRow = static_cast<std::uint32_t>(sampleRows.front());
        const std::int64_t firstTime = GetValueFromIterator<DateTime>(src, firstRow).TimeStamp();
        WriteLabels({firstTime, gap.TimeStamp(), closedLeft}, labelLeft, sampleCounts, dst);
        return ERROR_NONE;
    } else {
        return ERROR_GENERAL;
    }
}

template const NullaryTable<1> Nullary<NanRows<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class NanRows<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<ApplyGroupOtherColBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class ApplyGroupOtherColBase<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<ApplyGroupTimeLabelBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class ApplyGroupTimeLabelBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
