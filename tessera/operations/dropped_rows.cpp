#include "tessera/operations/dropped_rows.h"

#include <algorithm>

namespace MERVO::Tessera {

DroppedRows::DroppedRows(std::uint32_t rowCount)
    : column(BuildSeries({rowCount, CONTAINER_ARRAY, TESSERA_BOOL}, {})), marks(column->GetIterator())
{
}

void DroppedRows::Add(std::uint32_t row)
{
    auto mark = *(CursorAs<CONTAINER_ARRAY, bool>(marks).mHead + std::int64_t{row});
    count += mark ? 0 : 1;
    mark = true;
    largest = std::max(largest, row);
}

} // namespace MERVO::Tessera
