#include "tessera/core/bit_scan.h"

#include <bit>
#include <cstring>

namespace MERVO::Tessera {
namespace {

using Word = std::uint64_t;

Word LoadWord(const std::uint8_t* bytes)
{
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// The bits of a byte from one offset to before another, in place.
unsigned int BitsBetween(std::uint8_t byte, std::uint32_t begin, std::uint32_t end)
{
    return byte & (0xFFU << begin) & ~(0xFFU << end);
}

std::uint32_t CountBytes(const std::uint8_t* bytes, const std::uint8_t* end)
{
    std::uint32_t count = 0;
    for (; end - bytes >= static_cast<std::ptrdiff_t>(sizeof(Word)); bytes += sizeof(Word)) {
        count += static_cast<std::uint32_t>(std::popcount(LoadWord(bytes)));
    }
    for (; bytes != end; ++bytes) {
        count += static_cast<std::uint32_t>(std::popcount(*bytes));
    }
    return count;
}

} // namespace

std::uint32_t CountBits(BitPosition head, BitPosition tail)
{
    if (head == tail) {
        return 0;
    }
    if (head.byte == tail.byte) {
        return static_cast<std::uint32_t>(std::popcount(BitsBetween(*head.byte, head.offset, tail.offset)));
    }
    auto count = static_cast<std::uint32_t>(std::popcount(BitsBetween(*head.byte, head.offset, 8)));
    count += CountBytes(head.byte + 1, tail.byte);
    // Behind the last whole byte there may be no memory, unless bits of it belong to the range.
    if (tail.offset != 0) {
        count += static_cast<std::uint32_t>(std::popcount(BitsBetween(*tail.byte, 0, tail.offset)));
    }
    return count;
}

BitPosition FindBit(BitPosition head, BitPosition tail, bool wanted)
{
    for (; head != tail && head.offset != 0; ++head) {
        if (*head == wanted) {
            return head;
        }
    }
    const Word idle = wanted ? 0 : ~Word{0};
    while (tail.byte - head.byte >= static_cast<std::ptrdiff_t>(sizeof(Word)) && LoadWord(head.byte) == idle) {
        head.byte += sizeof(Word);
    }
    while (head != tail && *head != wanted) {
        ++head;
    }
    return head;
}

} // namespace MERVO::Tessera
