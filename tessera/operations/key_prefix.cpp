#include "tessera/operations/key_prefix.h"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace MERVO::Tessera {

KeyRange::KeyRange(std::span<const std::uint64_t> keys) : lowest(keys.front()), highest(keys.front())
{
    std::uint64_t before = keys.front();
    std::uint32_t falls = 0;
    for (const std::uint64_t key : keys) {
        lowest = std::min(lowest, key);
        highest = std::max(highest, key);
        varying |= key ^ keys.front();
        falls |= key < before ? 1U : 0U;
        before = key;
    }
    isSorted = falls == 0;
}

KeyPrefix::KeyPrefix(const KeyRange& range, unsigned int mostBits)
{
    const std::uint64_t span = range.highest - range.lowest;
    const auto spanBits = static_cast<unsigned int>(std::bit_width(span));
    const auto varyingBits = static_cast<unsigned int>(std::popcount(range.varying));
    if (spanBits <= mostBits || spanBits <= varyingBits) {
        base = range.lowest;
        TakeLeading(spanBits == 0 ? 0 : ~std::uint64_t{0} >> (64 - spanBits), mostBits);
    } else {
        TakeLeading(range.varying, mostBits);
    }
}

void KeyPrefix::TakeLeading(std::uint64_t varying, unsigned int mostBits)
{
    const auto all = static_cast<unsigned int>(std::popcount(varying));
    bits = std::min(all, mostBits);
    isWhole = all <= mostBits;
    for (unsigned int taken = 0; taken < bits;) {
        const auto top = static_cast<unsigned int>(std::bit_width(varying));
        const auto length = std::min(static_cast<unsigned int>(std::countl_one(varying << (64 - top))), bits - taken);
        taken += length;
        const unsigned int from = top - length;
        parts[partCount++] = {from, bits - taken, ~std::uint64_t{0} >> (64 - length)};
        varying &= (std::uint64_t{1} << from) - 1;
    }
}

void KeyPrefix::Write(std::span<const std::uint64_t> keys, unsigned int shift, std::uint64_t* prefixes) const
{
    std::fill_n(prefixes, keys.size(), std::uint64_t{0});
    for (unsigned int k = 0; k < partCount; ++k) {
        const Part part = parts[k];
        const unsigned int to = part.to + shift;
        const std::uint64_t lowest = base;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            prefixes[i] |= (((keys[i] - lowest) >> part.from) & part.mask) << to;
        }
    }
}

} // namespace MERVO::Tessera
