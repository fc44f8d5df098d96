#include "tessera/core/kept_blocks.h"

#include <algorithm>
#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace MERVO::Tessera {
namespace {

#ifdef __linux__
std::size_t SystemFigure(int name)
{
    const long figure = ::sysconf(name);
    return figure < 0 ? 0 : static_cast<std::size_t>(figure);
}

/// A sixteenth of the machine's memory, where that is less.
std::size_t MostKept()
{
    static const std::size_t most =
        std::min(MOST_KEPT_BYTES, SystemFigure(_SC_PHYS_PAGES) / 16 * SystemFigure(_SC_PAGESIZE));
    return most;
}
#else
std::size_t MostKept() { return MOST_KEPT_BYTES; }
#endif

/// The pages wholly within a block may be taken back, until they are written again.
void OfferPages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t bytes)
{
#ifdef MADV_FREE
    static const std::uintptr_t page = SystemFigure(_SC_PAGESIZE);
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t begin = (address + page - 1) / page * page;
    const std::uintptr_t end = (address + bytes) / page * page;
    if (begin < end) {
        ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_FREE);
    }
#endif
}

} // namespace

constinit KeptBlocks keptBlocks;

KeptBlocks::~KeptBlocks()
{
    ReleaseAll();
    isClosed = true;
}

void* KeptBlocks::Take(std::size_t bytes) noexcept
{
    const std::lock_guard lock(mutex);
    Entry* best = nullptr;
    for (std::size_t i = 0; i < count; ++i) {
        const bool fits = entries[i].bytes >= bytes && entries[i].bytes - bytes <= bytes / 4;
        if (fits && (best == nullptr || entries[i].bytes <= best->bytes)) { // among equal ones that used last
            best = &entries[i];
        }
    }
    if (best == nullptr) {
        const std::size_t most = std::max(mostInUse, inUse + bytes);
        while (count != 0 && inUse + bytes + total > most + most / 16) {
            ReleaseOldest();
        }
        return nullptr;
    }
    void* const block = best->block;
    AddInUse(best->bytes);
    Remove(static_cast<std::size_t>(best - entries.data()));
    return block;
}

bool KeptBlocks::Keep(void* block, std::size_t bytes) noexcept
{
    const std::size_t most = MostKept();
    const std::lock_guard lock(mutex);
    inUse -= bytes;
    if (bytes > most / 2 || isClosed) {
        return false;
    }
    while (count == entries.size() || (count != 0 && total > most - bytes)) {
        ReleaseOldest();
    }
    entries[count++] = {block, bytes};
    total += bytes;
    while (offeredCount < count && total - offered > MOST_UNOFFERED_BYTES) {
        const Entry& oldest = entries[offeredCount++];
        OfferPages(oldest.block, oldest.bytes);
        offered += oldest.bytes;
    }
    return true;
}

void KeptBlocks::AddInUse(std::size_t bytes) noexcept
{
    inUse += bytes;
    mostInUse = std::max(mostInUse, inUse);
}

void KeptBlocks::CountIn(std::size_t bytes) noexcept
{
    const std::lock_guard lock(mutex);
    AddInUse(bytes);
}

void KeptBlocks::CountOut(std::size_t bytes) noexcept
{
    const std::lock_guard lock(mutex);
    inUse -= bytes;
}

bool KeptBlocks::ReleaseAll() noexcept
{
    const std::lock_guard lock(mutex);
    const bool isAny = count != 0;
    while (count != 0) {
        ReleaseOldest();
    }
    return isAny;
}

void KeptBlocks::ReleaseOldest() noexcept
{
    ReleaseBlock(entries.front().block);
    Remove(0);
}

void KeptBlocks::Remove(std::size_t place) noexcept
{
    const std::size_t bytes = entries[place].bytes;
    total -= bytes;
    if (place < offeredCount) {
        --offeredCount;
        offered -= bytes;
    }
    std::copy(entries.begin() + place + 1, entries.begin() + count, entries.begin() + place);
    --count;
}

} // namespace MERVO::Tessera
