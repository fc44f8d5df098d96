#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera {

/// A column on the way through a table.
template <typename Position>
struct ColumnWalk {
    Position place;
    std::uint32_t column;
};

template <typename Position, typename Visit>
void WalkInBlocks(std::vector<ColumnWalk<Position>>& walks, std::uint32_t rows, std::uint32_t blockRows, Visit&& visit)
{
    for (std::uint32_t first = 0; first < rows;) {
        const std::uint32_t last = first + std::min(blockRows, rows - first);
        for (ColumnWalk<Position>& walk : walks) {
            Position place = walk.place; // a copy, which a write to a byte can't touch
            for (std::uint32_t row = first; row < last; ++row, ++place) {
                visit(*place, row, walk.column);
            }
            walk.place = place;
        }
        first = last;
    }
}

/**
 * Calls visit(cell, row, column) for every cell of columns of value type T, column by column within blocks of rows.
 *
 * That is how row-major memory meets columns: a block of its rows stays in cache while each column passes over it. The
 * block is small, so that the processor fetches the next one while it works on this one.
 * Working set: a record per column.
 */
template <typename T, typename Visit>
void ForEachCell(const std::vector<Cursor>& columns, std::uint32_t rows, Visit&& visit)
{
    constexpr std::size_t BLOCK_BYTES = 2 * 1024;
    constexpr std::size_t FEWEST_ROWS = 8;
    using ArrayPosition = typename Iterator<CONTAINER_ARRAY, T>::Position;
    using LinkPosition = typename Iterator<CONTAINER_LIST, T>::Position;
    std::vector<ColumnWalk<ArrayPosition>> arrays;
    std::vector<ColumnWalk<LinkPosition>> lists;
    for (std::uint32_t c = 0; c < columns.size(); ++c) {
        if (columns[c]->IsMemoryContiguous()) {
            arrays.push_back({CursorAs<CONTAINER_ARRAY, T>(columns[c]).mHead, c});
        } else {
            lists.push_back({CursorAs<CONTAINER_LIST, T>(columns[c]).mHead, c});
        }
    }
    const std::size_t rowBytes = std::max<std::size_t>(columns.size(), 1) * sizeof(T);
    const auto blockRows = static_cast<std::uint32_t>(std::max(BLOCK_BYTES / rowBytes, FEWEST_ROWS));
    WalkInBlocks(arrays, rows, blockRows, visit);
    WalkInBlocks(lists, rows, blockRows, visit);
}

} // namespace MERVO::Tessera
