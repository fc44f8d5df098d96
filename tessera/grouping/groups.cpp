#include "tessera/grouping/groups.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "tessera/core/flat_call.h"
#include "tessera/functors/table_combination.h"
#include "tessera/grouping/group_results.h"
#include "tessera/operations/column_copies.h"
#include "tessera/operations/select_row.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::vector<std::uint32_t>;

} // namespace

BaseGroups::BaseGroups(SharedColumns&& sharedColumns, const std::vector<std::uint32_t>& keys)
    : keyColumns(keys), columns(std::move(sharedColumns)), processedColumns(columns)
{
    if (columns == nullptr) {
        return;
    }
    DataFrame
        table; // names that are there twice are told apart now, not when threads read the columns that groups share
    table.series = columns;
    static_cast<void>(table.RefreshColumnName()); // those who need the names without memory hear of it
}

void BaseGroups::BeginGroups(const std::vector<std::uint8_t>& flags)
{
    for (std::size_t row = 0; row < flags.size(); ++row) {
        if (flags[row] != 0) {
            groupBegins.push_back(static_cast<std::uint32_t>(row));
        }
    }
    groupCount = static_cast<std::uint32_t>(groupBegins.size());
    groupBegins.push_back(static_cast<std::uint32_t>(flags.size()));
}

DataFrame BaseGroups::CopyRows(unsigned int group, std::span<const std::uint32_t> positions) const
{
    DataFrame whole;
    whole.series = columns;
    whole.RefreshShape();
    whole.SetRowIndex({groupBegins[group], groupBegins[group + 1]});
    DataFrame::Columns copies;
    const Error copied = CopyColumns(whole, positions, copies);
    if (copied.code != ERROR_NONE) {
        return Func::FailedTable(copied.code, copied.message);
    }
    DataFrame result(std::move(copies));
    static_cast<void>(result.RefreshView()); // a failure is in the table
    return result;
}

DataFrame BaseGroups::CopyGroup(unsigned int group) const
{
    if (group >= groupCount || columns == nullptr) {
        return {};
    }
    std::vector<std::uint32_t> all(columns->size());
    std::iota(all.begin(), all.end(), 0U);
    return CopyRows(group, all);
}

DataFrame BaseGroups::CopyLabel(unsigned int group) const
{
    if (group >= groupCount || columns == nullptr) {
        return {};
    }
    std::vector<std::uint32_t> keys = keyColumns;
    std::sort(keys.begin(), keys.end());
    return CopyRows(group, keys);
}

Groups::Groups(
    const std::vector<std::uint8_t>& flags, SharedColumns&& sharedColumns, const std::vector<std::uint32_t>& keys)
    : BaseGroups(std::move(sharedColumns), keys)
{
    std::sort(keyColumns.begin(), keyColumns.end());
    BeginGroups(flags);
}

Groups::Groups(const std::vector<std::uint32_t>& index, const std::vector<std::uint8_t>& flags,
    SharedColumns&& sharedColumns, const std::vector<std::uint32_t>& keys)
    : BaseGroups(std::move(sharedColumns), keys)
{
    rowOrder = index;
    BeginGroups(flags);
}

void Groups::Show() const { ShowGroups(); }

ErrorCode Groups::ApplyKey(const SeriesPtr& src, const SeriesPtr& dst, const Positions& dstBegin, bool single) const
{
    return SelectFirstRows(src, dst, dstBegin, single);
}

ErrorCode BaseGroups::SelectFirstRows(
    const SeriesPtr& src, const SeriesPtr& dst, const Positions& dstBegin, bool single) const
{
    return Guarded("ApplyKey", [&]() -> ErrorCode {
        Positions rows;
        for (std::size_t g = 0; g < groupCount && (single || g + 1 < dstBegin.size()); ++g) {
            rows.insert(rows.end(), single ? 1 : dstBegin[g + 1] - dstBegin[g], groupBegins[g]);
        }
        const Func::SelectRowBase<CONTAINER_ARRAY> selection(rows);
        return selection.ProcessSeries(RowsOf(src), dst == nullptr ? nullptr : AllOf(dst), true).code;
    });
}

ErrorCode Groups::ApplyValue(
    const Func::UnaryBase& functor, const SeriesPtr& src, const SeriesPtr& dst, const Positions& dstBegin) const
{
    return ApplyToRuns(functor, src, dst, dstBegin);
}

} // namespace MERVO::Tessera
