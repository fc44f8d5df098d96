#include "tessera/operations/pair_parts.h"

#include <algorithm>
#include <array>
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
      lowestBit(positionBits + restBits), digitCount(1U << (keyBits - restBits)), digits(MakeBlock<Digit>(digitCount))
{
    if (digits != nullptr) {
        DivideDigits(all);
        ends = MakeBlock<std::uint32_t>(std::size_t{CHUNKS} * partCount);
    }
    if (ends == nullptr) {
        moved = all;
        return;
    }
    if (areDivided) {
        const std::uint64_t restMask = (std::uint64_t{1} << lowestBit) - 1;
        Cut(all, [restMask, own = digits.get(), digitOf = DigitOf()](std::uint64_t pair) {
            const Digit digit = own[digitOf(pair)];
            return digit.firstPart + static_cast<std::uint32_t>((pair & restMask) >> digit.shift);
        });
    } else {
        Cut(all, DigitOf());
    }
    for (std::uint32_t part = 0; part < partCount; ++part) {
        largest = std::max(largest, SizeOf(part));
    }
}

/// Finds how many parts the pairs with each digit are cut into: one for most digits.
void PairParts::DivideDigits(const std::uint64_t* all)
{
    constexpr std::uint32_t SAMPLED = 16;      // one in so many
    const std::size_t tooMany = spare / 2 + 1; // for the room that is there already
    const auto digitOf = DigitOf();
    std::array<std::uint32_t, std::size_t{1} << WIDEST_DIGIT> sizes;
    std::fill_n(sizes.begin(), digitCount, 0U);
    for (std::uint32_t i = 0; i < count; i += std::min(SAMPLED, count - i)) {
        sizes[digitOf(all[i])] += SAMPLED;
    }
    for (std::uint32_t value = 0; value < digitCount; ++value) {
        const auto wanted = static_cast<unsigned int>(std::bit_width(sizes[value] / tooMany));
        const unsigned int bits = wanted == 0 ? 0 : std::min(wanted + 1, restBits); // one for an uneven spread
        digits[value] = {partCount, lowestBit - bits};
        areDivided |= bits != 0;
        partCount += 1U << bits;
    }
}

/// Moves all pairs, chunk by chunk, and notes where the parts of each chunk end.
template <typename PartOf>
void PairParts::Cut(const std::uint64_t* all, PartOf partOf)
{
    std::uint32_t* places = ends.get();
    for (std::uint32_t first = 0, chunk = 0; chunk < CHUNKS; ++chunk, places += partCount) {
        const std::uint32_t size = std::min(chunkSize, count - first);
        const std::uint64_t* const from = all + first;
        std::uint64_t* const to = moved + first;
        std::fill_n(places, partCount, 0U);
        for (std::uint32_t i = 0; i < size; ++i) {
            ++places[partOf(from[i])];
        }
        std::uint32_t before = 0;
        for (std::uint32_t part = 0; part < partCount; ++part) {
            before += std::exchange(places[part], before);
        }
        for (std::uint32_t i = 0; i < size; ++i) {
            to[places[partOf(from[i])]++] = from[i];
        }
        first += size;
    }
}

unsigned int PairParts::RestBits(std::uint32_t part) const
{
    const Digit* const after = std::upper_bound(digits.get(), digits.get() + digitCount, part,
        [](std::uint32_t sought, const Digit& digit) { return sought < digit.firstPart; });
    return restBits - (lowestBit - (after - 1)->shift);
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
