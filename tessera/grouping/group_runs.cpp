#include "tessera/grouping/group_runs.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tessera/core/block_vector.h"
#include "tessera/core/cursor_part.h"

namespace MERVO::Tessera {
namespace {

bool AreRunsOf(const Cursor& column, std::span<const std::uint32_t> begins)
{
    return !begins.empty() && begins.back() <= column->Length() && std::is_sorted(begins.begin(), begins.end());
}

bool HaveOneRowEach(std::span<const std::uint32_t> begins)
{
    for (std::uint32_t g = 0; g < begins.size(); ++g) {
        if (begins[g] != g) {
            return false;
        }
    }
    return true;
}

/// In groups of fewer rows on average, a run takes longer to start than to work.
constexpr std::size_t FEW_ROWS = 16;

bool AreSmall(std::span<const std::uint32_t> begins)
{
    return begins.front() == 0 && begins.back() / FEW_ROWS < begins.size() - 1 &&
        std::adjacent_find(begins.begin(), begins.end()) == begins.end(); // and none is empty
}

/// Reduces all groups in one pass, where that can be done and pays.
bool ReduceRuns(const Func::UnaryBase& functor, const Cursor& src, std::span<const std::uint32_t> begins,
    const Cursor& dst, std::span<const std::uint32_t> dstBegins)
{
    const auto count = static_cast<std::uint32_t>(begins.size() - 1);
    if (!AreSmall(begins) || begins.back() != src->Length() || !HaveOneRowEach(dstBegins) || count != dst->Length()) {
        return false;
    }
    BlockVector<std::uint32_t> groupOfRow(begins.back());
    for (std::uint32_t g = 0; g < count; ++g) {
        std::fill(groupOfRow.data() + begins[g], groupOfRow.data() + begins[g + 1], g);
    }
    return functor.ReduceGroups(src, {groupOfRow.data(), begins.data(), begins}, dst);
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
    if (ReduceRuns(functor, src, begins, dst, dstBegins)) {
        return {};
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
