#include "tessera/core/memory_room.h"

#include <unistd.h>

#include <algorithm>

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

} // namespace MERVO::Tessera
