#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace MERVO::Tessera {

/// Texts of so many characters at most are parsed here, all characters at once: in about half of the time that the
/// general parsers take for them.
inline constexpr std::size_t SHORT_TEXT = 8;

/// Loads 1 to SHORT_TEXT characters into one number, the first in its lowest byte.
inline std::uint64_t LoadShortText(const char* first, std::size_t size)
{
    constexpr std::size_t HALF = SHORT_TEXT / 2;
    if (size >= HALF) { // two loads that overlap
        std::uint32_t front = 0;
        std::uint32_t back = 0;
        std::memcpy(&front, first, HALF);
        std::memcpy(&back, first + size - HALF, HALF);
        return front | std::uint64_t{back} << (8 * (size - HALF));
    }
    const auto place = [first](
                           std::size_t i) { return std::uint64_t{static_cast<unsigned char>(first[i])} << (8 * i); };
    return place(0) | place(size / 2) | place(size - 1);
}

/// Joins `size` digits that LoadShortText loaded to a number. False if there is any character but digits.
inline bool JoinDigits(std::uint64_t text, std::size_t size, std::uint32_t& value)
{
    constexpr std::uint64_t ZEROS = 0x3030303030303030;
    constexpr std::uint64_t PUSHES_OTHERS_BEYOND_127 = 0x7676767676767676;
    constexpr std::uint64_t HIGHEST_BITS = 0x8080808080808080;
    constexpr std::uint64_t EVERY_FOURTH = 0x000000FF000000FF;
    const std::uint64_t digits = (text ^ ZEROS) << (8 * (SHORT_TEXT - size)); // zeros in front
    const std::uint64_t others = ((digits + PUSHES_OTHERS_BEYOND_127) | digits) & HIGHEST_BITS;
    // Neighbours are joined: 8 digits to 4 pairs, these to the number.
    const std::uint64_t pairs = digits * 10 + (digits >> 8);
    const std::uint64_t even = (pairs & EVERY_FOURTH) * ((std::uint64_t{1000000} << 32) | 100);
    const std::uint64_t odd = ((pairs >> 16) & EVERY_FOURTH) * ((std::uint64_t{10000} << 32) | 1);
    value = static_cast<std::uint32_t>((even + odd) >> 32);
    return others == 0;
}

/// Parses up to 8 characters, digits with or without a '-' in front, as ParseSigned does. False, and `value` is any,
/// for other texts.
inline bool ParseShortInteger(std::string_view text, std::int32_t& value)
{
    if (text.empty() || text.size() > SHORT_TEXT || std::endian::native != std::endian::little) {
        return false;
    }
    const std::uint64_t characters = LoadShortText(text.data(), text.size());
    const std::uint32_t sign = (characters & 0xFF) == '-' ? 1 : 0; // no branch: signs in a column come at random
    const std::uint64_t zeroForSign = std::uint64_t{sign} * ('-' ^ '0');
    std::uint32_t magnitude = 0;
    const bool isNumber = JoinDigits(characters ^ zeroForSign, text.size(), magnitude);
    value = static_cast<std::int32_t>((magnitude ^ (0 - sign)) + sign);
    return isNumber;
}

/// Parses 1 to 7 digits, a point and 1 to 8 digits, with or without a '-' in front, as ParseDouble does. False, and
/// `value` is any, for other texts.
/// Inlined by force: as a call, which the compiler prefers, it takes an eighth longer.
[[gnu::always_inline]] inline bool ParseShortDecimal(std::string_view text, double& value)
{
    constexpr std::size_t WHOLE_DIGITS = 7; // so that digits and power of ten are exact, and division rounds once
    constexpr std::array<double, SHORT_TEXT + 1> POWERS = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
    constexpr std::array<double, 2> SIGNS = {1.0, -1.0};
    if (text.empty() || text.size() > 1 + WHOLE_DIGITS + 1 + SHORT_TEXT || std::endian::native != std::endian::little) {
        return false;
    }
    const std::size_t sign = text.front() == '-' ? 1 : 0;
    std::size_t point = sign;
    std::uint32_t whole = 0;
    for (; point < text.size() && static_cast<unsigned char>(text[point] - '0') < 10; ++point) {
        whole = whole * 10 + static_cast<unsigned char>(text[point] - '0');
    }
    const std::size_t wholeSize = point - sign;
    const std::size_t fractionSize = text.size() - point - 1;
    if (wholeSize - 1 >= WHOLE_DIGITS || fractionSize - 1 >= SHORT_TEXT || text[point] != '.') {
        return false;
    }
    std::uint32_t fraction = 0;
    const bool isNumber = JoinDigits(LoadShortText(&text[point + 1], fractionSize), fractionSize, fraction);
    const double power = POWERS[fractionSize];
    value = SIGNS[sign] * ((static_cast<double>(whole) * power + static_cast<double>(fraction)) / power);
    return isNumber;
}

} // namespace MERVO::Tessera
