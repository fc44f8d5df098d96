#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace MERVO::Tessera::Func {

/// Stands in a list of rows for a row that there is not.
inline constexpr std::uint32_t NO_ROW = 0xFFFFFFFF;

/// The value of a cell for which there is no row: NaN for floating numbers; 0, false, an empty text, a stamp of 0 or a
/// table without columns for all others.
template <typename T>
T MissingCell()
{
    if constexpr (std::is_floating_point_v<T>) {
        return std::numeric_limits<T>::quiet_NaN();
    } else {
        return T{};
    }
}
static_assert(std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN()) == 0x7FF8000000000000ULL);
static_assert(std::bit_cast<std::uint32_t>(std::numeric_limits<float>::quiet_NaN()) == 0x7FC00000U);

} // namespace MERVO::Tessera::Func
