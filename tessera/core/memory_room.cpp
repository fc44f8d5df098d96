#include "tessera/core/memory_room.h"

#include <unistd.h>

#include <algorithm>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"

namespace MERVO::Tessera {

bool HasRoomFor(std::uint64_t count, std::uint64_t elementSize)
{
    std::uint64_t room = PTRDIFF_MAX;
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages > 0 && pageSize > 0) {
        room = std::min(room, static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize));
    }
    return elementSize == 0 || count <= room / elementSize;
}

std::uint64_t CellSizeOf(MERVO_TESSERA_TYPEID type)
{
    static constexpr auto SIZES =
        ForEachValueType([](auto number) -> std::uint64_t { return sizeof(ValueTypes::At<number()>); });
    return IsValueType(type) ? SIZES[static_cast<std::size_t>(type)] : 0;
}

std::uint64_t RowSizeOf(std::span<const SeriesPtr> columns)
{
    std::uint64_t bytes = 0;
    for (const SeriesPtr& column : columns) {
        bytes += column == nullptr ? 0 : CellSizeOf(column->GetTypeId());
    }
    return bytes;
}

} // namespace MERVO::Tessera
