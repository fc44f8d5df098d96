#include "tessera/functors/copy_series.h"

#include <algorithm>

#include "tessera/core/bit_copy.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/element_walk.h"

namespace MERVO::Tessera::Func {

template <ContainerID CID>
std::string CopySeries<CID>::GetName() const
{
    return "CopySeries";
}

template <ContainerID CID>
SeriesAttr CopySeries<CID>::GetDstAttr(const Cursor& src) const
{
    return src->GetAttr();
}

template <ContainerID CID>
bool CopySeries<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->Length() == dst->Length() && src->GetAttr().typeId == dst->GetAttr().typeId;
}

template <ContainerID CID>
template <typename T>
ErrorCode CopySeries<CID>::OnExecuteSIMD(const Cursor& src, const Cursor& dst) const
{
    const auto& from = CursorAs<CONTAINER_ARRAY, T>(src);
    const auto& to = CursorAs<CONTAINER_ARRAY, T>(dst);
    if constexpr (std::is_same_v<T, bool>) {
        CopyBits(from.mHead, to.mHead, src->Length());
    } else {
        std::copy(from.mHead, from.mTail, to.mHead);
    }
    return ERROR_NONE;
}

template <ContainerID CID>
template <typename T>
ErrorCode CopySeries<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    AnyPlace<T> to(dst);
    ForEachElement<T>(src, [&to](const auto& element) {
        *to = element;
        ++to;
    });
    return ERROR_NONE;
}

template class CopySeries<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<CopySeries<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;

} // namespace MERVO::Tessera::Func
