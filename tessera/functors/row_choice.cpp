#include "tessera/functors/row_choice.h"

#include <numeric>

namespace MERVO::Tessera::Func {
namespace {

using BitWords::WORD_BITS;

/// Writes every row, and moves on only behind those that are chosen: where bits come as they will, a processor can't
/// foresee branches.
std::uint32_t* WriteWithoutBranches(BitWords::Word word, std::uint32_t first, std::uint32_t* to)
{
    for (std::uint32_t bit = 0; bit < WORD_BITS; ++bit) {
        *to = first + bit;
        to += (word >> bit) & 1;
    }
    return to;
}

} // namespace

std::span<const std::uint32_t> RowChoice::Positions(std::span<std::uint32_t> buffer) const
{
    std::uint32_t* to = buffer.data();
    std::uint32_t row = first;
    for (const BitWords::Word word : bits) {
        if (word == BitWords::ALL) {
            std::iota(to, to + WORD_BITS, row);
            to += WORD_BITS;
        } else if (word != 0) {
            to = WriteWithoutBranches(word, row, to);
        }
        row += WORD_BITS;
    }
    return {buffer.data(), to};
}

} // namespace MERVO::Tessera::Func
