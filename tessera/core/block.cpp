#include "tessera/core/block.h"

#include <atomic>
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
    std::size_t lead; ///< bytes in front of the block, header and all
};
static_assert(sizeof(Header) <= CACHE_LINE);

Header& HeaderOf(void* block) { return *(static_cast<Header*>(block) - 1); }

std::size_t AlignmentOf(std::size_t bytes) { return bytes < CACHE_LINE ? sizeof(Header) : CACHE_LINE; }

/**
 * What is to lie in front of a block of such a size.
 *
 * The system gives each large block the same offset in a page. Rows of such columns, read side by side, would all meet
 * in the same few places of a cache and drive each other out; so each begins some lines further on than the last one.
 */
std::size_t LeadFor(std::size_t bytes)
{
    constexpr std::size_t STEP = 5 * CACHE_LINE; // 16 of them differ by a line or more in a page
    constexpr unsigned int STEPS = 16;
    static std::atomic<unsigned int> largeOnes{0};
    const bool isLarge = bytes >= SMALLEST_KEPT_BLOCK;
    return AlignmentOf(bytes) + (isLarge ? largeOnes.fetch_add(1, std::memory_order_relaxed) % STEPS * STEP : 0);
}

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
    const std::size_t lead = LeadFor(bytes);
    if (bytes > PTRDIFF_MAX - lead || (bytes >= LARGE && !HasRoomFor(bytes, 1))) {
        return nullptr;
    }
    void* const start = ::operator new (lead + bytes, std::align_val_t{AlignmentOf(bytes)}, std::nothrow);
    if (start == nullptr) {
        return nullptr;
    }
    void* const block = static_cast<std::byte*>(start) + lead;
    new (&HeaderOf(block)) Header{bytes, lead};
    AdviseHugePages(block, bytes);
    return block;
}

} // namespace

void ReleaseBlock(void* block) noexcept
{
    const Header header = HeaderOf(block);
    ::operator delete (static_cast<std::byte*>(block) - header.lead, std::align_val_t{AlignmentOf(header.bytes)});
}

void* AllocateBlock(std::size_t count, std::size_t elementSize) noexcept
{
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, elementSize, &bytes)) {
        return nullptr;
    }
    const bool isLarge = bytes >= SMALLEST_KEPT_BLOCK;
    void* block = isLarge ? keptBlocks.Take(bytes) : nullptr;
    if (block != nullptr) {
        return block;
    }
    block = AllocateFresh(bytes);
    if (block == nullptr && keptBlocks.ReleaseAll()) {
        block = AllocateFresh(bytes);
    }
    if (block != nullptr && isLarge) {
        keptBlocks.CountIn(bytes);
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

void DropBlock(void* block) noexcept
{
    if (block == nullptr) {
        return;
    }
    const std::size_t bytes = HeaderOf(block).bytes;
    if (bytes >= SMALLEST_KEPT_BLOCK) {
        keptBlocks.CountOut(bytes);
    }
    ReleaseBlock(block);
}

} // namespace MERVO::Tessera
