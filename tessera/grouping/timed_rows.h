#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "tessera/core/block.h"
#include "tessera/core/cursor.h"

namespace MERVO::Tessera {

/// Rows with their stamps, in some order.
class TimedRows {
public:
    /// All rows of an array of DateTime by time, those of one moment in their order. Throws std::bad_alloc. Working
    /// set: 8 bytes per row, another 8 while they are sorted.
    explicit TimedRows(const Cursor& column);
    /// The rows of `index`, which are in the array, as they come. Throws std::bad_alloc.
    TimedRows(const Cursor& column, std::span<const std::uint32_t> index);

    std::size_t Count() const { return count; }
    std::int64_t Time(std::size_t place) const { return earliest + static_cast<std::int64_t>(pairs[place] >> 32); }
    std::uint32_t Row(std::size_t place) const { return static_cast<std::uint32_t>(pairs[place]); }

private:
    /// Takes the earliest time from all others first, for the fewer digits there are to sort by.
    void Sort(std::uint64_t lowest, std::uint64_t highest);

    Block<std::uint64_t> pairs; ///< the time from the earliest one on above, the row below
    std::size_t count;
    std::int64_t earliest = INT32_MIN;
};

} // namespace MERVO::Tessera
