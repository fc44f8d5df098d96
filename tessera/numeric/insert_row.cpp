#include "tessera/numeric/insert_row.h"

#include <cerrno>
#include <cstring>
#include <functional>

#include "tessera/core/cursor_part.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/cell_runs.h"
#include "tessera/functors/copy_series.h"

namespace MERVO::Tessera::Func {
namespace {

/// Why a block can't be copied: its end lies behind that of the room, or it shares bytes with it; 0 if it can.
int Refusal(const std::byte* room, std::size_t roomBytes, const std::byte* block, std::size_t size)
{
    const std::less<> isBefore;
    const bool overlap = isBefore(room, block + size) && isBefore(block, room + size);
    return size > roomBytes ? ERANGE : overlap ? EINVAL : 0;
}

/// The room of a destination that is filled block after block.
struct Room {
    std::byte* next;
    std::size_t bytes;

    /// Copies a block; `text` tells the log of a failure.
    bool Append(const void* block, std::size_t size, const char* ordinal)
    {
        if (size == 0) {
            return true;
        }
        const int failure = Refusal(next, bytes, static_cast<const std::byte*>(block), size);
        if (failure != 0) {
            LogError("Memory copy failed when copying the %s part in InsertRow: %d.", ordinal, failure);
            return false;
        }
        std::memcpy(next, block, size);
        next += size;
        bytes -= size;
        return true;
    }
};

ErrorCode InsertBlocks(
    const Cursor& rows, const Cursor& base, const Cursor& dst, std::uint32_t index, std::size_t elementSize)
{
    const std::size_t rowBytes = rows->Length() * elementSize;
    const std::size_t baseBytes = base->Length() * elementSize;
    const std::size_t leadBytes = index * elementSize;
    const auto* const lead = static_cast<const std::byte*>(CellRuns(base).Read(0));
    Room room{static_cast<std::byte*>(CellRuns(dst).Room()), dst->Length() * elementSize};
    const bool isDone = room.Append(lead, leadBytes, "first") &&
        room.Append(CellRuns(rows).Read(0), rowBytes, "second") &&
        room.Append(lead + leadBytes, baseBytes - leadBytes, "third");
    return isDone ? ERROR_NONE : ERROR_GENERAL;
}

ErrorCode InsertParts(const Cursor& rows, const Cursor& base, const Cursor& dst, std::uint32_t index)
{
    const std::uint32_t rowCount = rows->Length();
    const std::uint32_t behind = base->Length() - index;
    const CopySeries<CONTAINER_ARRAY> copy;
    ErrorCode code = copy.ProcessSeries(PartOf(base, 0, index), PartOf(dst, 0, index), true).code;
    if (code == ERROR_NONE) {
        code = copy.ProcessSeries(rows, PartOf(dst, index, rowCount), true).code;
    }
    if (code == ERROR_NONE) {
        code = copy.ProcessSeries(PartOf(base, index, behind), PartOf(dst, index + rowCount, behind), true).code;
    }
    return code;
}

} // namespace

template <ContainerID CID>
std::string InsertRowBase<CID>::GetName() const
{
    return "InsertRow";
}

template <ContainerID CID>
SeriesAttr InsertRowBase<CID>::GetDstAttr(const Cursor& lhs, const Cursor& rhs) const
{
    return WithLength(rhs->GetAttr(), lhs->Length() + rhs->Length());
}

template <ContainerID CID>
bool InsertRowBase<CID>::CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    const MERVO_TESSERA_TYPEID type = dst->GetAttr().typeId;
    return lhs->GetAttr().typeId == type && rhs->GetAttr().typeId == type &&
        std::uint64_t{dst->Length()} == std::uint64_t{lhs->Length()} + rhs->Length();
}

template <ContainerID CID>
template <typename T>
ErrorCode InsertRowBase<CID>::OnExecuteSIMD(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    const bool isServed = Arithmetic<T> && !std::is_same_v<T, bool> && index <= rhs->Length();
    return isServed ? InsertBlocks(lhs, rhs, dst, index, sizeof(T)) : ErrorCode{ERROR_GENERAL};
}

template <ContainerID CID>
template <typename T>
ErrorCode InsertRowBase<CID>::OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    if (index > rhs->Length()) {
        LogError("index %d error, rhs->Length() %d", static_cast<int>(index), static_cast<int>(rhs->Length()));
        return ERROR_BAD_VALUE;
    }
    return InsertParts(lhs, rhs, dst, index);
}

template class InsertRowBase<CONTAINER_ARRAY>;
template const BinaryTable<1> Binary<InsertRowBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;

} // namespace MERVO::Tessera::Func
