#include "tests/support/failing_allocation.h"

#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include "tessera/core/kept_blocks.h"

namespace {

constexpr unsigned int NEVER = 0xFFFFFFFFU;

unsigned int sparedAllocations = NEVER;
std::size_t smallestCounted = 0;
bool hasFailed = false;

void* Allocate(std::size_t bytes, std::size_t alignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__) noexcept
{
    if (sparedAllocations != NEVER && !hasFailed && bytes >= smallestCounted && sparedAllocations-- == 0) {
        sparedAllocations = NEVER;
        hasFailed = true;
        return nullptr;
    }
    void* block = nullptr;
    return ::posix_memalign(&block, alignment, bytes == 0 ? 1 : bytes) == 0 ? block : nullptr;
}

void* AllocateOrThrow(std::size_t bytes)
{
    void* block = Allocate(bytes);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

} // namespace

namespace MERVO::Tessera {

FailingAllocation::FailingAllocation(unsigned int spared, std::size_t fromBytes)
{
    keptBlocks.ReleaseAll(); // they would stand in for what fails
    hasFailed = false;
    smallestCounted = fromBytes;
    sparedAllocations = spared;
}

FailingAllocation::~FailingAllocation() { sparedAllocations = NEVER; }

bool FailingAllocation::HasFailed() { return hasFailed; }

bool AllocationRounds::Next()
{
    constexpr unsigned int MANY = 1000;
    if (rounds == MANY) {
        ADD_FAILURE() << "still allocating";
        return false;
    }
    return rounds++ == 0 || hasFailed;
}

} // namespace MERVO::Tessera

void* operator new(std::size_t bytes) { return AllocateOrThrow(bytes); }
void* operator new[](std::size_t bytes) { return AllocateOrThrow(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }
void* operator new(std::size_t bytes, std::align_val_t alignment, const std::nothrow_t&) noexcept
{
    return Allocate(bytes, static_cast<std::size_t>(alignment));
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }
