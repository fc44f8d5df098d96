#include "tessera/core/dynamic_array.h"

#include <cstring>
#include <utility>

#include "tessera/platform/logger.h"

namespace MERVO::Tessera {
namespace {

constexpr const char* NO_BLOCK = "Fail to Memory Allocation.";

/// A count, or none where it is beyond what an array can have.
std::uint32_t CountIn32Bits(std::size_t count)
{
    if (std::in_range<std::uint32_t>(count)) {
        return static_cast<std::uint32_t>(count);
    }
    LogError("%s", NO_BLOCK);
    return 0;
}

template <typename Values>
void CopyBools(Values from, std::uint32_t count, std::uint8_t* data)
{
    BitPosition to(data, 0);
    for (; count != 0; --count, ++from, ++to) {
        *to = static_cast<bool>(*from);
    }
}

} // namespace

void* AllocateCells(std::uint32_t count, std::size_t cellSize) noexcept
{
    void* const block = count == 0 ? nullptr : AllocateBlock(count, cellSize);
    if (block == nullptr && count != 0) {
        LogError("Failed to create dynamic array, size %zu", static_cast<std::size_t>(count));
    }
    return block;
}

DynamicArray<bool>::DynamicArray(std::uint32_t count) : size(count)
{
    if (count == 0) {
        return;
    }
    const double roomyBits = static_cast<double>(static_cast<float>(count) * growthFactor) + 8.0 - 1.0;
    capacity = static_cast<std::uint32_t>(static_cast<std::int64_t>(roomyBits) / 8);
    data = static_cast<std::uint8_t*>(AllocateBlock(capacity, 1));
    if (data == nullptr) {
        LogError("%s", NO_BLOCK);
        size = 0;
        capacity = 0;
        return;
    }
    std::memset(data, 0, capacity);
}

DynamicArray<bool>::DynamicArray(std::initializer_list<bool> values) : DynamicArray(CountIn32Bits(values.size()))
{
    CopyBools(values.begin(), size, data);
}

DynamicArray<bool>::DynamicArray(const std::vector<bool>& values) : DynamicArray(CountIn32Bits(values.size()))
{
    CopyBools(values.begin(), size, data);
}

DynamicArray<bool>::~DynamicArray() { FreeBlock(data); }

} // namespace MERVO::Tessera
