#pragma once

#include <cstdint>
#include <string>

#include "tessera/core/value_types.h"

namespace MERVO::Tessera {

/// One element as people read it, whatever the locale: integers of 8 bits as numbers, bool as 1 or 0, float and double
/// with six significant digits, a nested table as its shape.
std::string ElementText(std::int64_t value);
std::string ElementText(std::uint64_t value);
std::string ElementText(double value);
std::string ElementText(const std::string& value);
std::string ElementText(const DateTime& value);
std::string ElementText(const DataFrame& value);

template <Arithmetic T>
std::string ElementText(T value)
{
    if constexpr (std::is_floating_point_v<T>) {
        return ElementText(static_cast<double>(value));
    } else if constexpr (std::is_signed_v<T>) {
        return ElementText(static_cast<std::int64_t>(value));
    } else {
        return ElementText(static_cast<std::uint64_t>(value));
    }
}

/// Writes to standard output, with a flush where a line ends.
void PrintText(const std::string& text);
void PrintElement(const std::string& text); ///< and ", " behind it
void EndPrintedLine();

} // namespace MERVO::Tessera
