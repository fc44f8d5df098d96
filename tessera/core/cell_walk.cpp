#include "tessera/core/cell_walk.h"

#include <algorithm>

namespace MERVO::Tessera {

void CellVisit::ForEachCell(const std::vector<Cursor>& columns, std::uint32_t rows) const
{
    constexpr std::size_t BLOCK_BYTES = 2 * 1024;
    constexpr std::size_t FEWEST_ROWS = 8;
    std::vector<Column> arrays;
    std::vector<Column> lists;
    for (std::uint32_t c = 0; c < columns.size(); ++c) {
        (columns[c]->IsMemoryContiguous() ? arrays : lists).push_back({columns[c].get(), c});
    }
    const std::size_t rowBytes = std::max<std::size_t>(columns.size(), 1) * cellSize;
    const auto blockRows = static_cast<std::uint32_t>(std::max(BLOCK_BYTES / rowBytes, FEWEST_ROWS));
    for (std::uint32_t first = 0; first < rows;) {
        const std::uint32_t last = first + std::min(blockRows, rows - first);
        arrayPass(visitor, arrays, first, last);
        listPass(visitor, lists, first, last);
        first = last;
    }
}

} // namespace MERVO::Tessera
