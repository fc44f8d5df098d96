#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tessera/core/block_vector.h"
#include "tessera/core/key_numbers.h"
#include "tessera/core/text_key.h"

namespace MERVO::Tessera {

/**
 * Numbers distinct texts of a column 0, 1, 2 and so on, in the order in which they are asked for; the column stays as
 * it is meanwhile.
 *
 * It is a flat hash table with open addressing, which holds the keys, so that half a line of the cache tells a text's
 * number. A slot has 32 bytes, and at most half of them are taken; of few ones at most a quarter, so that hardly any
 * key stands beside its place, where a jump would be mispredicted each time.
 *
 * Where most texts come only a few times, as the size of the column shows, such slots would take up more than they
 * save: from then on slots of 8 bytes hold hashes and numbers, and a text is compared with the cell in which it came
 * first. Working set: at most 16 bytes for each cell, or 20 to 40 for each distinct text, and half as much again while
 * it grows.
 */
class DistinctTexts {
public:
    explicit DistinctTexts(std::span<const std::string> column);

    [[nodiscard]] std::uint32_t Count() const { return static_cast<std::uint32_t>(firstPositions.size()); }
    /// Write the numbers of texts, at some positions or from one on. Throw std::bad_alloc, and may be called again.
    void Number(std::span<const std::uint32_t> positions, std::uint32_t* textNumbers);
    void Number(std::uint32_t first, std::uint32_t count, std::uint32_t* textNumbers);

private:
    static constexpr std::uint32_t FREE = 0xFFFFFFFF;
    /// Where the key ends, its number begins: no bytes lie between them.
    struct Slot : TextKey {
        std::uint32_t number = FREE;
    };
    static constexpr std::size_t FEWEST_SLOTS = 16;
    static constexpr std::size_t FEW_SLOTS = 1024;   ///< which are in the first-level cache
    static constexpr std::size_t MANY_SLOTS = 16384; ///< which hardly fit into the second-level one
    static constexpr std::size_t TEXTS_PER_SLOT = 2; ///< which the column has at least, while slots hold keys
    static constexpr std::uint32_t BLOCK = 64;       ///< of texts whose slots are all asked for before one is needed
    using KeyBlock = std::array<TextKey, BLOCK>;

    static std::size_t MostKeys(std::size_t slotCount) { return slotCount / (slotCount < MANY_SLOTS ? 4 : 2); }

    template <typename TextAt>
    void NumberAll(TextAt textAt, std::uint32_t count, std::uint32_t* textNumbers);
    template <typename TextAt>
    void NumberOneByOne(TextAt textAt, std::uint32_t count, std::uint32_t* textNumbers);
    template <typename TextAt>
    void NumberByKeys(TextAt textAt, std::uint32_t count, KeyBlock& keys, std::uint32_t* textNumbers);
    template <typename TextAt>
    void NumberByHashes(TextAt textAt, std::uint32_t count, std::uint32_t* textNumbers);

    std::uint32_t PositionOf(const std::string& text) const { return static_cast<std::uint32_t>(&text - texts.data()); }
    bool HasKeys() const { return !slots.empty(); }
    bool HasRoomForKeys(std::size_t more) const { return Count() + more <= MostKeys(mostSlots); }
    std::size_t PlaceOf(std::uint32_t hash) const { return hash >> shift; }
    std::uint32_t NumberOf(const TextKey& key, std::uint32_t hash, const std::string& text);
    std::uint32_t Add(std::uint32_t hash, const std::string& text);
    Slot& FreeSlotFor(std::uint32_t hash);
    void Grow();
    void DropKeys();

    std::span<const std::string> texts;
    std::size_t mostSlots;                     ///< that hold keys
    BlockVector<Slot> slots;                   ///< a power of two; none once keys were dropped
    unsigned int shift = 28;                   ///< takes a hash to its first place
    KeyNumbers hashes;                         ///< of all distinct texts, from then on
    std::vector<std::uint32_t> firstPositions; ///< of each number's text
};

} // namespace MERVO::Tessera
