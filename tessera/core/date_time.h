#pragma once

#include <compare>
#include <cstdint>
#include <ctime>
#include <iosfwd>
#include <string>
#include <string_view>

#include "tessera/core/error.h"
#include "tessera/platform/export.h"

namespace MERVO::Tessera {

/**
 * A moment, or a span of time: seconds since 1970-01-01 00:00:00 UTC, in 32 bits on every machine.
 *
 * The stamp alone is the value. Beside it stand the calendar fields of the process's time zone, as GetTime hands them
 * out: Parse2Time and GetTime write them, so these two belong to one thread at a time. All else that is const may be
 * called by several at once. Text and stamp are inverse in one time zone, but for the hour that is repeated at the end
 * of daylight saving, where mktime decides.
 */
class TESSERA_API DateTime {
public:
    /// All bits of stamp and cache zero.
    DateTime() = default;

    /// Keeps the low 32 bits, as they come.
    DateTime(long stampInSeconds) : stamp(static_cast<std::int32_t>(stampInSeconds)) {}

    [[nodiscard]] long TimeStamp() const { return stamp; }

    /// Refreshes the calendar fields from the stamp.
    void Parse2Time() const;

    /// The refreshed calendar fields; they live as long as this object.
    [[nodiscard]] const ::tm* GetTime() const;

    /// "2024-03-05 07:09:02" in local time.
    [[nodiscard]] std::string ToString() const;

    /**
     * Parses a local time of the form "2024-03-05 07:09:02".
     *
     * Numbers may have a sign and white space before them. What is missing, or follows the first character that doesn't
     * fit, counts as 0; fields beyond their range are carried over ("2024-13-01" is in January 2025). A time whose
     * stamp does not fit into 32 bits becomes -1. An empty text succeeds and changes nothing.
     * @return 0, or 2: nothing but white space up to the end or to a NUL; the value stays.
     */
    ErrorCode StringToTime(const std::string& text);

    /// As StringToTime, without a word to the log. False where that gives 2.
    [[nodiscard]] bool ParseText(std::string_view text);

    friend bool operator==(const DateTime& left, const DateTime& right) { return left.stamp == right.stamp; }
    friend std::strong_ordering operator<=>(const DateTime& left, const DateTime& right)
    {
        return left.stamp <=> right.stamp;
    }

private:
    std::int32_t stamp = 0;
    mutable ::tm calendar = {};
};

/// Writes the text of ToString.
TESSERA_API std::ostream& operator<<(std::ostream& stream, const DateTime& value);

} // namespace MERVO::Tessera
