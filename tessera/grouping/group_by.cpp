#include <numeric>
#include <set>
#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/functors/column_runs.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/grouping/groups.h"
#include "tessera/operations/group_index.h"
#include "tessera/operations/select_row.h"
#include "tessera/operations/sort_index.h"

namespace MERVO::Tessera {
namespace {

using Flags = std::vector<std::uint8_t>;
using Keys = std::vector<std::uint32_t>;
using Positions = std::vector<std::uint32_t>;

/// Marks where a key of a row differs from that of the row before. Nested tables, which can't differ, are passed over.
void MarkGroups(const DataFrame& table, unsigned int keyCount, const unsigned int* keys, Flags& flags)
{
    const Func::FunctorFactory<Func::GroupIndex, Func::NullaryBase, Flags&> make(flags);
    for (unsigned int k = 0; k < keyCount; ++k) {
        const SeriesPtr& column = table.GetColumn(keys[k]);
        static_cast<void>(make(Func::ContainerOf(column))->ProcessSeries(table.GetSlicedIterator(column)));
    }
}

} // namespace

bool DataFrame::CheckGroupIndex(unsigned int keyCount, const unsigned int* keys) const
{
    if (keyCount == 0 || keys == nullptr) {
        LogError("Group index is zero");
        return false;
    }
    std::set<unsigned int> different;
    for (unsigned int k = 0; k < keyCount; ++k) {
        if (keys[k] >= series->size()) {
            LogError("Group index %d is out of range %d", static_cast<int>(keys[k]), static_cast<int>(series->size()));
            return false;
        }
        different.insert(keys[k]);
    }
    return different.size() == keyCount;
}

Groups DataFrame::GroupByInPlace(unsigned int keyCount, const unsigned int* keys, const Positions& index, Flags& flags)
{
    const Error moved = PermuteRows(index);
    if (moved.code != ERROR_NONE) {
        LogError("Failed to bring the rows into groups, error %d, %s", moved.code, moved.message.c_str());
        return {};
    }
    MarkGroups(*this, keyCount, keys, flags);
    return Groups(flags, std::shared_ptr<Columns>(series), Keys(keys, keys + keyCount));
}

Groups DataFrame::GroupByOutPlace(unsigned int keyCount, const unsigned int* keys, const Positions& index, Flags& flags)
{
    DataFrame reordered;
    using RowSelection = Func::FunctorFactory<Func::SelectRow, Func::UnaryBase, const Positions&>;
    const ErrorCode code = reordered.ApplyInplace(RowSelection{index}, *this);
    if (code != ERROR_NONE) {
        LogError("Failed to bring the rows into groups, error %d", code);
        return {};
    }
    MarkGroups(reordered, keyCount, keys, flags);
    return Groups(index, flags, std::shared_ptr<Columns>(reordered.series), Keys(keys, keys + keyCount));
}

Groups DataFrame::GroupByKeys(
    unsigned int keyCount, const unsigned int* keys, bool inPlace, bool ascending, bool sorted)
{
    Positions index(RowCount());
    std::iota(index.begin(), index.end(), 0U);
    const Func::FunctorFactory<Func::SortIndex, Func::NullaryBase, Positions&, bool&, bool&> make(
        index, ascending, sorted);
    for (unsigned int k = keyCount; k-- != 0;) {
        const SeriesPtr& column = GetColumn(keys[k]);
        static_cast<void>(make(Func::ContainerOf(column))->ProcessSeries(GetSlicedIterator(column)));
    }
    Flags flags(index.size());
    flags.front() = 1;
    return inPlace ? GroupByInPlace(keyCount, keys, index, flags) : GroupByOutPlace(keyCount, keys, index, flags);
}

Groups DataFrame::GroupBy(unsigned int keyCount, const unsigned int* keys, bool inPlace, bool ascending, bool sorted)
{
    if (error.code != ERROR_NONE || ColumnCount() == 0) {
        LogError("Invalid or empty dataframe %d, error %d", static_cast<int>(series->size()), error.code);
        return {};
    }
    try {
        if (!CheckGroupIndex(keyCount, keys)) {
            return {};
        }
        if (RowCount() == 0) {
            LogError("there is no rows in dataframe");
            return {};
        }
        return GroupByKeys(keyCount, keys, inPlace, ascending, sorted);
    } catch (const std::bad_alloc&) {
        LogError("out of memory on GroupBy");
        return {};
    }
}

Groups DataFrame::GroupBy(const Keys& keys, bool inPlace, bool ascending, bool sorted)
{
    return GroupBy(static_cast<unsigned int>(keys.size()), keys.data(), inPlace, ascending, sorted);
}

Groups DataFrame::GroupBy(const std::vector<std::string>& names, bool inPlace, bool ascending, bool sorted)
{
    Keys keys;
    return GetIndexVector(keys, names) == ERROR_NONE ? GroupBy(keys, inPlace, ascending, sorted) : Groups();
}

Groups DataFrame::GroupBy(std::initializer_list<std::uint32_t> keys, bool inPlace, bool ascending, bool sorted)
{
    return GroupBy(Keys(keys), inPlace, ascending, sorted);
}

Groups DataFrame::GroupBy(std::initializer_list<std::string> names, bool inPlace, bool ascending, bool sorted)
{
    return GroupBy(std::vector<std::string>(names), inPlace, ascending, sorted);
}

} // namespace MERVO::Tessera
