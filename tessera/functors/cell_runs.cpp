#include "tessera/functors/cell_runs.h"

#include <limits>

#include "tessera/core/bit_bytes.h"

namespace MERVO::Tessera::Func {

using Layout = CellPlace::Layout;

std::uint32_t CellRuns::Longest() const
{
    switch (place.layout) {
    case Layout::BITS:
        return BUFFERED_BITS;
    case Layout::NODES:
        return 1;
    default:
        return std::numeric_limits<std::uint32_t>::max();
    }
}

const void* CellRuns::Read(std::uint32_t count)
{
    if (place.layout == Layout::BITS) {
        UnpackBits(place.bit, buffer.data(), count);
    }
    return Room();
}

void* CellRuns::Room() { return place.layout == Layout::BITS ? buffer.data() : place.Cell(); }

void CellRuns::Written(std::uint32_t count)
{
    if (place.layout == Layout::BITS) {
        PackBits(buffer.data(), place.bit, count);
    }
}

} // namespace MERVO::Tessera::Func
