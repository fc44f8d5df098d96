#pragma once

#include <cstdint>

/// Characters as the C locale sees them, whatever locale the process has set.
namespace MERVO::Tessera {

inline bool IsDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }

/// The value of a digit.
inline std::uint32_t DigitOf(char c) { return static_cast<unsigned char>(c - '0'); }

/// True for white space: a blank, and the characters from tab to carriage return.
inline bool IsBlank(char c) { return c == ' ' || static_cast<unsigned char>(c - '\t') < 5; }

/// A letter in lower case; any other character becomes none that a letter is compared with.
inline char LowerCase(char c) { return static_cast<char>(c | 0x20); }

} // namespace MERVO::Tessera
