#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "tessera/core/bit_position.h"

/// Packed bits in and out of words, whatever the offset of their place.
namespace MERVO::Tessera::BitWords {

using Word = std::uint64_t;
inline constexpr std::uint32_t WORD_BITS = 64;
inline constexpr Word ALL = ~Word{0};
static_assert(std::endian::native == std::endian::little, "the lowest bits of a word are those of its first byte");

/// The bytes in which `count` bits lie from an offset on.
inline std::uint32_t BytesOf(std::uint32_t offset, std::uint32_t count)
{
    constexpr std::uint32_t BYTE_BITS = 8;
    return (offset + count + BYTE_BITS - 1) / BYTE_BITS;
}

/// Reads 1 to 64 bits, and no byte that has none of them. What is above them is left over.
inline Word Read(BitPosition from, std::uint32_t count)
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

/// Writes 1 to 64 bits that end within eight bytes from the place on. The bits around them stay as they are.
inline void Write(Word bits, BitPosition to, std::uint32_t count)
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

/// Writes 0 to 64 bits anywhere, and moves the place behind them.
inline void Append(Word bits, BitPosition& to, std::uint32_t count)
{
    while (count != 0) {
        const std::uint32_t fitting = std::min(count, WORD_BITS - to.offset);
        Write(bits, to, fitting);
        to += fitting;
        count -= fitting;
        bits = count == 0 ? 0 : bits >> fitting;
    }
}

} // namespace MERVO::Tessera::BitWords
