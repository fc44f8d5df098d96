#pragma once

#include <cmath>
#include <limits>
#include <type_traits>

namespace MERVO::Tessera {

/// Whether two elements belong to different groups. Floating numbers do unless their distance is at most 2^-52, for
/// float 2^-23; so NaN differs from everything, and an infinity from its like.
template <typename T>
bool AreDifferent(const T& left, const T& right)
{
    if constexpr (std::is_floating_point_v<T>) {
        return !(std::fabs(left - right) <= std::numeric_limits<T>::epsilon());
    } else {
        return left != right;
    }
}

} // namespace MERVO::Tessera
