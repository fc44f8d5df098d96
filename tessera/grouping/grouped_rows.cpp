#include "tessera/grouping/grouped_rows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <new>
#include <numeric>

#include "tessera/operations/group_index.h"
#include "tessera/operations/repeated_rows.h"
#include "tessera/operations/row_numbers.h"
#include "tessera/operations/sort_index.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::vector<std::uint32_t>;
using Numbers = BlockVector<std::uint32_t>;
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

/// Numbers rows; returns how many numbers there are.
std::uint32_t NumberRows(RowNumbers rows, Numbers& numbers)
{
    const auto end = static_cast<std::uint32_t>(numbers.size());
    for (std::uint32_t first = 0; first < end; first += RowNumbers::BLOCK) {
        rows.NumberUp(first, std::min(RowNumbers::BLOCK, end - first), numbers.data() + first);
    }
    return rows.Count();
}

/// Puts the number of each pair of numbers in place of its first one; returns how many there are.
std::uint32_t NumberPairs(Numbers& firsts, std::uint32_t firstCount, const Numbers& seconds, std::uint32_t secondCount)
{
    const auto bits = static_cast<unsigned int>(std::bit_width(secondCount));
    const auto rowCount = static_cast<std::uint32_t>(firsts.size());
    DistinctKeys pairs(static_cast<unsigned int>(std::bit_width(firstCount)) + bits, rowCount);
    std::array<std::uint64_t, RowNumbers::BLOCK> keys;
    for (std::uint32_t first = 0; first < rowCount; first += RowNumbers::BLOCK) {
        const std::uint32_t count = std::min(RowNumbers::BLOCK, rowCount - first);
        std::uint32_t* const numbers = firsts.data() + first;
        for (std::uint32_t i = 0; i < count; ++i) {
            keys[i] = std::uint64_t{numbers[i]} << bits | seconds[first + i];
        }
        pairs.Number({keys.data(), count}, numbers);
    }
    return pairs.Count();
}

/// Numbers rows by their keys; returns how many numbers there are.
std::uint32_t NumberByKeys(Keys keys, Numbers& numbers)
{
    const auto numberingOf = [](Keys some) { return RowNumbers(some, RowNumbers::Nan::NONE_EQUAL); };
    RowNumbers all = numberingOf(keys);
    if (keys.size() == 1 || !all.NumbersTexts()) {
        return NumberRows(std::move(all), numbers);
    }
    std::uint32_t count = NumberRows(numberingOf(keys.first(1)), numbers);
    Numbers next(numbers.size());
    for (std::size_t k = 1; k < keys.size(); ++k) {
        const std::uint32_t nextCount = NumberRows(numberingOf(keys.subspan(k, 1)), next);
        count = NumberPairs(numbers, count, next, nextCount);
    }
    return count;
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
    const std::uint32_t count = NumberByKeys(keys, groupOfRow);
    firstRows.reserve(count);
    begins.resize(count + std::size_t{1});
    std::uint32_t found = 0;
    std::uint32_t row = 0;
    for (const std::uint32_t number : groupOfRow) {
        if (number == found) {
            firstRows.push_back(row);
            ++found;
        }
        ++begins[number + std::size_t{1}];
        ++row;
    }
}

void GroupedRows::OrderGroups(Keys keys)
{
    OrderByKeys(keys, firstRows);
    Numbers newNumbers(firstRows.size());
    Numbers sizes(begins.size());
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

std::span<const std::uint32_t> GroupedRows::RowOrder()
{
    if (rowOrder.empty()) {
        Numbers next = begins;
        Positions order(groupOfRow.size());
        for (std::uint32_t row = 0; row < order.size(); ++row) {
            order[next[groupOfRow[row]]++] = row;
        }
        rowOrder = std::move(order);
    }
    return rowOrder;
}

} // namespace MERVO::Tessera
