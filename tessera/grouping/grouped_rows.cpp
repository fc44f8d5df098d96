#include "tessera/grouping/grouped_rows.h"

#include <algorithm>
#include <new>
#include <numeric>

#include "tessera/operations/group_index.h"
#include "tessera/operations/repeated_rows.h"
#include "tessera/operations/row_numbers.h"
#include "tessera/operations/sort_index.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::vector<std::uint32_t>;
using Keys = std::span<const Cursor>;

/// Runs a functor that fails for want of memory alone.
void Run(const Func::NullaryBase& functor, const Cursor& key)
{
    if (functor.ProcessSeries(key).code != ERROR_NONE) {
        throw std::bad_alloc();
    }
}

/// Brings rows with equal keys together, from the last key to the first.
void OrderByKeys(Keys keys, Positions& rows)
{
    const Func::SortIndexBase<CONTAINER_ARRAY> sorting(rows, false, false);
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        Run(sorting, *key);
    }
}

/// Whether groups come in the order in which their first rows do.
bool AreInOrder(Keys keys)
{
    const MERVO_TESSERA_TYPEID type = keys.front()->GetAttr().typeId;
    return keys.size() == 1 && type != TESSERA_BOOL && type != TESSERA_DATETIME;
}

} // namespace

GroupedRows::GroupedRows(Keys keys) : groupOfRow(keys.front()->Length()), begins(1)
{
    if (!std::all_of(keys.begin(), keys.end(), IsComparedByBits)) {
        NumberInOrder(keys);
    } else {
        NumberByBits(keys);
        if (!AreInOrder(keys)) {
            OrderGroups(keys);
        }
    }
    std::partial_sum(begins.begin(), begins.end(), begins.begin());
}

void GroupedRows::NumberByBits(Keys keys)
{
    RowNumbers rows(keys, RowNumbers::Nan::NONE_EQUAL);
    const auto rowCount = static_cast<std::uint32_t>(groupOfRow.size());
    for (std::uint32_t first = 0; first < rowCount;) {
        const std::uint32_t count = std::min(RowNumbers::BLOCK, rowCount - first);
        rows.NumberUp(first, count, groupOfRow.data() + first);
        for (const std::uint32_t end = first + count; first < end; ++first) {
            const std::uint32_t number = groupOfRow[first];
            if (number == firstRows.size()) {
                firstRows.push_back(first);
                begins.push_back(0);
            }
            ++begins[number + 1];
        }
    }
}

void GroupedRows::OrderGroups(Keys keys)
{
    OrderByKeys(keys, firstRows);
    Positions newNumbers(firstRows.size());
    Positions sizes(begins.size());
    for (std::uint32_t g = 0; g < firstRows.size(); ++g) {
        const std::uint32_t number = groupOfRow[firstRows[g]];
        newNumbers[number] = g;
        sizes[g + 1] = begins[number + 1];
    }
    begins = std::move(sizes);
    for (std::uint32_t& number : groupOfRow) {
        number = newNumbers[number];
    }
}

void GroupedRows::NumberInOrder(Keys keys)
{
    rowOrder.resize(groupOfRow.size());
    std::iota(rowOrder.begin(), rowOrder.end(), 0U);
    OrderByKeys(keys, rowOrder);
    std::vector<std::uint8_t> flags(rowOrder.size());
    flags.front() = 1;
    const Func::GroupIndexBase<CONTAINER_ARRAY> marking(flags, rowOrder);
    for (const Cursor& key : keys) {
        Run(marking, key);
    }
    for (std::size_t i = 0; i < flags.size(); ++i) {
        if (flags[i] != 0) {
            firstRows.push_back(rowOrder[i]);
            begins.push_back(0);
        }
        ++begins.back();
        groupOfRow[rowOrder[i]] = static_cast<std::uint32_t>(firstRows.size() - 1);
    }
}

const Positions& GroupedRows::RowOrder()
{
    if (rowOrder.empty()) {
        Positions next = begins;
        Positions order(groupOfRow.size());
        for (std::uint32_t row = 0; row < order.size(); ++row) {
            order[next[groupOfRow[row]]++] = row;
        }
        rowOrder = std::move(order);
    }
    return rowOrder;
}

} // namespace MERVO::Tessera
