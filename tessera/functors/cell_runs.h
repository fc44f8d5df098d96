#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "tessera/core/cursor.h"
#include "tessera/core/error.h"
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

/// Calls visit(from, to, count), which returns a code, with runs of the cells of src and of the room for those of dst,
/// until the shorter of the two ends. The first code other than 0 ends it, and is the result.
template <typename Visit>
ErrorCode ForEachRun(const Cursor& src, const Cursor& dst, Visit&& visit)
{
    CellRuns from(src);
    CellRuns to(dst);
    for (std::uint32_t left = std::min(src->Length(), dst->Length()); left != 0;) {
        const std::uint32_t count = std::min({left, from.Longest(), to.Longest()});
        const ErrorCode code = visit(from.Read(count), to.Room(), count);
        if (code != ERROR_NONE) {
            return code;
        }
        to.Written(count);
        from.Skip(count);
        to.Skip(count);
        left -= count;
    }
    return ERROR_NONE;
}

} // namespace MERVO::Tessera::Func
