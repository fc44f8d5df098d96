#pragma once

#include <cstddef>
#include <cstdint>

#include "tessera/core/block.h"

namespace MERVO::Tessera {

/**
 * Pairs of key and position as for SortPairs, cut into parts by the leading digit of their keys: parts follow each
 * other in the order of that digit, and those of one part keep theirs. Of a digit that many have, as most floating
 * numbers have one of few exponents, further bits are taken.
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
     * Cuts at least one pair. Working set: a counter for each part in each chunk, and 8 bytes for each digit.
     * @param all         has that room in front; pairs move there, and the last places become free.
     * @param roomInFront LeastSpare(pairCount) pairs or more.
     */
    PairParts(std::uint64_t* all, std::uint32_t pairCount, std::size_t roomInFront, unsigned int positionBits,
        unsigned int keyBits);

    /// False where there was no room for the counters; then nothing has been moved.
    bool AreCut() const { return ends != nullptr; }
    /// All pairs, those with equal keys still in their order.
    std::uint64_t* All() const { return moved; }

    std::uint32_t Count() const { return partCount; }
    /// How many of the lowest bits of their keys pairs of a part can differ in.
    unsigned int RestBits(std::uint32_t part) const;
    std::uint32_t SizeOf(std::uint32_t part) const;

    /// Finds room for the largest part, twice; false where that takes too much.
    bool MakeRoom();
    std::uint64_t* FirstRoom() const { return room; }
    std::uint64_t* SecondRoom() const { return room + largest; }
    /// Writes the pairs of a part to the first room.
    void Gather(std::uint32_t part) const;

private:
    static constexpr std::uint32_t CHUNKS = 12;

    /// Where the parts of a digit begin, and by how much the rest of a pair is shifted to tell them apart.
    struct Digit {
        std::uint32_t firstPart;
        std::uint32_t shift;
    };

    std::uint32_t EndOf(std::uint32_t chunk, std::uint32_t part) const
    {
        return ends[std::size_t{chunk} * partCount + part];
    }
    std::uint32_t BeginOf(std::uint32_t chunk, std::uint32_t part) const
    {
        return part == 0 ? 0 : EndOf(chunk, part - 1);
    }
    /// Finds a pair's digit; a copy of what that takes, which nothing that is written can touch.
    auto DigitOf() const
    {
        return [shift = lowestBit, mask = digitCount - 1](
                   std::uint64_t pair) { return static_cast<std::uint32_t>(pair >> shift) & mask; };
    }
    void DivideDigits(const std::uint64_t* all);
    template <typename PartOf>
    void Cut(const std::uint64_t* all, PartOf partOf);

    std::uint64_t* moved;
    std::uint32_t count;
    std::size_t spare;
    std::uint32_t chunkSize;
    unsigned int restBits;
    unsigned int lowestBit; ///< of the digit
    std::uint32_t digitCount;
    Block<Digit> digits;
    bool areDivided = false;
    std::uint32_t partCount = 0;
    Block<std::uint32_t> ends;
    std::uint32_t largest = 0;
    std::uint64_t* room = nullptr;
    Block<std::uint64_t> ownRoom;
};

} // namespace MERVO::Tessera
