#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace MERVO::Tessera {

/**
 * Numbers distinct keys 0, 1, 2 and so on, in the order in which they come.
 *
 * It is a flat hash table with open addressing that holds no keys: they stay with the caller, who hands in a key's hash
 * (as from HashOf) and a function isSame(number), which tells whether the key that has this number is the one. It is
 * only called for keys with the same hash. So one table serves numbers, strings and keys of several columns, for sets
 * as well as for groups: what belongs to a key stands in an array of the caller's, at the key's number.
 *
 * A slot has 8 bytes, and at most half of the slots are taken; of few ones at most an eighth, so that hardly any key
 * stands beside its place, where a jump would be mispredicted each time. Growing throws std::bad_alloc when memory is
 * short, and leaves the table as it was.
 */
class KeyNumbers {
public:
    static constexpr std::uint32_t NONE = 0xFFFFFFFF;

    /// An empty table with room for the expected number of keys; it grows beyond that.
    explicit KeyNumbers(std::uint32_t expected = 0);

    [[nodiscard]] std::uint32_t Count() const { return count; }

    /// The number of a key; NONE if it has none.
    template <typename IsSame>
    [[nodiscard]] std::uint32_t Find(std::uint32_t hash, IsSame&& isSame) const
    {
        const Slot& slot = slots[PlaceOf(hash, isSame)];
        return slot.mark - 1;
    }

    /// The number of a key. A new key gets the next number, which is what Count() gave before.
    template <typename IsSame>
    std::uint32_t FindOrAdd(std::uint32_t hash, IsSame&& isSame)
    {
        std::size_t place = PlaceOf(hash, isSame);
        if (slots[place].mark == FREE) {
            if (IsFull()) {
                Grow();
                place = FreePlaceFor(hash);
            }
            slots[place] = {hash, ++count};
        }
        return slots[place].mark - 1;
    }

    /// The number of a key with this hash that stands at its place or next to it, as most do; else NONE. No key is
    /// compared, and no jump can be mispredicted.
    [[nodiscard]] std::uint32_t LikelyNumber(std::uint32_t hash) const
    {
        const std::size_t place = hash >> shift;
        const Slot& first = slots[place];
        const Slot& second = slots[NextTo(place)];
        return (first.hash == hash ? first.mark : second.hash == hash ? second.mark : FREE) - 1;
    }

    /// Asks for the memory in which a key with this hash stands, if there is one.
    void Prefetch(std::uint32_t hash) const { __builtin_prefetch(slots.data() + (hash >> shift)); }

    /// Calls visit(hash) for every key, in no order.
    template <typename Visit>
    void ForEachHash(Visit&& visit) const
    {
        for (const Slot& slot : slots) {
            if (slot.mark != FREE) {
                visit(slot.hash);
            }
        }
    }

private:
    static constexpr std::uint32_t FREE = 0;
    struct Slot {
        std::uint32_t hash;
        std::uint32_t mark; ///< the key's number + 1; FREE without a key
    };

    static constexpr std::size_t FEW_SLOTS = 2048; ///< which are in the first-level cache

    bool IsFull() const { return count >= slots.size() / (slots.size() < FEW_SLOTS ? 8 : 2); }
    std::size_t NextTo(std::size_t place) const { return (place + 1) & (slots.size() - 1); }

    /// Where a key stands, or else the free place where it would.
    template <typename IsSame>
    std::size_t PlaceOf(std::uint32_t hash, IsSame&& isSame) const
    {
        std::size_t place = hash >> shift;
        while (slots[place].mark != FREE && !(slots[place].hash == hash && isSame(slots[place].mark - 1))) {
            place = NextTo(place);
        }
        return place;
    }
    std::size_t FreePlaceFor(std::uint32_t hash) const
    {
        return PlaceOf(hash, [](std::uint32_t) { return false; });
    }
    void Grow();

    std::vector<Slot> slots; ///< a power of two, from 2 on
    unsigned int shift;      ///< takes a hash to its first place
    std::uint32_t count = 0;
};

} // namespace MERVO::Tessera
