#include "tessera/core/block.h"

#include <cstdint>
#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace MERVO::Tessera {
namespace {

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

constexpr std::align_val_t CACHE_LINE{64};

} // namespace

void* AllocateBlock(std::size_t count, std::size_t elementSize) noexcept
{
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, elementSize, &bytes) || bytes > PTRDIFF_MAX) {
        return nullptr;
    }
    void* const block = ::operator new(bytes, CACHE_LINE, std::nothrow);
    if (block != nullptr) {
        AdviseHugePages(block, bytes);
    }
    return block;
}

void FreeBlock(void* block) noexcept { ::operator delete(block, CACHE_LINE); }

} // namespace MERVO::Tessera
