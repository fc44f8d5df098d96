#include "tessera/operations/pair_parts.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "tessera/operations/radix_pairs.h"

namespace MERVO::Tessera {
namespace {

/// The narrowest digit that leaves few passes over each part, as long as parts are of a size that is fast to sort.
unsigned int DigitBits(std::uint32_t count, unsigned int keyBits)
{
    constexpr unsigned int SMALL_PART = 9; // in bits
    constexpr unsigned int LARGE_PART = 11;
    constexpr unsigned int FEWEST = 6; // so that no part is a large one of all, if keys are spread evenly
    const auto most = std::min(static_cast<unsigned int>(std::bit_width(count >> SMALL_PART)), WIDEST_DIGIT);
    const auto least = std::max(static_cast<unsigned int>(std::bit_width(count >> LARGE_PART)), FEWEST);
    if (keyBits <= most) {
        return keyBits;
    }
    const unsigned int passes = (keyBits - most + NARROW_DIGIT - 1) / NARROW_DIGIT;
    const unsigned int rest = std::min(passes * NARROW_DIGIT, keyBits);
    return std::clamp(keyBits - rest, std::min(least, most), most);
}

} // namespace

PairParts::PairParts(std::uint64_t* all, std::uint32_t pairCount, std::size_t roomInFront, unsigned int positionBits,
    unsigned int keyBits)
    : moved(all - roomInFront), count(pairCount), spare(roomInFront),
      chunkSize(static_cast<std::uint32_t>(LeastSpare(pairCount))), restBits(keyBits - DigitBits(pairCount, keyBits)),
      lowestBit(positionBits + restBits), values(1U << (keyBits - restBits)),
      ends(MakeBlock<std::uint32_t>(std::size_t{CHUNKS} * values))
{
    if (ends == nullptr) {
        moved = all;
        return;
    }
    for (std::uint32_t chunk = 0, first = 0; chunk < CHUNKS; ++chunk) {
        const std::uint32_t size = std::min(chunkSize, count - first);
        Cut(all + first, size, moved + first, ends.get() + std::size_t{chunk} * values);
        first += size;
    }
    for (std::uint32_t part = 0; part < values; ++part) {
        largest = std::max(largest, SizeOf(part));
    }
}

/// Leaves in `places` where the pairs with each digit end.
void PairParts::Cut(const std::uint64_t* from, std::uint32_t size, std::uint64_t* to, std::uint32_t* places) const
{
    const unsigned int shift = lowestBit; // copies, which nothing that is written can touch
    const std::uint32_t mask = values - 1;
    std::fill_n(places, values, 0U);
    for (std::uint32_t i = 0; i < size; ++i) {
        ++places[static_cast<std::uint32_t>(from[i] >> shift) & mask];
    }
    std::uint32_t before = 0;
    for (std::uint32_t value = 0; value <= mask; ++value) {
        before += std::exchange(places[value], before);
    }
    for (std::uint32_t i = 0; i < size; ++i) {
        to[places[static_cast<std::uint32_t>(from[i] >> shift) & mask]++] = from[i];
    }
}

std::uint32_t PairParts::SizeOf(std::uint32_t part) const
{
    std::uint32_t size = 0;
    for (std::uint32_t chunk = 0; chunk < CHUNKS; ++chunk) {
        size += EndOf(chunk, part) - BeginOf(chunk, part);
    }
    return size;
}

bool PairParts::MakeRoom()
{
    const std::size_t needed = 2 * std::size_t{largest};
    if (needed <= spare) {
        room = moved + count; // the last chunk has left its place
    } else if (needed <= count / 2) {
        ownRoom = MakeBlock<std::uint64_t>(needed);
        room = ownRoom.get();
    }
    return room != nullptr;
}

void PairParts::Gather(std::uint32_t part) const
{
    std::uint64_t* to = room;
    for (std::uint32_t chunk = 0; chunk < CHUNKS; ++chunk) {
        const std::uint64_t* const pairs = moved + std::size_t{chunk} * chunkSize;
        to = std::copy(pairs + BeginOf(chunk, part), pairs + EndOf(chunk, part), to);
    }
}

} // namespace MERVO::Tessera
