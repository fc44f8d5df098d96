#include "tessera/functors/to_array.h"

#include <algorithm>

#include "tessera/core/bit_bytes.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/element_walk.h"

namespace MERVO::Tessera::Func {

template <ContainerID CID>
std::string ToArrayBase<CID>::GetName() const
{
    return "ToArray";
}

template <ContainerID CID>
SeriesAttr ToArrayBase<CID>::GetDstAttr(const Cursor& cursor) const
{
    return cursor->GetAttr();
}

template <ContainerID CID>
bool ToArrayBase<CID>::CheckParams(const Cursor& cursor) const
{
    return room != nullptr && (roomType == TESSERA_INVALID || roomType == cursor->GetAttr().typeId);
}

template <ContainerID CID>
template <typename T>
ErrorCode ToArrayBase<CID>::OnExecuteSIMD(const Cursor& cursor) const
{
    const auto head = CursorAs<CONTAINER_ARRAY, T>(cursor).mHead;
    const std::uint32_t count = std::min(roomSize, cursor->Length());
    if constexpr (std::is_same_v<T, bool>) {
        UnpackBits(head, static_cast<bool*>(room), count);
    } else {
        std::copy_n(head, count, static_cast<T*>(room));
    }
    return ERROR_NONE;
}

template <ContainerID CID>
template <typename T>
ErrorCode ToArrayBase<CID>::OnExecute(const Cursor& cursor) const
{
    auto node = CursorAs<CONTAINER_LIST, T>(cursor).mHead;
    const auto end = CursorAs<CONTAINER_LIST, T>(cursor).mTail;
    T* element = static_cast<T*>(room);
    for (std::uint32_t left = roomSize; left != 0 && node != end; --left, ++element, ++node) {
        *element = *node;
    }
    return ERROR_NONE;
}

template class ToArrayBase<CONTAINER_ARRAY>;
template const NullaryTable<1> Nullary<ToArrayBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;

} // namespace MERVO::Tessera::Func
