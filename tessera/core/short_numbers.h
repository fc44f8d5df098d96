#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace MERVO::Tessera {

/**
 * Parses texts as ParseShortInteger does, four at a time, as far as all four are such texts.
 * @return how many of the texts, from the first one on, were parsed. None without wide vectors.
 */
std::size_t ParseShortIntegers(const std::string* texts, std::size_t count, std::int32_t* values);
/// The same as ParseShortDecimal does, but of texts of up to 15 characters.
std::size_t ParseShortDecimals(const std::string* texts, std::size_t count, double* values);

} // namespace MERVO::Tessera
