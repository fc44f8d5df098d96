#include "tessera/functors/logic_bits.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace MERVO::Tessera::Func {
namespace {

using Word = std::uint64_t;
constexpr std::uint32_t WORD_BITS = 64;
constexpr std::uint32_t BYTE_BITS = 8;
constexpr Word ALL = ~Word{0};
static_assert(std::endian::native == std::endian::little, "the lowest bits of a word are those of its first byte");

/// The bytes in which `count` bits lie from an offset on.
std::uint32_t BytesOf(std::uint32_t offset, std::uint32_t count)
{
    return (offset + count + BYTE_BITS - 1) / BYTE_BITS;
}

/// Reads 1 to 64 bits, and no byte that has none of them. What is above them is left over.
Word ReadBits(BitPosition from, std::uint32_t count)
{
    const std::uint32_t bytes = BytesOf(from.offset, count);
    Word word = 0;
    if (bytes >= sizeof word) {
        std::memcpy(&word, from.byte, sizeof word);
    } else {
        std::memcpy(&word, from.byte, bytes);
    }
    word >>= from.offset;
    if (bytes > sizeof word) {
        word |= static_cast<Word>(from.byte[sizeof word]) << (WORD_BITS - from.offset);
    }
    return word;
}

/// Writes bits that end within eight bytes from the place on.
void WriteBits(Word bits, BitPosition to, std::uint32_t count)
{
    if (count == WORD_BITS) {
        std::memcpy(to.byte, &bits, sizeof bits);
        return;
    }
    const std::uint32_t bytes = BytesOf(to.offset, count);
    const Word written = (ALL >> (WORD_BITS - count)) << to.offset;
    Word word = 0;
    std::memcpy(&word, to.byte, bytes);
    word = (word & ~written) | ((bits << to.offset) & written);
    std::memcpy(to.byte, &word, bytes);
}

template <typename Combine>
void CombineBits(BitPosition left, BitPosition right, BitPosition to, std::uint32_t count, Combine combine)
{
    // The first step ends where a byte of the result ends, so that all others write whole words.
    std::uint32_t step = std::min(count, WORD_BITS - to.offset);
    while (count != 0) {
        WriteBits(combine(ReadBits(left, step), ReadBits(right, step)), to, step);
        left += step;
        right += step;
        to += step;
        count -= step;
        step = std::min(count, WORD_BITS);
    }
}

/// Keeps the bits of one mask, then turns over those of another.
void MapBits(BitPosition from, BitPosition to, std::uint32_t count, Word kept, Word turned)
{
    CombineBits(from, from, to, count, [kept, turned](Word word, Word) { return (word & kept) ^ turned; });
}

} // namespace

void AndBits(BitPosition left, BitPosition right, BitPosition to, std::uint32_t count)
{
    CombineBits(left, right, to, count, [](Word one, Word other) { return one & other; });
}

void OrBits(BitPosition left, BitPosition right, BitPosition to, std::uint32_t count)
{
    CombineBits(left, right, to, count, [](Word one, Word other) { return one | other; });
}

void InvertBits(BitPosition from, BitPosition to, std::uint32_t count) { MapBits(from, to, count, ALL, ALL); }

void AndBits(BitPosition left, bool right, BitPosition to, std::uint32_t count)
{
    MapBits(left, to, count, right ? ALL : 0, 0);
}

void OrBits(BitPosition left, bool right, BitPosition to, std::uint32_t count)
{
    MapBits(left, to, count, right ? 0 : ALL, right ? ALL : 0);
}

} // namespace MERVO::Tessera::Func
