#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tessera/core/block_vector.h"
#include "tessera/core/text_key.h"

namespace MERVO::Tessera {

/**
 * Numbers distinct texts 0, 1, 2 and so on, in the order in which they come; they stay as they are meanwhile.
 *
 * It is a flat hash table with open addressing, which holds the keys, so that half a line of the cache tells a text's
 * number. A slot has 32 bytes, and at most half of them are taken; of few ones at most a quarter, so that hardly any
 * key stands beside its place, where a jump would be mispredicted each time.
 */
class DistinctTexts {
public:
    DistinctTexts() : slots(FEWEST_SLOTS) {}

    [[nodiscard]] std::uint32_t Count() const { return count; }
    /// Write the number of each text. Throw std::bad_alloc.
    void Number(std::span<const std::string> texts, std::uint32_t* textNumbers) { NumberAll(texts, textNumbers); }
    void Number(std::span<const std::string_view> texts, std::uint32_t* textNumbers) { NumberAll(texts, textNumbers); }

private:
    static constexpr std::uint32_t FREE = 0xFFFFFFFF;
    /// Where the key ends, its number begins: no bytes lie between them.
    struct Slot : TextKey {
        std::uint32_t number = FREE;
    };
    static constexpr std::size_t FEWEST_SLOTS = 16;
    static constexpr std::size_t FEW_SLOTS = 1024;   ///< which are in the first-level cache
    static constexpr std::size_t MANY_SLOTS = 16384; ///< which hardly fit into the second-level one

    template <typename Text>
    void NumberAll(std::span<const Text> texts, std::uint32_t* textNumbers);
    std::size_t PlaceOf(std::uint32_t hash) const { return hash >> shift; }
    std::uint32_t NumberOf(const TextKey& key, std::uint32_t hash);
    Slot& FreeSlotFor(std::uint32_t hash);
    bool IsFull() const { return count >= slots.size() / (slots.size() < MANY_SLOTS ? 4 : 2); }
    void Grow();

    BlockVector<Slot> slots; ///< a power of two
    unsigned int shift = 28; ///< takes a hash to its first place
    std::uint32_t count = 0;
};

} // namespace MERVO::Tessera
