#include "tessera/functors/gather_present.h"

#include <algorithm>

#include "tessera/functors/array_form.h"
#include "tessera/functors/gather.h"

namespace MERVO::Tessera::Func {

bool AreRowsBelow(std::span<const std::uint32_t> rows, std::uint32_t bound)
{
    std::uint32_t beyond = 0; // of the rows, 1 higher, which makes 0 of NO_ROW
    for (const std::uint32_t row : rows) {
        beyond |= row + 1 > bound ? 1U : 0U;
    }
    return beyond == 0;
}

void GatherPresent(const Cursor& src, std::span<const std::uint32_t> rows, const Cursor& dst)
{
    const ArrayForm array(src); // a list would be walked anew for each run
    const auto isAbsent = [](std::uint32_t row) { return row == NO_ROW; };
    const auto begin = rows.begin();
    auto reached = begin; // where dst stands
    for (auto run = std::find_if_not(begin, rows.end(), isAbsent); run != rows.end();) {
        const auto runEnd = std::find_if(run, rows.end(), isAbsent);
        dst->Shift(run - reached);
        reached = run;
        Gather(array.Get(), {run, runEnd}, dst);
        run = std::find_if_not(runEnd, rows.end(), isAbsent);
    }
    dst->Shift(begin - reached);
}

} // namespace MERVO::Tessera::Func
