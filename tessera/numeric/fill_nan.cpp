#include "tessera/numeric/fill_nan.h"

#include <iterator>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/cell_blocks.h"
#include "tessera/functors/copy_series.h"
#include "tessera/numeric/gaps.h"

namespace MERVO::Tessera::Func {
namespace {

/// Copies elements, each NaN as what was written last, which is `last` at first. Gives what was written last.
template <typename Real, typename From, typename To>
Real CarryOn(From from, To to, std::uint32_t count, Real last)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        last = from[i] == from[i] ? from[i] : last;
        to[i] = last;
    }
    return last;
}

ErrorCode RefuseType(bool isForward, const char* type, bool isArray)
{
    LogError("dataframe %s does not support %s%s", isForward ? "ffill" : "bfill", type, isArray ? " type" : "");
    return ERROR_GENERAL;
}

} // namespace

template <ContainerID CID>
std::string FillNanBase<CID>::GetName() const
{
    return "FillNan";
}

template <ContainerID CID>
SeriesAttr FillNanBase<CID>::GetDstAttr(const Cursor& src) const
{
    return src->GetAttr();
}

template <ContainerID CID>
bool FillNanBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    const std::uint32_t length = src->Length();
    return isKnown && src->GetAttr().typeId == dst->GetAttr().typeId && length == dst->Length() && length != 0;
}

template <ContainerID CID>
template <typename T>
ErrorCode FillNanBase<CID>::OnExecuteSIMD(const Cursor& src, const Cursor& dst) const
{
    if constexpr (std::is_floating_point_v<T>) {
        const T* const from = CursorAs<CONTAINER_ARRAY, T>(src).mHead;
        T* const to = CursorAs<CONTAINER_ARRAY, T>(dst).mHead;
        const std::uint32_t count = std::min(src->Length(), dst->Length());
        if (count == 0) {
            return ERROR_NONE;
        }
        if (isForward) {
            T last = *from; // a NaN in front stays
            ForEachBlock(src, dst, true, [&last](const void* cells, void* results, std::uint32_t length) {
                last = CarryOn(static_cast<const T*>(cells), static_cast<T*>(results), length, last);
            });
        } else {
            CarryOn(std::reverse_iterator(from + count), std::reverse_iterator(to + count), count, from[count - 1]);
        }
        return ERROR_NONE;
    } else {
        return ERROR_GENERAL;
    }
}

template <ContainerID CID>
template <typename T>
ErrorCode FillNanBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (std::is_floating_point_v<T>) {
        CopyAndFillGaps<T>(
            src, dst, [forward = isForward](const Gap<T>& gap, T) { return forward ? gap.before : gap.after; });
        return ERROR_NONE;
    } else if constexpr (std::is_same_v<T, bool>) {
        return RefuseType(isForward, "bool", src->IsMemoryContiguous());
    } else if constexpr (std::is_same_v<T, DataFrame>) {
        return RefuseType(isForward, "DataFrame", src->IsMemoryContiguous());
    } else {
        return CopySeries<CONTAINER_ARRAY>().ProcessSeries(src, dst, true).code;
    }
}

template class FillNanBase<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<FillNanBase<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;

} // namespace MERVO::Tessera::Func
