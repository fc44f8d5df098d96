#include "tessera/operations/marked_rows.h"

#include <algorithm>
#include <cstddef>

namespace MERVO::Tessera {

using BitWords::ALL;
using BitWords::Word;
using BitWords::WORD_BITS;

Func::RowChoice MarkedRows::Next(std::span<Word> buffer)
{
    const std::uint32_t begin = first;
    const auto end = static_cast<std::uint32_t>(std::min<std::size_t>(count, begin + buffer.size() * WORD_BITS));
    std::size_t words = 0;
    while (first != end) {
        const std::uint32_t bits = std::min(WORD_BITS, end - first);
        buffer[words++] = (BitWords::Read(marks, bits) ^ (wanted ? 0 : ALL)) & (ALL >> (WORD_BITS - bits));
        first += bits;
        marks += bits;
    }
    return {begin, end - begin, buffer.first(words)};
}

} // namespace MERVO::Tessera
