#include "tessera/numeric/fill_nan.h"

#include <cstring>
#include <iterator>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/cell_blocks.h"
#include "tessera/functors/copy_series.h"
#include "tessera/numeric/gaps.h"
#include "tessera/platform/multiversion.h"

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

#ifdef TESSERA_WIDE_VECTOR_BYTES
/// The same for four cells at a time: a NaN takes the cell before it, then the one two before it. So four cells wait
/// for no more than a choice between the fourth before them and what that had waited for.
template <typename Real>
TESSERA_WIDE_VECTORS Real CarryOnWide(const Real* from, Real* to, std::uint32_t count, Real last)
{
    constexpr std::uint32_t CELLS = 4;
    using Lanes [[gnu::vector_size(CELLS * sizeof(Real))]] = Real;
    Lanes carried{last, last, last, last};
    std::uint32_t i = 0;
    for (; count - i >= CELLS; i += CELLS) {
        Lanes cells;
        std::memcpy(&cells, from + i, sizeof cells);
        cells = cells == cells ? cells : __builtin_shufflevector(cells, cells, 0, 0, 1, 2);
        cells = cells == cells ? cells : __builtin_shufflevector(cells, cells, 0, 0, 0, 1);
        const Lanes fourth = __builtin_shufflevector(cells, cells, 3, 3, 3, 3);
        cells = cells == cells ? cells : carried;
        carried = fourth == fourth ? fourth : carried;
        std::memcpy(to + i, &cells, sizeof cells);
    }
    return CarryOn(from + i, to + i, count - i, Real{carried[0]});
}
#else
template <typename Real>
Real CarryOnWide(const Real* from, Real* to, std::uint32_t count, Real last)
{
    return CarryOn(from, to, count, last);
}
#endif

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
                const auto carryOn = HasWideVectors() ? &CarryOnWide<T> : &CarryOn<T, const T*, T*>;
                last = carryOn(static_cast<const T*>(cells), static_cast<T*>(results), length, last);
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
