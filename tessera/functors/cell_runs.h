#pragma once

#include <array>
#include <cstdint>

#include "tessera/functors/cell_place.h"

namespace MERVO::Tessera::Func {

/**
 * A walk over a cursor's range in runs of adjacent cells. The value type is known to the kernel alone, so one loop
 * serves all pairs of value types and containers.
 *
 * An array is one run, a list node is a run of its own. The packed bits of a bool array pass through a buffer in which
 * a bool is a byte, as it is everywhere else.
 */
class CellRuns {
public:
    explicit CellRuns(const Cursor& cursor) : place(cursor) {}

    /// How many cells one run can have from here; the range's end is the caller's concern.
    std::uint32_t Longest() const;
    /// The next run, for reading.
    const void* Read(std::uint32_t count);
    /// Room for the next run; what is put there counts from Written on.
    void* Room();
    void Written(std::uint32_t count);
    /// Passes over a run.
    void Skip(std::uint32_t count) { place.Skip(count); }

private:
    static constexpr std::uint32_t BUFFERED_BITS = 512;

    CellPlace place;
    std::array<bool, BUFFERED_BITS> buffer;
};

} // namespace MERVO::Tessera::Func
