#include "tessera/core/nesting.h"

#include "tessera/core/memory_room.h"

namespace MERVO::Tessera {
namespace {

constexpr unsigned int DEEPEST = 100;
constexpr std::uint64_t TABLE_BYTES = 512; // of a table without rows, about
constexpr std::uint64_t CHECKED_EVERY = std::uint64_t{16} << 20;

thread_local unsigned int depth = 0;
thread_local std::uint64_t total = 0;
thread_local std::uint64_t checked = 0;

} // namespace

Nesting::Nesting(std::uint64_t bytes) noexcept
{
    if (depth++ == 0) {
        total = 0;
        checked = 0;
        hasRoom = true;
        return;
    }
    total += bytes + TABLE_BYTES;
    if (total - checked >= CHECKED_EVERY && HasRoomFor(total, 1)) {
        checked = total;
    }
    hasRoom = depth <= DEEPEST && total - checked < CHECKED_EVERY;
}

Nesting::~Nesting() { --depth; }

} // namespace MERVO::Tessera
