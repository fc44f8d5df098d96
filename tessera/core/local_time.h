#pragma once

#include <cstdint>
#include <ctime>
#include <optional>

namespace MERVO::Tessera {

/**
 * Turns calendar fields of the process's time zone into seconds, as mktime does with tm_isdst -1.
 *
 * mktime itself looks at the system's zone file in every call while TZ is not set, which takes over ten times as long
 * as all the rest. Then this asks the C library to look once a second, and mktime only near a change of the clocks.
 * @param fields six numbers of up to four digits each, from year to second.
 * @return the seconds, or -1 if they don't fit into 32 bits.
 */
std::int32_t StampOfLocalTime(::tm fields);

/// Finds the one moment at which clocks in the zone that the C library knows show `fields`. Gives nothing within two
/// days of a change of the clocks, where there may be no such moment, or two. Only changes that undo each other within
/// four days go unnoticed; then it is one of the moments.
std::optional<std::int64_t> OnlyMomentOf(const ::tm& fields);

} // namespace MERVO::Tessera
