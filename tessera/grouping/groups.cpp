#include "tessera/grouping/groups.h"

#include <algorithm>
#include <new>
#include <numeric>
#include <utility>

#include "tessera/functors/copy_series.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/functors/table_combination.h"

namespace MERVO::Tessera {
namespace {

/// Some rows of a column in a new one.
SeriesPtr PartOf(const SeriesPtr& column, std::uint32_t begin, std::uint32_t end)
{
    SeriesPtr part = BuildSeries(WithLength(column->GetAttr(), end - begin), column->GetName());
    const Cursor to = part->GetIterator();
    if (to == nullptr) {
        throw std::bad_alloc();
    }
    const Func::FunctorFactory<Func::CopySeries, Func::UnaryBase> make;
    static_cast<void>(make(CONTAINER_ARRAY)->ProcessSeries(column->GetIterator(begin, end), to, true));
    return part;
}

} // namespace

BaseGroups::BaseGroups(SharedColumns&& sharedColumns, const std::vector<std::uint32_t>& keys)
    : keyColumns(keys), columns(std::move(sharedColumns)), processedColumns(columns)
{
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

DataFrame BaseGroups::CopyRows(unsigned int group, const std::vector<std::uint32_t>& positions) const
{
    DataFrame::Columns parts;
    for (const std::uint32_t position : positions) {
        parts.push_back(PartOf((*columns)[position], groupBegins[group], groupBegins[group + 1]));
    }
    DataFrame result(std::move(parts));
    static_cast<void>(result.RefreshView()); // a failure is in the table
    return result;
}

DataFrame BaseGroups::CopyGroup(unsigned int group) const
{
    if (group >= groupCount) {
        return {};
    }
    try {
        std::vector<std::uint32_t> all(columns->size());
        std::iota(all.begin(), all.end(), 0U);
        return CopyRows(group, all);
    } catch (const std::bad_alloc&) {
        return Func::FailedTable(ERROR_OUT_OF_MEMORY, "out of memory on copying a group");
    }
}

DataFrame BaseGroups::CopyLabel(unsigned int group) const
{
    if (group >= groupCount) {
        return {};
    }
    try {
        std::vector<std::uint32_t> keys = keyColumns;
        std::sort(keys.begin(), keys.end());
        return CopyRows(group, keys);
    } catch (const std::bad_alloc&) {
        return Func::FailedTable(ERROR_OUT_OF_MEMORY, "out of memory on copying a group");
    }
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

} // namespace MERVO::Tessera
