#include "tessera/core/block.h"

#include <cstdint>
#include <new>

#include "tessera/core/kept_blocks.h"
#include "tessera/core/memory_room.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace MERVO::Tessera {
namespace {

constexpr std::size_t CACHE_LINE = 64;

/// Stands in front of each block.
struct alignas(__STDCPP_DEFAULT_NEW_ALIGNMENT__) Header {
    std::size_t bytes;
};
static_assert(sizeof(Header) <= CACHE_LINE);

Header& HeaderOf(void* block) { return *(static_cast<Header*>(block) - 1); }

/// What lies in front of a block of such a size, header and all.
std::size_t LeadOf(std::size_t bytes) { return bytes < CACHE_LINE ? sizeof(Header) : CACHE_LINE; }

void AdviseHugePages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t bytes)
{
#ifdef MADV_HUGEPAGE
    constexpr std::size_t HUGE_PAGE = std::size_t{2} << 20;
    const std::size_t lead = (HUGE_PAGE - reinterpret_cast<std::uintptr_t>(block) % HUGE_PAGE) % HUGE_PAGE;
    if (bytes >= lead + HUGE_PAGE) {
        ::madvise(static_cast<std::byte*>(block) + lead, (bytes - lead) / HUGE_PAGE * HUGE_PAGE, MADV_HUGEPAGE);
    }
#endif
}

void* AllocateFresh(std::size_t bytes) noexcept
{
    constexpr std::size_t LARGE = std::size_t{64} << 20;
    const std::size_t lead = LeadOf(bytes);
    if (bytes > PTRDIFF_MAX - lead || (bytes >= LARGE && !HasRoomFor(bytes, 1))) {
        return nullptr;
    }
    void* const start = ::operator new (lead + bytes, std::align_val_t{lead}, std::nothrow);
    if (start == nullptr) {
        return nullptr;
    }
    void* const block = static_cast<std::byte*>(start) + lead;
    new (&HeaderOf(block)) Header{bytes};
    AdviseHugePages(block, bytes);
    return block;
}

} // namespace

void ReleaseBlock(void* block) noexcept
{
    const std::size_t lead = LeadOf(HeaderOf(block).bytes);
    ::operator delete (static_cast<std::byte*>(block) - lead, std::align_val_t{lead});
}

void* AllocateBlock(std::size_t count, std::size_t elementSize) noexcept
{
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, elementSize, &bytes)) {
        return nullptr;
    }
    void* const kept = bytes < SMALLEST_KEPT_BLOCK ? nullptr : keptBlocks.Take(bytes);
    if (kept != nullptr) {
        return kept;
    }
    void* const block = AllocateFresh(bytes);
    if (block == nullptr && keptBlocks.ReleaseAll()) {
        return AllocateFresh(bytes);
    }
    return block;
}

void FreeBlock(void* block) noexcept
{
    if (block == nullptr) {
        return;
    }
    const std::size_t bytes = HeaderOf(block).bytes;
    if (bytes < SMALLEST_KEPT_BLOCK || !keptBlocks.Keep(block, bytes)) {
        ReleaseBlock(block);
    }
}

} // namespace MERVO::Tessera
