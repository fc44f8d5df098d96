#include "tessera/functors/cell_place.h"

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"

namespace MERVO::Tessera::Func {

template <typename T>
void CellPlace::Open(const Cursor& cursor)
{
    if (!cursor->IsMemoryContiguous()) {
        layout = Layout::NODES;
        node = CursorAs<CONTAINER_LIST, T>(cursor).mHead.link;
        valueOf = [](ListLink* link) -> void* { return &static_cast<ListNode<T>*>(link)->value; };
    } else if constexpr (std::is_same_v<T, bool>) {
        layout = Layout::BITS;
        bit = CursorAs<CONTAINER_ARRAY, T>(cursor).mHead;
    } else {
        element = reinterpret_cast<std::byte*>(CursorAs<CONTAINER_ARRAY, T>(cursor).mHead);
        elementSize = sizeof(T);
    }
}

CellPlace::CellPlace(const Cursor& cursor)
{
    using Opener = void (CellPlace::*)(const Cursor&);
    static constexpr auto OPENERS =
        ForEachValueType([](auto number) { return Opener{&CellPlace::Open<ValueTypes::At<number()>>}; });
    (this->*OPENERS[static_cast<std::size_t>(cursor->GetAttr().typeId)])(cursor);
}

} // namespace MERVO::Tessera::Func
