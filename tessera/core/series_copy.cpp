#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/series.h"

namespace MERVO::Tessera {
namespace {

using SeriesCopier = void (*)(const Cursor&, const Cursor&);

template <typename T, ContainerID SRC_CID, ContainerID DST_CID>
void SeriesCopyFunc(const Cursor& src, const Cursor& dst)
{
    auto& from = CursorAs<SRC_CID, T>(src);
    auto& to = CursorAs<DST_CID, T>(dst);
    for (; from.mHead != from.mTail && to.mHead != to.mTail; ++from.mHead, ++to.mHead) {
        *to.mHead = *from.mHead;
    }
}

/// One row per value type; source container times two plus destination container picks the column.
constexpr auto SERIES_COPIERS = ForEachValueType([](auto number) {
    using T = ValueTypes::At<number()>;
    return std::array<SeriesCopier, 4>{&SeriesCopyFunc<T, CONTAINER_ARRAY, CONTAINER_ARRAY>,
        &SeriesCopyFunc<T, CONTAINER_ARRAY, CONTAINER_LIST>, &SeriesCopyFunc<T, CONTAINER_LIST, CONTAINER_ARRAY>,
        &SeriesCopyFunc<T, CONTAINER_LIST, CONTAINER_LIST>};
});

} // namespace

bool Copy2Series(const Cursor& src, const Cursor& dst)
{
    if (src == nullptr || dst == nullptr) {
        LogError("input of copy to another series with different container type is null");
        return false;
    }
    const SeriesAttr from = src->GetAttr();
    const ContainerID target = dst->GetAttr().containerId;
    if (!IsValueType(from.typeId) || !IsContainer(from.containerId) || !IsContainer(target)) {
        LogError("Failed to copy series, type %d, container %d to %d", static_cast<int>(from.typeId),
            static_cast<int>(from.containerId), static_cast<int>(target));
        return false;
    }
    const auto pair = static_cast<std::size_t>(from.containerId) * 2 + static_cast<std::size_t>(target);
    SERIES_COPIERS[static_cast<std::size_t>(from.typeId)][pair](src, dst);
    return true;
}

} // namespace MERVO::Tessera
