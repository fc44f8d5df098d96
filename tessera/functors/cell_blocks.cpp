#include "tessera/functors/cell_blocks.h"

#include <cstring>
#include <functional>

#include "tessera/core/bit_bytes.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"

namespace MERVO::Tessera::Func {

template <typename T>
void CellBlocks::Open(const Cursor& cursor)
{
    if constexpr (std::is_same_v<T, DateTime>) {
        form = Form::STAMPS;
        slotSize = sizeof(std::int32_t);
    } else if constexpr (Arithmetic<T>) {
        slotSize = sizeof(T);
    } else {
        form = Form::ADDRESSES;
        slotSize = sizeof(void*);
    }
    isList = !cursor->IsMemoryContiguous();
    if (isList) {
        node = CursorAs<CONTAINER_LIST, T>(cursor).mHead.link;
        valueOf = [](ListLink* link) -> void* { return &static_cast<ListNode<T>*>(link)->value; };
    } else if constexpr (std::is_same_v<T, bool>) {
        isBits = true;
        bit = CursorAs<CONTAINER_ARRAY, T>(cursor).mHead;
    } else {
        element = reinterpret_cast<std::byte*>(CursorAs<CONTAINER_ARRAY, T>(cursor).mHead);
        elementSize = sizeof(T);
    }
}

CellBlocks::CellBlocks(const Cursor& cursor)
{
    using Opener = void (CellBlocks::*)(const Cursor&);
    static constexpr auto OPENERS =
        ForEachValueType([](auto number) { return Opener{&CellBlocks::Open<ValueTypes::At<number()>>}; });
    (this->*OPENERS[static_cast<std::size_t>(cursor->GetAttr().typeId)])(cursor);
}

template <typename Visit>
void CellBlocks::ForEachCell(std::uint32_t count, Visit&& visit)
{
    std::byte* slot = buffer.data();
    if (isList) {
        for (; count != 0; --count, slot += slotSize) {
            visit(slot, valueOf(node));
            node = node->next;
        }
    } else {
        std::byte* cell = element; // a copy, which a write to a byte can't touch
        for (; count != 0; --count, slot += slotSize) {
            visit(slot, static_cast<void*>(cell));
            cell += elementSize;
        }
        element = cell;
    }
}

void* ResultBlocks::Room(std::uint32_t count)
{
    if (IsInPlace()) {
        return element;
    }
    if (form == Form::ADDRESSES) {
        ForEachCell(count, [](std::byte* slot, const void* cell) { std::memcpy(slot, &cell, sizeof cell); });
    }
    return buffer.data();
}

void ResultBlocks::Written(std::uint32_t count)
{
    if (isBits) {
        PackBits(reinterpret_cast<const bool*>(buffer.data()), bit, count);
        bit += count;
    } else if (IsInPlace()) {
        element += count * elementSize;
    } else if (form == Form::VALUES) {
        ForEachCell(count, [this](const std::byte* slot, void* cell) { std::memcpy(cell, slot, slotSize); });
    } else if (form == Form::STAMPS) {
        ForEachCell(count, [](const std::byte* slot, void* cell) {
            std::int32_t stamp = 0;
            std::memcpy(&stamp, slot, sizeof stamp);
            *static_cast<DateTime*>(cell) = DateTime(stamp);
        });
    }
}

void ResultBlocks::Clear(std::uint32_t count)
{
    for (; form == Form::VALUES && count != 0; count -= std::min(count, LONGEST)) {
        const std::uint32_t step = std::min(count, LONGEST);
        std::memset(Room(step), 0, step * slotSize);
        Written(step);
    }
}

bool ResultBlocks::IsWrittenOver(const std::byte* head, std::size_t bytes, std::uint32_t count) const
{
    const std::less<const std::byte*> isBefore; // the operator is for places of one array only
    return IsInPlace() && isBefore(head, element + count * elementSize) && isBefore(element, head + bytes);
}

OperandBlocks::OperandBlocks(
    const Cursor& source, bool isRepeated, const ResultBlocks& results, std::uint32_t resultCount)
    : CellBlocks(source), repeats(isRepeated)
{
    readsInPlace =
        IsInPlace() && !isRepeated && !results.IsWrittenOver(element, resultCount * elementSize, resultCount);
    if (repeats) {
        Spread();
    }
}

void OperandBlocks::Gather(std::uint32_t count)
{
    if (isBits) {
        UnpackBits(bit, reinterpret_cast<bool*>(buffer.data()), count);
        bit += count;
    } else if (form == Form::ADDRESSES) {
        ForEachCell(count, [](std::byte* slot, const void* cell) { std::memcpy(slot, &cell, sizeof cell); });
    } else if (form == Form::STAMPS) {
        ForEachCell(count, [](std::byte* slot, const void* cell) {
            const auto stamp = static_cast<std::int32_t>(static_cast<const DateTime*>(cell)->TimeStamp());
            std::memcpy(slot, &stamp, sizeof stamp);
        });
    } else if (isList) {
        ForEachCell(count, [this](std::byte* slot, const void* cell) { std::memcpy(slot, cell, slotSize); });
    } else {
        std::memcpy(buffer.data(), element, count * elementSize);
        element += count * elementSize;
    }
}

void OperandBlocks::Spread()
{
    Gather(1);
    std::size_t filled = slotSize;
    const std::size_t wanted = LONGEST * slotSize;
    for (; filled < wanted; filled *= 2) {
        std::memcpy(buffer.data() + filled, buffer.data(), filled);
    }
}

const void* OperandBlocks::Read(std::uint32_t count)
{
    if (readsInPlace) {
        const std::byte* const cells = element;
        element += count * elementSize;
        return cells;
    }
    if (!repeats) {
        Gather(count);
    }
    return buffer.data();
}

} // namespace MERVO::Tessera::Func
