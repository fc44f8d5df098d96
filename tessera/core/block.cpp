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

constexpr std::size_t CACHE_LINE = 64;

/// Where the memory around a block begins. Even the most narrowly aligned memory leaves room for that before a block.
void*& BeginOf(void* block) { return static_cast<void**>(block)[-1]; }

} // namespace

void* AllocateBlock(std::size_t count, std::size_t elementSize) noexcept
{
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, elementSize, &bytes) || bytes > PTRDIFF_MAX - CACHE_LINE) {
        return nullptr;
    }
    auto* const whole = static_cast<std::byte*>(::operator new(bytes + CACHE_LINE, std::nothrow));
    if (whole == nullptr) {
        return nullptr;
    }
    std::byte* const block = whole + CACHE_LINE - reinterpret_cast<std::uintptr_t>(whole) % CACHE_LINE;
    BeginOf(block) = whole;
    AdviseHugePages(block, bytes);
    return block;
}

void FreeBlock(void* block) noexcept
{
    if (block != nullptr) {
        ::operator delete(BeginOf(block));
    }
}

} // namespace MERVO::Tessera
