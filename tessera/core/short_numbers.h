#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace MERVO::Tessera {

/**
 * Parses texts as ParseShortInteger does, four at a time, as far as all four are such texts.
 * @return how many of the texts, from the first one on, were parsed. None without wide vectors.
 */
std::size_t ParseShortIntegers(const std::string* texts, std::size_t count, std::int32_t* values);
/// The same as ParseShortDecimal does, but of texts of up to 15 characters.
std::size_t ParseShortDecimals(const std::string* texts, std::size_t count, double* values);

/// From the begin of a text that these get, so many bytes can be read, however long it is.
inline constexpr std::size_t SHORT_NUMBER_GUARD = 16;
std::size_t ParseShortIntegers(const std::string_view* texts, std::size_t count, std::int32_t* values);
std::size_t ParseShortDecimals(const std::string_view* texts, std::size_t count, double* values);

} // namespace MERVO::Tessera
