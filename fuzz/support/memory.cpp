#include "fuzz/support/memory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr std::size_t UNLIMITED = static_cast<std::size_t>(-1);
constexpr std::size_t MOST_FILLED = std::size_t{64} << 10; // more would take longer than all the rest

std::size_t liveBytes = 0;
std::size_t limit = UNLIMITED;
bool hasRunOut = false;
int fill = 0xA5;

void* Allocate(std::size_t bytes, std::size_t alignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__) noexcept
{
    void* block = nullptr;
    if (bytes > limit || liveBytes > limit - bytes || ::posix_memalign(&block, alignment, bytes) != 0) {
        hasRunOut = true;
        return nullptr;
    }
    liveBytes += ::malloc_usable_size(block);
    return block == nullptr ? nullptr : std::memset(block, fill, std::min(bytes, MOST_FILLED));
}

void* AllocateOrThrow(std::size_t bytes, std::size_t alignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__)
{
    void* const block = Allocate(bytes, alignment);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void Release(void* block) noexcept
{
    liveBytes -= ::malloc_usable_size(block);
    std::free(block);
}

} // namespace

// The forms for arrays, and those that are told a size, come down to these.
void* operator new(std::size_t bytes) { return AllocateOrThrow(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }
void* operator new(std::size_t bytes, std::align_val_t alignment)
{
    return AllocateOrThrow(bytes, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t bytes, std::align_val_t alignment, const std::nothrow_t&) noexcept
{
    return Allocate(bytes, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t bytes) { return AllocateOrThrow(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }
void operator delete(void* block) noexcept { Release(block); }
void operator delete(void* block, std::size_t) noexcept { Release(block); }
void operator delete(void* block, std::align_val_t) noexcept { Release(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { Release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { Release(block); }
void operator delete[](void* block) noexcept { Release(block); }
void operator delete[](void* block, std::size_t) noexcept { Release(block); }

/// What the programs want of the sanitizers, wherever they are started.
extern "C" const char* __asan_default_options()
{
    return "allocator_may_return_null=1:max_allocation_size_mb=256:quarantine_size_mb=16:max_malloc_fill_size=0:malloc_"
           "context_size=8";
}
extern "C" const char* __ubsan_default_options() { return "print_stacktrace=1"; }

namespace MERVO::Tessera::Fuzz {

MemoryBudget::MemoryBudget(std::size_t bytes)
{
    limit = liveBytes + bytes;
    hasRunOut = false;
}

MemoryBudget::~MemoryBudget() { limit = UNLIMITED; }

bool MemoryBudget::HasRunOut() { return hasRunOut; }

void FillFreshMemory(unsigned char byte) { fill = byte; }

} // namespace MERVO::Tessera::Fuzz
