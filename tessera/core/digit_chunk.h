#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// Up to 8 characters in one number, the first in its lowest byte, so that all of them are looked at at once.
namespace MERVO::Tessera {

inline constexpr std::size_t DIGIT_CHUNK = 8;

/// Loads COUNT characters.
template <std::size_t COUNT>
std::uint64_t LoadCharacters(const char* from)
{
    std::uint64_t characters = 0;
    std::memcpy(&characters, from, COUNT);
    return std::endian::native == std::endian::little ? characters : __builtin_bswap64(characters);
}

/// Stores DIGIT_CHUNK characters.
inline void StoreCharacters(char* to, std::uint64_t characters)
{
    characters = std::endian::native == std::endian::little ? characters : __builtin_bswap64(characters);
    std::memcpy(to, &characters, sizeof characters);
}

/// Loads 1 to DIGIT_CHUNK characters, with zeros behind them. No byte beyond them is read.
inline std::uint64_t LoadChunk(const char* first, std::size_t size)
{
    constexpr std::size_t HALF = DIGIT_CHUNK / 2;
    if (size == DIGIT_CHUNK) {
        return LoadCharacters<DIGIT_CHUNK>(first);
    }
    if (size >= HALF) { // two loads that overlap
        return LoadCharacters<HALF>(first) | LoadCharacters<HALF>(first + size - HALF) << (8 * (size - HALF));
    }
    const auto place = [first](std::size_t i) { return LoadCharacters<1>(first + i) << (8 * i); };
    return place(0) | place(size / 2) | place(size - 1);
}

/// The values of digits; what is none becomes more than 9.
constexpr std::uint64_t DigitsOf(std::uint64_t characters) { return characters ^ 0x3030303030303030; }

/// The highest bit of each byte that is no digit's value.
constexpr std::uint64_t NoDigitsAmong(std::uint64_t digits)
{
    constexpr std::uint64_t PUSHES_OTHERS_BEYOND_127 = 0x7676767676767676;
    return ((digits + PUSHES_OTHERS_BEYOND_127) | digits) & 0x8080808080808080;
}

/// The number that 8 digits' values make, the first of them the highest.
constexpr std::uint32_t JoinDigits(std::uint64_t digits)
{
    constexpr std::uint64_t EVERY_FOURTH = 0x000000FF000000FF;
    // Neighbours are joined: 8 digits to 4 pairs, these to the number.
    const std::uint64_t pairs = digits * 10 + (digits >> 8);
    const std::uint64_t even = (pairs & EVERY_FOURTH) * ((std::uint64_t{1000000} << 32) | 100);
    const std::uint64_t odd = ((pairs >> 16) & EVERY_FOURTH) * ((std::uint64_t{10000} << 32) | 1);
    return static_cast<std::uint32_t>((even + odd) >> 32);
}

/// The values of a number's 8 digits, the inverse of JoinDigits. The number is below 10^8.
constexpr std::uint64_t SplitDigits(std::uint32_t number)
{
    // A number is split to its halves, these to pairs and those to digits, all of them at once. The quotients are
    // products with a reciprocal that is exact for so few digits.
    const std::uint64_t halves = number / 10000 | std::uint64_t{number % 10000} << 32;
    const std::uint64_t hundreds = (halves * 10486 >> 20) & 0x0000007F0000007F;
    const std::uint64_t pairs = hundreds | (halves - 100 * hundreds) << 16;
    const std::uint64_t tens = (pairs * 103 >> 10) & 0x000F000F000F000F;
    return tens | (pairs - 10 * tens) << 8;
}

} // namespace MERVO::Tessera
