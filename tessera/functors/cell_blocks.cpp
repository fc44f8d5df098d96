#include "tessera/functors/cell_blocks.h"

#include <cstring>
#include <functional>

#include "tessera/core/bit_bytes.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"

namespace MERVO::Tessera::Func {
namespace {

/// The bytes of a cell as kernels see it; 0 for cells of which they see the address.
constexpr auto VALUE_SIZES = ForEachValueType([](auto number) -> std::size_t {
    using T = ValueTypes::At<number()>;
    if constexpr (std::is_same_v<T, DateTime>) {
        return sizeof(std::int32_t);
    } else {
        return Arithmetic<T> ? sizeof(T) : 0;
    }
});

} // namespace

CellBlocks::CellBlocks(const Cursor& cursor) : next(cursor)
{
    const MERVO_TESSERA_TYPEID type = cursor->GetAttr().typeId;
    const std::size_t size = VALUE_SIZES[static_cast<std::size_t>(type)];
    form = type == TESSERA_DATETIME ? Form::STAMPS : size == 0 ? Form::ADDRESSES : Form::VALUES;
    slotSize = size == 0 ? sizeof(void*) : size;
}

template <typename Visit>
void CellBlocks::ForEachCell(std::uint32_t count, Visit&& visit)
{
    std::byte* slot = buffer.data();
    if (next.layout == CellPlace::Layout::NODES) {
        for (; count != 0; --count, slot += slotSize) {
            visit(slot, next.Cell());
            next.Skip(1);
        }
    } else {
        std::byte* cell = next.element; // a copy, which a write to a byte can't touch
        for (; count != 0; --count, slot += slotSize) {
            visit(slot, static_cast<void*>(cell));
            cell += next.elementSize;
        }
        next.element = cell;
    }
}

ResultBlocks::ResultBlocks(const Cursor& dst, bool isLight)
    : CellBlocks(dst), wantsStreams(isLight && dst->Length() >= STREAMED_FROM / slotSize)
{
}

ResultBlocks::~ResultBlocks()
{
    if (IsStreamed()) {
        FinishStreaming();
    }
}

std::uint32_t ResultBlocks::NextCount(std::uint32_t remaining) const
{
    std::size_t most = LONGEST;
    if (IsStreamed()) {
        const std::size_t overhang = reinterpret_cast<std::uintptr_t>(next.element) % CACHE_LINE;
        most = overhang == 0 ? most : (CACHE_LINE - overhang) / slotSize;
    }
    return static_cast<std::uint32_t>(std::min<std::size_t>(remaining, most));
}

void* ResultBlocks::Room(std::uint32_t count)
{
    if (IsInPlace() && !IsStreamed()) {
        return next.element;
    }
    if (form == Form::ADDRESSES) {
        ForEachCell(count, [](std::byte* slot, const void* cell) { std::memcpy(slot, &cell, sizeof cell); });
    }
    return buffer.data();
}

void ResultBlocks::Written(std::uint32_t count)
{
    if (next.layout == Layout::BITS) {
        PackBits(reinterpret_cast<const bool*>(buffer.data()), next.bit, count);
        next.Skip(count);
    } else if (IsInPlace()) {
        if (IsStreamed()) {
            StreamBytes(next.element, buffer.data(), count * slotSize);
        }
        next.Skip(count);
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
    return IsInPlace() && isBefore(head, next.element + count * next.elementSize) &&
        isBefore(next.element, head + bytes);
}

OperandBlocks::OperandBlocks(
    const Cursor& source, bool isRepeated, const ResultBlocks& results, std::uint32_t resultCount)
    : CellBlocks(source), repeats(isRepeated)
{
    readsInPlace =
        IsInPlace() && !isRepeated && !results.IsWrittenOver(next.element, resultCount * next.elementSize, resultCount);
    if (repeats) {
        Spread();
    }
}

void OperandBlocks::Gather(std::uint32_t count)
{
    if (next.layout == Layout::BITS) {
        UnpackBits(next.bit, reinterpret_cast<bool*>(buffer.data()), count);
        next.Skip(count);
    } else if (form == Form::ADDRESSES) {
        ForEachCell(count, [](std::byte* slot, const void* cell) { std::memcpy(slot, &cell, sizeof cell); });
    } else if (form == Form::STAMPS) {
        ForEachCell(count, [](std::byte* slot, const void* cell) {
            const auto stamp = static_cast<std::int32_t>(static_cast<const DateTime*>(cell)->TimeStamp());
            std::memcpy(slot, &stamp, sizeof stamp);
        });
    } else if (next.layout == Layout::NODES) {
        ForEachCell(count, [this](std::byte* slot, const void* cell) { std::memcpy(slot, cell, slotSize); });
    } else {
        std::memcpy(buffer.data(), next.element, count * next.elementSize);
        next.Skip(count);
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
        const std::byte* const cells = next.element;
        next.Skip(count);
        return cells;
    }
    if (!repeats) {
        Gather(count);
    }
    return buffer.data();
}

} // namespace MERVO::Tessera::Func
