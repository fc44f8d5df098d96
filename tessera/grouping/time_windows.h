#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "tessera/core/error.h"
#include "tessera/grouping/timed_rows.h"

namespace MERVO::Tessera {

/// Windows of one width in seconds, one behind the other. In 64 bits, as the first may start before the first moment
/// and the last end behind the last one.
class TimeWindows {
public:
    /// Takes the time of the first row, by which the first window is laid out: it starts there, or, unless closedLeft,
    /// ends there.
    TimeWindows(std::int64_t firstTime, std::int64_t widthInSeconds, bool includesStart)
        : start(includesStart ? firstTime : firstTime - widthInSeconds), width(widthInSeconds),
          closedLeft(includesStart)
    {
    }

    std::int64_t Start() const { return start; }
    std::int64_t End() const { return start + width; }
    bool StartsAfter(std::int64_t time) const { return time < FirstTime(); }
    bool Has(std::int64_t time) const
    {
        return static_cast<std::uint64_t>(time - FirstTime()) < static_cast<std::uint64_t>(width);
    }
    /// How many windows from here on end before a time that this one doesn't start after.
    std::uint64_t CountBefore(std::int64_t time) const
    {
        return static_cast<std::uint64_t>((time - FirstTime()) / width);
    }
    /// How many windows from here on start at or before a time that this one starts at or before.
    std::uint64_t CountStarted(std::int64_t time) const
    {
        return static_cast<std::uint64_t>((time - start) / width) + 1;
    }
    void GoOn(std::uint64_t windows) { start += static_cast<std::int64_t>(windows) * width; }

private:
    std::int64_t FirstTime() const { return closedLeft ? start : start + 1; }

    std::int64_t start;
    std::int64_t width;
    bool closedLeft;
};

/// The sample row of an empty window.
inline constexpr std::int32_t NO_SAMPLE = -1;

/// What windows make of rows: for each row of the result the source row, -1 for that of an empty window; and for each
/// window its number of rows.
struct SampledRows {
    std::vector<std::int32_t>& rows;
    std::vector<std::uint32_t>& counts;
};

/// Whether counts tell of all rows, the first one is a row of a column of this length, and no more of them are than it
/// has.
bool AreSamplesOf(std::uint32_t length, std::span<const std::int32_t> rows, std::span<const std::uint32_t> counts);

/**
 * Appends rows window by window, as they come.
 * @param rowSize the bytes of a row of what shall be made of them.
 * @return 0, or 3, with a message and nothing appended: too many rows. Throws std::bad_alloc; nothing is appended then.
 */
[[nodiscard]] ErrorCode CutIntoWindows(
    const TimedRows& rows, std::int64_t width, bool closedLeft, std::uint64_t rowSize, const SampledRows& samples);

/// Writes the label of each window, its start or its end, to as many cells of an array or list of DateTime as `counts`
/// says, up to the cursor's end. A label that no moment can have, before the first one or behind the last one, becomes
/// that one.
void WriteLabels(TimeWindows window, bool labelLeft, std::span<const std::uint32_t> counts, const Cursor& labels);

} // namespace MERVO::Tessera
