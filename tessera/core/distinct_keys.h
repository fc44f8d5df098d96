#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "tessera/core/key_numbers.h"

namespace MERVO::Tessera {

/// Numbers distinct keys 0, 1, 2 and so on, in the order in which they come. Throws std::bad_alloc.
class DistinctKeys {
public:
    /// For keys below 2^keyBits. Where these are no more than mostPlaces, a place for each serves instead of a hash.
    DistinctKeys(unsigned int keyBits, std::uint32_t mostPlaces);

    [[nodiscard]] std::uint32_t Count() const { return count; }
    /// Writes the number of each key.
    void Number(std::span<const std::uint64_t> keys, std::uint32_t* keyNumbers);

private:
    std::uint32_t count = 0;
    std::vector<std::uint32_t> places; ///< a key's number + 1
    KeyNumbers numbers;
    std::vector<std::uint64_t> numberedKeys;
};

} // namespace MERVO::Tessera
