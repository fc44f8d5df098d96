#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace MERVO::Tessera {

/// Room that any number's text needs.
inline constexpr std::size_t NUMBER_TEXT_ROOM = 24;

/// Room that the text of a float, a double or an integer of 32 bits needs.
inline constexpr std::size_t SHORT_NUMBER_ROOM = 13;

/// Write a number in decimal, without a terminator. `first` has NUMBER_TEXT_ROOM characters, or SHORT_NUMBER_ROOM for
/// 32 bits.
/// @return one past the last character.
char* WriteInteger(char* first, std::int32_t value) noexcept;
char* WriteInteger(char* first, std::uint32_t value) noexcept;
char* WriteInteger(char* first, std::int64_t value) noexcept;
char* WriteInteger(char* first, std::uint64_t value) noexcept;

/// Writes what printf gives for "%.5e" in the C locale and with rounding to nearest, the texts nan, -nan, inf and -inf
/// among it. `first` has SHORT_NUMBER_ROOM characters; no terminator.
/// @return one past the last character.
char* WriteScientific(char* first, double value) noexcept;

template <typename T>
struct Parsed {
    T value;
    int error; ///< 0 or ERANGE
};

/**
 * Parse as strtoll, strtoull (base 10) and strtod do it in the C locale, whatever locale the process has set: white
 * space and a sign may lead, whatever follows the number is ignored, and a text without a number is 0. A NUL ends the
 * text. errno is left alone.
 *
 * Beyond the range the nearest end (for double an infinity) comes with ERANGE. '-' before an unsigned number negates it
 * modulo 2^64. A double nearer to 0 than the smallest normal one also comes with ERANGE if the text had to be rounded.
 */
Parsed<std::int64_t> ParseSigned(std::string_view text) noexcept;
Parsed<std::uint64_t> ParseUnsigned(std::string_view text) noexcept;

/// Throws std::bad_alloc when memory is short for an unusually long text.
Parsed<double> ParseDouble(std::string_view text);

} // namespace MERVO::Tessera
