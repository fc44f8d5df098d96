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
 * Each key sets two bits of one word. There are 16 to 32 bits for each key, so one or two in a hundred others pass.
 */
class KeyFilter {
public:
    /// Of the keys that have numbers by now. Throws std::bad_alloc when memory is short.
    explicit KeyFilter(const KeyNumbers& keys)
        : shift(HASH_BITS - WordBitsFor(keys.Count())), words(std::size_t{1} << WordBitsFor(keys.Count()))
    {
        keys.ForEachHash([this](std::uint32_t hash) { words[hash >> shift] |= MaskOf(hash); });
    }

    /// False only for a hash that no key has.
    [[nodiscard]] bool MayHave(std::uint32_t hash) const { return (~words[hash >> shift] & MaskOf(hash)) == 0; }

private:
    static constexpr unsigned int HASH_BITS = 32;

    /// The binary digits of the number of words: one or two keys share a word.
    static unsigned int WordBitsFor(std::uint32_t keys)
    {
        return static_cast<unsigned int>(std::bit_width(keys | 2U)) - 1;
    }
    /// The word is picked by the upper bits of the hash, the bits in it by the lower ones.
    static std::uint32_t MaskOf(std::uint32_t hash)
    {
        return std::uint32_t{1} << (hash & 31) | std::uint32_t{1} << (hash >> 5 & 31);
    }

    unsigned int shift; ///< takes a hash to its word
    std::vector<std::uint32_t> words;
};

} // namespace MERVO::Tessera
