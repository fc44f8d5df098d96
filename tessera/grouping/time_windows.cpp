#include "tessera/grouping/time_windows.h"

#include <algorithm>
#include <limits>

#include "tessera/core/date_time.h"
#include "tessera/core/memory_room.h"
#include "tessera/platform/logger.h"

namespace MERVO::Tessera {
namespace {

/// Calls onRows(first, count) for each window with rows, and onEmpty(count) for windows without, in their order.
template <typename OnRows, typename OnEmpty>
void ForEachWindow(std::span<const std::int32_t> times, TimeWindows window, OnRows&& onRows, OnEmpty&& onEmpty)
{
    for (std::size_t next = 0; next < times.size() && window.Start() <= times.back();) {
        const std::size_t first = next;
        while (next < times.size() && window.Has(times[next])) {
            ++next;
        }
        if (next != first) {
            onRows(first, next - first);
            window.GoOn(1);
            continue;
        }
        const std::uint64_t started = window.CountStarted(times.back());
        const std::uint64_t empty =
            window.StartsAfter(times[next]) ? started : std::min(started, window.CountBefore(times[next]));
        onEmpty(empty);
        window.GoOn(empty);
    }
}

} // namespace

ErrorCode CutIntoWindows(std::span<const std::int32_t> times, std::span<const std::uint32_t> index, std::int64_t width,
    bool closedLeft, const SampledRows& samples)
{
    if (times.empty()) {
        return ERROR_NONE;
    }
    const TimeWindows windows(times.front(), width, closedLeft);
    std::uint64_t rowCount = 0;
    std::uint64_t windowCount = 0;
    const auto count = [&](std::uint64_t rows, std::uint64_t ofWindows) {
        rowCount += rows;
        windowCount += ofWindows;
    };
    ForEachWindow(
        times, windows, [&](std::size_t, std::size_t rows) { count(rows, 1); },
        [&](std::uint64_t empty) { count(empty, empty); });
    constexpr std::uint64_t BYTES_PER_ROW = sizeof(DateTime) + sizeof(std::int32_t);
    if (times.size() > std::numeric_limits<std::int32_t>::max() ||
        rowCount > std::numeric_limits<std::uint32_t>::max() || !HasRoomFor(rowCount, BYTES_PER_ROW)) {
        LogError("Too many rows to resample into: %llu", static_cast<unsigned long long>(rowCount));
        return ERROR_OUT_OF_MEMORY;
    }
    samples.rows.reserve(samples.rows.size() + static_cast<std::size_t>(rowCount));
    samples.counts.reserve(samples.counts.size() + static_cast<std::size_t>(windowCount));
    ForEachWindow(
        times, windows,
        [&](std::size_t first, std::size_t rows) {
            const auto begin = index.begin() + static_cast<std::ptrdiff_t>(first);
            samples.rows.insert(samples.rows.end(), begin, begin + static_cast<std::ptrdiff_t>(rows));
            samples.counts.push_back(static_cast<std::uint32_t>(rows));
        },
        [&](std::uint64_t empty) {
            samples.rows.insert(samples.rows.end(), static_cast<std::size_t>(empty), NO_SAMPLE);
            samples.counts.insert(samples.counts.end(), static_cast<std::size_t>(empty), 1U);
        });
    return ERROR_NONE;
}

} // namespace MERVO::Tessera
