#include "tessera/core/kept_blocks.h"

#include <algorithm>
#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace MERVO::Tessera {
namespace {

/// The pages wholly within a block may be taken back, until they are written again.
void OfferPages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t bytes)
{
#if defined(MADV_FREE) && UINTPTR_MAX == UINT32_MAX
    static const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
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
        return nullptr;
    }
    void* const block = best->block;
    total -= best->bytes;
    std::move(best + 1, entries.data() + count, best);
    --count;
    return block;
}

bool KeptBlocks::Keep(void* block, std::size_t bytes) noexcept
{
    if (bytes > MOST_KEPT_BYTES / 2) {
        return false;
    }
    OfferPages(block, bytes);
    const std::lock_guard lock(mutex);
    if (isClosed) {
        return false;
    }
    while (count == entries.size() || (count != 0 && total > MOST_KEPT_BYTES - bytes)) {
        ReleaseOldest();
    }
    entries[count++] = {block, bytes};
    total += bytes;
    return true;
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
    total -= entries.front().bytes;
    std::move(entries.begin() + 1, entries.begin() + count, entries.begin());
    --count;
}

} // namespace MERVO::Tessera
