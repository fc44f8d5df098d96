#include "tests/support/failing_allocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include "tessera/core/kept_blocks.h"

namespace {

using MERVO::Tessera::Shortage;

bool isWatching = false;
unsigned int sparedAllocations = 0;
std::size_t smallestCounted = 0;
Shortage shortage = Shortage::PASSING;
bool hasFailed = false;
std::atomic<std::size_t> blocksInUse = 0;

bool IsToFail(std::size_t bytes)
{
    if (!isWatching || bytes < smallestCounted) {
        return false;
    }
    if (hasFailed) {
        return shortage == Shortage::LASTING;
    }
    hasFailed = sparedAllocations-- == 0;
    return hasFailed;
}

void* Allocate(std::size_t bytes, std::size_t alignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__) noexcept
{
    void* block = nullptr;
    if (IsToFail(bytes) || ::posix_memalign(&block, alignment, bytes == 0 ? 1 : bytes) != 0) {
        return nullptr;
    }
    ++blocksInUse;
    return block;
}

void* OrThrow(void* block)
{
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void Release(void* block) noexcept
{
    if (block != nullptr) {
        --blocksInUse;
        std::free(block);
    }
}

} // namespace

namespace MERVO::Tessera {

FailingAllocation::FailingAllocation(unsigned int spared, std::size_t fromBytes, Shortage shortageKind)
{
    keptBlocks.ReleaseAll(); // they would stand in for what fails
    hasFailed = false;
    smallestCounted = fromBytes;
    shortage = shortageKind;
    sparedAllocations = spared;
    isWatching = true;
}

FailingAllocation::~FailingAllocation() { isWatching = false; }

bool FailingAllocation::HasFailed() { return hasFailed; }

std::size_t BlocksInUse() { return blocksInUse; }

bool AllocationRounds::Next()
{
    constexpr unsigned int MANY = 5000;
    if (rounds == MANY) {
        ADD_FAILURE() << "still allocating";
        return false;
    }
    return rounds++ == 0 || hasFailed;
}

} // namespace MERVO::Tessera

using Alignment = std::align_val_t;

void* operator new(std::size_t bytes) { return OrThrow(Allocate(bytes)); }
void* operator new[](std::size_t bytes) { return OrThrow(Allocate(bytes)); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }
void* operator new(std::size_t bytes, Alignment at) { return OrThrow(Allocate(bytes, static_cast<std::size_t>(at))); }
void* operator new[](std::size_t bytes, Alignment at) { return operator new(bytes, at); }
void* operator new(std::size_t bytes, Alignment at, const std::nothrow_t&) noexcept
{
    return Allocate(bytes, static_cast<std::size_t>(at));
}
void* operator new[](std::size_t bytes, Alignment at, const std::nothrow_t&) noexcept
{
    return Allocate(bytes, static_cast<std::size_t>(at));
}
void operator delete(void* block) noexcept { Release(block); }
void operator delete[](void* block) noexcept { Release(block); }
void operator delete(void* block, std::size_t) noexcept { Release(block); }
void operator delete[](void* block, std::size_t) noexcept { Release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { Release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { Release(block); }
void operator delete(void* block, Alignment) noexcept { Release(block); }
void operator delete[](void* block, Alignment) noexcept { Release(block); }
void operator delete(void* block, std::size_t, Alignment) noexcept { Release(block); }
void operator delete[](void* block, std::size_t, Alignment) noexcept { Release(block); }
void operator delete(void* block, Alignment, const std::nothrow_t&) noexcept { Release(block); }
void operator delete[](void* block, Alignment, const std::nothrow_t&) noexcept { Release(block); }
