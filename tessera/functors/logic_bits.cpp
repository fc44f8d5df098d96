#include "tessera/functors/logic_bits.h"

#include <algorithm>

#include "tessera/core/bit_words.h"

namespace MERVO::Tessera::Func {
namespace {

using BitWords::ALL;
using BitWords::Word;
using BitWords::WORD_BITS;

template <typename Combine>
void CombineBits(BitPosition left, BitPosition right, BitPosition to, std::uint32_t count, Combine combine)
{
    // The first step ends where a byte of the result ends, so that all others write whole words.
    std::uint32_t step = std::min(count, WORD_BITS - to.offset);
    while (count != 0) {
        BitWords::Write(combine(BitWords::Read(left, step), BitWords::Read(right, step)), to, step);
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
