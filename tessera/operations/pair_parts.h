#pragma once

#include <cstddef>
#include <cstdint>

#include "tessera/core/block.h"

namespace MERVO::Tessera {

/**
 * Pairs of key and position as for SortPairs, cut into parts by the leading digit of their keys: parts follow each
 * other in the order of that digit, and those of one part keep theirs.
 *
 * A part is small enough for the caches, so that sorting one after the other is faster than all at once; and it takes
 * no second room for all pairs. They are cut in a few chunks, each one moved into the place of the one before, and a
 * part is gathered from these only when its turn has come.
 */
class PairParts {
public:
    /// How many pairs there must be room for in front of `count` of them.
    static std::size_t LeastSpare(std::size_t count) { return (count + CHUNKS - 1) / CHUNKS; }

    /**
     * Cuts at least one pair. Working set: a counter for each value of the digit in each chunk.
     * @param all   has room for `spare` pairs in front, and is no place of theirs any more.
     * @param spare LeastSpare(count) or more.
     */
    PairParts(
        std::uint64_t* all, std::uint32_t count, std::size_t spare, unsigned int positionBits, unsigned int keyBits);

    /// False where there was no room for the counters; then nothing has been moved.
    bool AreCut() const { return ends != nullptr; }
    /// All pairs, those of one part in their order.
    std::uint64_t* All() const { return moved; }
    /// Those bits of the keys that pairs of one part can differ in.
    unsigned int RestBits() const { return restBits; }

    std::uint32_t Count() const { return values; }
    std::uint32_t SizeOf(std::uint32_t part) const;

    /// Finds room for the largest part, twice; false where that takes too much, but parts can be visited.
    bool MakeRoom();
    std::uint64_t* FirstRoom() const { return room; }
    std::uint64_t* SecondRoom() const { return room + largest; }
    /// Writes the pairs of a part to the first room.
    void Gather(std::uint32_t part) const;

private:
    static constexpr std::uint32_t CHUNKS = 12;

    std::uint32_t EndOf(std::uint32_t chunk, std::uint32_t part) const
    {
        return ends[std::size_t{chunk} * values + part];
    }
    std::uint32_t BeginOf(std::uint32_t chunk, std::uint32_t part) const
    {
        return part == 0 ? 0 : EndOf(chunk, part - 1);
    }
    void Cut(const std::uint64_t* from, std::uint32_t size, std::uint64_t* to, std::uint32_t* places) const;

    std::uint64_t* moved;
    std::uint32_t count;
    std::size_t spare;
    std::uint32_t chunkSize;
    unsigned int restBits;
    unsigned int lowestBit; ///< of the digit
    std::uint32_t values;   ///< that the digit can have
    Block<std::uint32_t> ends;
    std::uint32_t largest = 0;
    std::uint64_t* room = nullptr;
    Block<std::uint64_t> ownRoom;
};

} // namespace MERVO::Tessera
