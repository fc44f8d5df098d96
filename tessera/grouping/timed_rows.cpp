#include "tessera/grouping/timed_rows.h"

#include <algorithm>
#include <bit>

#include "tessera/core/date_time.h"
#include "tessera/operations/radix_pairs.h"

namespace MERVO::Tessera {
namespace {

constexpr unsigned int ROW_BITS = 32;

/// How many moments ahead memory is asked for: they are so large that the processor's own guesses come too late.
constexpr std::size_t AHEAD = 96;

std::uint64_t PairOf(const DateTime& time, std::size_t row)
{
    return static_cast<std::uint64_t>(time.TimeStamp() - std::int64_t{INT32_MIN}) << ROW_BITS | row;
}

} // namespace

TimedRows::TimedRows(const Cursor& column) : pairs(NeedBlock<std::uint64_t>(column->Length())), count(column->Length())
{
    const DateTime* const times = CursorAs<CONTAINER_ARRAY, DateTime>(column).mHead;
    bool isSorted = true;
    std::uint64_t lowest = ~std::uint64_t{0};
    std::uint64_t highest = 0;
    for (std::size_t row = 0; row < count; ++row) {
        __builtin_prefetch(times + std::min(row + AHEAD, count));
        const std::uint64_t pair = PairOf(times[row], row);
        isSorted &= highest <= pair; // among equal times the row makes the later one greater
        lowest = std::min(lowest, pair);
        highest = std::max(highest, pair);
        pairs[row] = pair;
    }
    if (!isSorted) {
        Sort(lowest, highest);
    }
}

TimedRows::TimedRows(const Cursor& column, std::span<const std::uint32_t> index)
    : pairs(NeedBlock<std::uint64_t>(index.size())), count(index.size())
{
    const DateTime* const times = CursorAs<CONTAINER_ARRAY, DateTime>(column).mHead;
    std::transform(
        index.begin(), index.end(), pairs.get(), [times](std::uint32_t row) { return PairOf(times[row], row); });
}

void TimedRows::Sort(std::uint64_t lowest, std::uint64_t highest)
{
    const std::uint64_t offset = lowest >> ROW_BITS << ROW_BITS;
    const auto timeBits = static_cast<unsigned int>(std::bit_width((highest - offset) >> ROW_BITS));
    std::for_each(pairs.get(), pairs.get() + count, [offset](std::uint64_t& pair) { pair -= offset; });
    earliest += static_cast<std::int64_t>(offset >> ROW_BITS);
    Block<std::uint64_t> spare = NeedBlock<std::uint64_t>(count);
    const auto rowCount = static_cast<std::uint32_t>(count);
    if (SortPairs(pairs.get(), spare.get(), rowCount, ROW_BITS, timeBits) == spare.get()) {
        pairs.swap(spare);
    }
}

} // namespace MERVO::Tessera
