#include "tessera/functors/cell_runs.h"

#include <limits>

#include "tessera/core/bit_bytes.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"

namespace MERVO::Tessera::Func {

template <typename T>
void CellRuns::Open(const Cursor& cursor)
{
    if (!cursor->IsMemoryContiguous()) {
        layout = Layout::NODES;
        node = CursorAs<CONTAINER_LIST, T>(cursor).mHead.link;
        valueOf = [](ListLink* link) -> void* { return &static_cast<ListNode<T>*>(link)->value; };
    } else if constexpr (std::is_same_v<T, bool>) {
        layout = Layout::BITS;
        bit = CursorAs<CONTAINER_ARRAY, T>(cursor).mHead;
    } else {
        layout = Layout::ELEMENTS;
        element = reinterpret_cast<std::byte*>(CursorAs<CONTAINER_ARRAY, T>(cursor).mHead);
        elementSize = sizeof(T);
    }
}

CellRuns::CellRuns(const Cursor& cursor)
{
    using Opener = void (CellRuns::*)(const Cursor&);
    static constexpr auto OPENERS =
        ForEachValueType([](auto number) { return Opener{&CellRuns::Open<ValueTypes::At<number()>>}; });
    (this->*OPENERS[static_cast<std::size_t>(cursor->GetAttr().typeId)])(cursor);
}

std::uint32_t CellRuns::Longest() const
{
    switch (layout) {
    case Layout::BITS:
        return BUFFERED_BITS;
    case Layout::NODES:
        return 1;
    default:
        return std::numeric_limits<std::uint32_t>::max();
    }
}

const void* CellRuns::Read(std::uint32_t count)
{
    if (layout == Layout::BITS) {
        UnpackBits(bit, buffer.data(), count);
    }
    return Room();
}

void* CellRuns::Room()
{
    switch (layout) {
    case Layout::BITS:
        return buffer.data();
    case Layout::NODES:
        return valueOf(node);
    default:
        return element;
    }
}

void CellRuns::Written(std::uint32_t count)
{
    if (layout == Layout::BITS) {
        PackBits(buffer.data(), bit, count);
    }
}

void CellRuns::Skip(std::uint32_t count)
{
    switch (layout) {
    case Layout::BITS:
        bit += count;
        break;
    case Layout::NODES:
        node = node->next;
        break;
    default:
        element += elementSize * count;
        break;
    }
}

} // namespace MERVO::Tessera::Func
