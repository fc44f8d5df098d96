#include "tessera/core/local_time.h"

#include <cstdlib>
#include <utility>

namespace MERVO::Tessera {
namespace {

constexpr std::int64_t DAY = 86400;

/// Tells whether the process takes the system's zone. Then it lets the C library look at the zone's file, once a second
/// for each thread.
bool IsSystemZone()
{
    constexpr std::time_t NEVER = -1;
    thread_local std::time_t lastLook = NEVER;
    if (std::getenv("TZ") != nullptr) {
        lastLook = NEVER;
        return false;
    }
    ::timespec now = {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    if (now.tv_sec != lastLook) {
        ::tzset();
        lastLook = now.tv_sec;
    }
    return true;
}

std::int64_t DivideDown(std::int64_t dividend, std::int64_t divisor)
{
    return (dividend - (dividend < 0 ? divisor - 1 : 0)) / divisor;
}

/// The days from 1970-01-01 to a date of the Gregorian calendar; months and days beyond their range are carried over.
std::int64_t DaysSinceEpoch(const ::tm& fields)
{
    constexpr std::int64_t DAYS_TO_1970 = 719468; // from 1 March of year 0: a leap day then ends its year
    const std::int64_t months = (std::int64_t{fields.tm_year} + 1900) * 12 + fields.tm_mon - 2;
    const std::int64_t year = DivideDown(months, 12);
    const std::int64_t leapDays = DivideDown(year, 4) - DivideDown(year, 100) + DivideDown(year, 400);
    const std::int64_t dayOfYear = (153 * (months - year * 12) + 2) / 5; // months of 31, 30, 31, 30, 31 days, and again
    return year * 365 + leapDays + dayOfYear + fields.tm_mday - 1 - DAYS_TO_1970;
}

/// The seconds from 1970 to what a clock shows, on that clock.
std::int64_t ReadingOf(const ::tm& fields)
{
    return DaysSinceEpoch(fields) * DAY + std::int64_t{fields.tm_hour} * 3600 + std::int64_t{fields.tm_min} * 60 +
        fields.tm_sec;
}

std::optional<std::int64_t> ReadingAt(std::int64_t seconds)
{
    const auto moment = static_cast<std::time_t>(seconds);
    ::tm fields = {};
    if (!std::in_range<std::time_t>(seconds) || ::localtime_r(&moment, &fields) == nullptr) {
        return std::nullopt;
    }
    return ReadingOf(fields);
}

} // namespace

std::optional<std::int64_t> OnlyMomentOf(const ::tm& fields)
{
    constexpr std::int64_t AWAY = 2 * DAY; // which no zone is from UTC
    const std::int64_t reading = ReadingOf(fields);
    const std::optional<std::int64_t> before = ReadingAt(reading - AWAY);
    const std::optional<std::int64_t> after = ReadingAt(reading + AWAY);
    if (!before || !after || *after - *before != 2 * AWAY) {
        return std::nullopt;
    }
    const std::int64_t offset = *before - (reading - AWAY);
    const std::int64_t seconds = reading - offset;
    return ReadingAt(seconds) == reading ? std::optional(seconds) : std::nullopt;
}

std::int32_t StampOfLocalTime(::tm fields)
{
    std::optional<std::int64_t> seconds;
    if (IsSystemZone()) {
        seconds = OnlyMomentOf(fields);
    }
    if (!seconds) {
        fields.tm_isdst = -1; // the zone's rules decide
        seconds = std::mktime(&fields);
    }
    return std::in_range<std::int32_t>(*seconds) ? static_cast<std::int32_t>(*seconds) : -1;
}

} // namespace MERVO::Tessera
