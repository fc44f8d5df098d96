#include "tessera/numeric/diff.h"

#include <algorithm>
#include <limits>

#include "tessera/core/cursor_part.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/arithmetic_kernels.h"
#include "tessera/functors/element_walk.h"

namespace MERVO::Tessera::Func {
namespace {

void Subtract(const Cursor& lhs, const Cursor& rhs, const Cursor& dst)
{
    const auto type = static_cast<std::size_t>(dst->GetAttr().typeId);
    ForEachBlock(lhs, rhs, dst, {false, false}, KernelsOf(Arith::SUBTRACTION)[type]);
}

/// Writes the differences at a lag of all rows or less, and gives the rows that have none.
Cursor WriteDifferences(const Cursor& src, const Cursor& dst, std::uint32_t lag, bool isForward)
{
    const std::uint32_t count = src->Length() - lag;
    const Cursor earlier = PartOf(src, 0, count);
    const Cursor later = PartOf(src, lag, count);
    if (isForward) {
        Subtract(later, earlier, PartOf(dst, 0, count));
        return PartOf(dst, count, lag);
    }
    Subtract(later, earlier, PartOf(dst, lag, count));
    return PartOf(dst, 0, lag);
}

template <typename T>
void Fill(const Cursor& rows)
{
    WithPlaces<T>(rows, [](auto head, auto tail) {
        for (; head != tail; ++head) {
            *head = std::numeric_limits<T>::quiet_NaN(); // 0 for integers
        }
    });
}

} // namespace

template <ContainerID CID>
std::string DiffBase<CID>::GetName() const
{
    return "Diff";
}

template <ContainerID CID>
SeriesAttr DiffBase<CID>::GetDstAttr(const Cursor& src) const
{
    return src->GetAttr();
}

template <ContainerID CID>
bool DiffBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->Length() == dst->Length() && src->GetAttr().containerId == dst->GetAttr().containerId;
}

template <ContainerID CID>
template <typename T>
ErrorCode DiffBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (!Arithmetic<T> || std::is_same_v<T, bool>) {
        return ERROR_GENERAL;
    } else {
        if (src->GetAttr().typeId != TYPE_ID_OF<T> || dst->GetAttr().typeId != TYPE_ID_OF<T>) {
            return ERROR_GENERAL;
        }
        const bool isForward = periods < 0;
        const auto lag = static_cast<std::uint32_t>(periods);
        const std::uint32_t rows = std::min(isForward ? 0U - lag : lag, src->Length());
        Fill<T>(WriteDifferences(src, dst, rows, isForward));
        return ERROR_NONE;
    }
}

template class DiffBase<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<DiffBase<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;

} // namespace MERVO::Tessera::Func
