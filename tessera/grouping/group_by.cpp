#include <new>
#include <numeric>
#include <set>
#include <span>
#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/core/window_bounds.h"
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

constexpr const char* NO_MEMORY = "out of memory on GroupBy";

/// Runs a functor over the key columns, from the last one given to the first. Nested tables, which can be neither
/// sorted nor compared, are passed over.
bool RunOverKeys(const DataFrame& table, std::span<const unsigned int> keys, const NullaryFactory& make)
{
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        const SeriesPtr& column = table.GetColumn(*key);
        const Error outcome = make(Func::ContainerOf(column))->ProcessSeries(table.GetSlicedIterator(column));
        if (outcome.code != ERROR_NONE && outcome.code != ERROR_GENERAL) {
            LogError("Failed to group by key %d, error %d", static_cast<int>(*key), outcome.code);
            return false;
        }
    }
    return true;
}

/// Flags rows at which a key differs from that of the row before.
bool FlagGroups(const DataFrame& table, std::span<const unsigned int> keys, Flags& flags)
{
    return RunOverKeys(table, keys, Func::FunctorFactory<Func::GroupIndex, Func::NullaryBase, Flags&>{flags});
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
    if (!FlagGroups(*this, {keys, keyCount}, flags)) {
        return {};
    }
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
    if (!FlagGroups(reordered, {keys, keyCount}, flags)) {
        return {};
    }
    return Groups(index, flags, std::shared_ptr<Columns>(reordered.series), Keys(keys, keys + keyCount));
}

Groups DataFrame::GroupByKeys(
    unsigned int keyCount, const unsigned int* keys, bool inPlace, bool ascending, bool sorted)
{
    for (unsigned int k = 0; k < keyCount; ++k) { // before room is made for the rows that the window claims
        if (!HasRows(*this, GetColumn(keys[k]))) {
            LogError("Failed to group by key %d, error %d", static_cast<int>(keys[k]), ERROR_BAD_VALUE);
            return {};
        }
    }
    Positions index(RowCount());
    std::iota(index.begin(), index.end(), 0U);
    using Sorting = Func::FunctorFactory<Func::SortIndex, Func::NullaryBase, Positions&, bool&, bool&>;
    if (!RunOverKeys(*this, {keys, keyCount}, Sorting{index, ascending, sorted})) {
        return {};
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
    } catch (...) { // no memory, or more rows than a list has room for
        LogError(NO_MEMORY);
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
    return GroupBy(static_cast<unsigned int>(keys.size()), keys.begin(), inPlace, ascending, sorted);
}

Groups DataFrame::GroupBy(std::initializer_list<std::string> names, bool inPlace, bool ascending, bool sorted)
{
    try {
        return GroupBy(std::vector<std::string>(names), inPlace, ascending, sorted);
    } catch (const std::bad_alloc&) {
        LogError(NO_MEMORY);
        return {};
    }
}

} // namespace MERVO::Tessera
