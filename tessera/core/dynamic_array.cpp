#include "tessera/core/dynamic_array.h"

#include <cstdlib>

namespace MERVO::Tessera {

DynamicArray<bool>::DynamicArray(std::uint32_t count) : size(count)
{
    if (count == 0) {
        return;
    }
    const double roomyBits = static_cast<double>(static_cast<float>(count) * growthFactor) + 8.0 - 1.0;
    capacity = static_cast<std::uint32_t>(static_cast<std::int64_t>(roomyBits) / 8);
    data = static_cast<std::uint8_t*>(std::calloc(capacity, 1));
    if (data == nullptr) {
        LogError("Fail to Memory Allocation.");
        size = 0;
        capacity = 0;
    }
}

DynamicArray<bool>::DynamicArray(std::initializer_list<bool> values)
    : DynamicArray(static_cast<std::uint32_t>(values.size()))
{
    if (data == nullptr) {
        return;
    }
    BitPosition position = begin();
    for (const bool value : values) {
        *position = value;
        ++position;
    }
}

DynamicArray<bool>::DynamicArray(const std::vector<bool>& values)
    : DynamicArray(static_cast<std::uint32_t>(values.size()))
{
    if (data == nullptr) {
        return;
    }
    BitPosition position = begin();
    for (const bool value : values) {
        *position = value;
        ++position;
    }
}

DynamicArray<bool>::~DynamicArray() { std::free(data); }

} // namespace MERVO::Tessera
