#include "tessera/grouping/group_runs.h"

#include <algorithm>
#include <string>

#include "tessera/core/cursor_part.h"

namespace MERVO::Tessera {
namespace {

bool AreRunsOf(const Cursor& column, std::span<const std::uint32_t> begins)
{
    return !begins.empty() && begins.back() <= column->Length() && std::is_sorted(begins.begin(), begins.end());
}

} // namespace

Error ProcessRuns(const Func::UnaryBase& functor, const Cursor& src, std::span<const std::uint32_t> begins,
    const Cursor& dst, std::span<const std::uint32_t> dstBegins)
{
    if (src == nullptr || dst == nullptr) {
        return functor.ProcessSeries(src, dst, true);
    }
    if (begins.size() != dstBegins.size() || !AreRunsOf(src, begins) || !AreRunsOf(dst, dstBegins)) {
        return {ERROR_BAD_VALUE, "no such rows for functor: " + functor.GetName()};
    }
    MovingPart from(src);
    MovingPart to(dst);
    for (std::size_t g = 0; g + 1 < begins.size(); ++g) {
        Error outcome = functor.ProcessSeries(
            from.At(begins[g], begins[g + 1] - begins[g]), to.At(dstBegins[g], dstBegins[g + 1] - dstBegins[g]), true);
        if (outcome.code != ERROR_NONE) {
            return outcome;
        }
    }
    return {};
}

} // namespace MERVO::Tessera
