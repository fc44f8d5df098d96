#include "tessera/grouping/time_windows.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "tessera/core/date_time.h"
#include "tessera/core/memory_room.h"
#include "tessera/functors/element_walk.h"
#include "tessera/platform/logger.h"

namespace MERVO::Tessera {
namespace {

/// The bytes of a sample row, and of a count.
constexpr std::uint64_t SAMPLE_SIZE = sizeof(std::int32_t) + sizeof(std::uint32_t);

/// A window with rows, and those without that come before it, or behind all others.
struct Run {
    std::uint64_t empty;
    std::uint32_t rows;
};

/// Finds the windows of rows. No window before the last row's is left out; what comes too late in the rows' order is.
std::vector<Run> FindWindows(const TimedRows& rows, TimeWindows window)
{
    std::vector<Run> runs;
    const std::int64_t last = rows.Time(rows.Count() - 1);
    std::uint64_t empty = 0;
    for (std::size_t next = 0; next < rows.Count() && window.Start() <= last;) {
        const std::size_t first = next;
        while (next < rows.Count() && window.Has(rows.Time(next))) {
            ++next;
        }
        if (next != first) {
            runs.push_back({empty, static_cast<std::uint32_t>(next - first)});
            empty = 0;
            window.GoOn(1);
            continue;
        }
        const std::int64_t time = rows.Time(next);
        const std::uint64_t started = window.CountStarted(last);
        empty = window.StartsAfter(time) ? started : std::min(started, window.CountBefore(time));
        window.GoOn(empty);
    }
    if (empty != 0) {
        runs.push_back({empty, 0});
    }
    return runs;
}

DateTime NearestMoment(std::int64_t seconds)
{
    using Limits = std::numeric_limits<std::int32_t>;
    return {static_cast<long>(std::clamp<std::int64_t>(seconds, Limits::min(), Limits::max()))};
}

} // namespace

bool AreSamplesOf(std::uint32_t length, std::span<const std::int32_t> rows, std::span<const std::uint32_t> counts)
{
    const auto absent = static_cast<std::size_t>(std::count(rows.begin(), rows.end(), NO_SAMPLE));
    return !rows.empty() && rows.front() >= 0 && static_cast<std::uint32_t>(rows.front()) < length &&
        rows.size() - absent <= length &&
        std::accumulate(counts.begin(), counts.end(), std::uint64_t{0}) == rows.size();
}

ErrorCode CutIntoWindows(
    const TimedRows& rows, std::int64_t width, bool closedLeft, std::uint64_t rowSize, const SampledRows& samples)
{
    if (rows.Count() == 0) {
        return ERROR_NONE;
    }
    const std::vector<Run> runs = FindWindows(rows, {rows.Time(0), width, closedLeft});
    std::uint64_t rowCount = 0;
    std::uint64_t windowCount = 0;
    for (const Run& run : runs) {
        rowCount += run.empty + run.rows;
        windowCount += run.empty + (run.rows == 0 ? 0 : 1);
    }
    if (rows.Count() > std::numeric_limits<std::int32_t>::max() ||
        rowCount > std::numeric_limits<std::uint32_t>::max() || !HasRoomFor(rowCount, rowSize + SAMPLE_SIZE)) {
        LogError("Too many rows to resample into: %llu", static_cast<unsigned long long>(rowCount));
        return ERROR_OUT_OF_MEMORY;
    }
    const std::size_t before = samples.rows.size();
    samples.rows.reserve(before + static_cast<std::size_t>(rowCount));
    samples.counts.reserve(samples.counts.size() + static_cast<std::size_t>(windowCount));
    samples.rows.resize(before + static_cast<std::size_t>(rowCount), NO_SAMPLE);
    std::int32_t* row = samples.rows.data() + before;
    std::size_t place = 0;
    for (const Run& run : runs) {
        const auto empty = static_cast<std::size_t>(run.empty);
        row += empty;
        samples.counts.insert(samples.counts.end(), empty, 1U);
        for (const std::size_t end = place + run.rows; place < end; ++place) {
            *row++ = static_cast<std::int32_t>(rows.Row(place));
        }
        if (run.rows != 0) {
            samples.counts.push_back(run.rows);
        }
    }
    return ERROR_NONE;
}

void WriteLabels(TimeWindows window, bool labelLeft, std::span<const std::uint32_t> counts, const Cursor& labels)
{
    Func::WithPlaces<DateTime>(labels, [&](auto place, auto) {
        std::uint32_t left = labels->Length();
        for (const std::uint32_t count : counts) {
            const DateTime label = NearestMoment(labelLeft ? window.Start() : window.End());
            const std::uint32_t written = std::min(count, left);
            for (std::uint32_t i = 0; i < written; ++i, ++place) {
                *place = label;
            }
            left -= written;
            window.GoOn(1);
        }
    });
}

} // namespace MERVO::Tessera
