#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "tessera/core/key_numbers.h"

namespace MERVO::Tessera {

/**
 * Tells nearly all keys that are not in a KeyNumbers by one look at a small table of bits, without a jump.
 *
 * Each key sets a bit. Of few keys there are 64 to 128 for each, so about one in a hundred others passes; of many 16 to
 * 32, as a table that does not fit into the caches would take longer than those that pass.
 */
class KeyFilter {
public:
    /// Of the keys that have numbers by now. Throws std::bad_alloc when memory is short.
    explicit KeyFilter(const KeyNumbers& keys)
        : shift(HASH_BITS - WordBitsFor(keys.Count())), words(std::size_t{1} << WordBitsFor(keys.Count()))
    {
        keys.ForEachHash([this](std::uint32_t hash) { words[hash >> shift] |= std::uint32_t{1} << (hash & 31); });
    }

    /// False only for a hash that no key has.
    [[nodiscard]] bool MayHave(std::uint32_t hash) const { return (words[hash >> shift] >> (hash & 31) & 1) != 0; }

private:
    static constexpr unsigned int HASH_BITS = 32;

    static constexpr std::uint32_t FEW_KEYS = 4096;

    /// The binary digits of the number of words.
    static unsigned int WordBitsFor(std::uint32_t keys)
    {
        const auto bits = static_cast<unsigned int>(std::bit_width(keys | 2U));
        return keys < FEW_KEYS ? bits + 1 : bits - 1;
    }

    unsigned int shift; ///< takes a hash to its word; its lower bits pick the bit in it
    std::vector<std::uint32_t> words;
};

} // namespace MERVO::Tessera
