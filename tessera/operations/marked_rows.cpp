#include "tessera/operations/marked_rows.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "tessera/core/bit_words.h"

namespace MERVO::Tessera {
namespace {

using BitWords::ALL;
using BitWords::Word;
using BitWords::WORD_BITS;

/// Writes every row, and moves on only behind those that are marked: where marks come as they will, a processor can't
/// foresee branches.
std::uint32_t* WriteWithoutBranches(Word word, std::uint32_t first, std::uint32_t bits, std::uint32_t* to)
{
    for (std::uint32_t bit = 0; bit < bits; ++bit) {
        *to = first + bit;
        to += (word >> bit) & 1;
    }
    return to;
}

} // namespace

std::span<const std::uint32_t> MarkedRows::Next(std::span<std::uint32_t> buffer)
{
    std::uint32_t* to = buffer.data();
    const auto end = static_cast<std::uint32_t>(std::min<std::size_t>(count, first + buffer.size()));
    while (first != end) {
        const std::uint32_t bits = std::min(WORD_BITS, end - first);
        const Word word = (BitWords::Read(marks, bits) ^ (wanted ? 0 : ALL)) & (ALL >> (WORD_BITS - bits));
        if (word == ALL) {
            std::iota(to, to + WORD_BITS, first);
            to += WORD_BITS;
        } else if (word != 0) {
            to = WriteWithoutBranches(word, first, bits, to);
        }
        first += bits;
        marks += bits;
    }
    return {buffer.data(), to};
}

} // namespace MERVO::Tessera
