#include <algorithm>
#include <limits>
#include <new>
#include <numeric>
#include <span>

#include "tessera/core/data_frame.h"
#include "tessera/functors/missing_cell.h"
#include "tessera/operations/sort_keys.h"
#include "tessera/operations/stable_order.h"

namespace MERVO::Tessera {
namespace {

using Rows = std::vector<std::uint32_t>;

constexpr std::uint64_t MOST_ROWS = std::numeric_limits<std::uint32_t>::max();

bool KeepsLeft(MERVO_TESSERA_MERGE_JOINTYPE type) { return type == TESSERA_JOIN_LEFT || type == TESSERA_JOIN_OUTER; }
bool KeepsRight(MERVO_TESSERA_MERGE_JOINTYPE type) { return type == TESSERA_JOIN_RIGHT || type == TESSERA_JOIN_OUTER; }

/// The rows of a column. All else has been checked, so that only memory can be wanting.
Cursor RowsOf(const DataFrame& table, std::uint32_t key)
{
    Cursor cursor = table.GetSlicedIterator(table.GetColumn(key));
    if (cursor == nullptr) {
        throw std::bad_alloc();
    }
    return cursor;
}

} // namespace

Rows DataFrame::SortAndGetKey(const DataFrame& right, const MergeRows& leftOn, const MergeRows& rightOn,
    MergeKeys& keys, std::vector<std::uint8_t>& flags) const
{
    Rows index(flags.size());
    std::iota(index.begin(), index.end(), 0U);
    for (std::size_t k = 0; k < leftOn.size(); ++k) {
        keys.push_back(KeysOf(RowsOf(*this, leftOn[k]), RowsOf(right, rightOn[k])));
        const bool marksAll = k + 1 == leftOn.size() && !keys.back()->MayHaveNan();
        OrderStably(*keys.back(), false, index, marksAll ? std::span(flags) : std::span<std::uint8_t>());
        if (marksAll) {
            keys.pop_back();
        }
    }
    return index;
}

void DataFrame::CalculateMergeIndex(
    const std::vector<std::uint8_t>& flags, const MergeRows& index, std::vector<MergeIndex>& result) const
{
    const std::uint32_t leftCount = RowCount();
    result.reserve(std::accumulate(flags.begin(), flags.end(), std::size_t{0}));
    for (std::uint32_t place = 0; place < index.size(); ++place) {
        if (flags[place] != 0) {
            result.push_back({0, 0, 0, 0});
        }
        MergeIndex& run = result.back();
        if (index[place] < leftCount) {
            run.leftBegin = run.leftCount == 0 ? place : run.leftBegin;
            ++run.leftCount;
        } else {
            run.rightBegin = run.rightCount == 0 ? place : run.rightBegin;
            ++run.rightCount;
        }
    }
}

std::uint64_t DataFrame::GetMergedSeriesLength(
    const std::vector<MergeIndex>& merge, MERVO_TESSERA_MERGE_JOINTYPE type) const
{
    std::uint64_t length = 0; // at most all pairs and all single rows, which 64 bits can hold
    for (const MergeIndex& run : merge) {
        length += std::uint64_t{run.leftCount} * run.rightCount;
        length += run.leftCount == 0 && KeepsRight(type) ? run.rightCount : 0;
        length += run.rightCount == 0 && KeepsLeft(type) ? run.leftCount : 0;
    }
    return length;
}

void DataFrame::GetLeftRightMergeIndex(const std::vector<MergeIndex>& merge, const MergeRows& index,
    MERVO_TESSERA_MERGE_JOINTYPE type, MergeRows& left, MergeRows& right) const
{
    const std::uint32_t leftRows = RowCount();
    // Keys within the tolerance may be in any order, so that a run's rows of both sides can be mixed.
    const auto nextLeft = [&](std::uint32_t& place) {
        while (index[place] >= leftRows) {
            ++place;
        }
        return index[place++];
    };
    const auto nextRight = [&](std::uint32_t& place) {
        while (index[place] < leftRows) {
            ++place;
        }
        return index[place++] - leftRows;
    };
    std::size_t row = 0;
    for (const MergeIndex& run : merge) {
        std::uint32_t leftPlace = run.leftBegin;
        std::uint32_t rightPlace = run.rightBegin;
        if (run.rightCount == 0 && KeepsLeft(type)) {
            for (std::uint32_t i = 0; i < run.leftCount; ++i, ++row) {
                left[row] = nextLeft(leftPlace);
                right[row] = Func::NO_ROW;
            }
        } else if (run.leftCount != 0) {
            const std::size_t block = row;
            for (std::uint32_t i = 0; i < run.leftCount; ++i) {
                const std::uint32_t leftRow = run.rightCount == 0 ? 0 : nextLeft(leftPlace);
                for (std::uint32_t k = 0; k < run.rightCount; ++k, ++row) {
                    left[row] = leftRow;
                    right[row] = i == 0 ? nextRight(rightPlace) : right[block + k];
                }
            }
        } else if (KeepsRight(type)) {
            for (std::uint32_t i = 0; i < run.rightCount; ++i, ++row) {
                left[row] = Func::NO_ROW;
                right[row] = nextRight(rightPlace);
            }
        }
    }
}

Error DataFrame::PairMergeRows(const DataFrame& right, const MergeRows& leftOn, const MergeRows& rightOn,
    MERVO_TESSERA_MERGE_JOINTYPE type, MergeRows& leftRows, MergeRows& rightRows) const
{
    const std::uint64_t count = std::uint64_t{RowCount()} + right.RowCount();
    if (count == 0) {
        return {};
    }
    if (count > MOST_ROWS) {
        LogError("Can't merge tables of %llu rows", static_cast<unsigned long long>(count));
        return {ERROR_OUT_OF_MEMORY, "too many rows for Merge"};
    }
    std::vector<MergeIndex> merge;
    std::vector<std::uint8_t> flags(static_cast<std::size_t>(count));
    flags.front() = 1;
    MergeKeys keys;
    const MergeRows index = SortAndGetKey(right, leftOn, rightOn, keys, flags);
    for (const auto& key : keys) {
        key->MarkChanges(index, flags.data());
    }
    CalculateMergeIndex(flags, index, merge);
    flags = {};
    const std::uint64_t length = GetMergedSeriesLength(merge, type);
    if (length > MOST_ROWS) {
        LogError("Can't build a merged table of %llu rows", static_cast<unsigned long long>(length));
        return {ERROR_OUT_OF_MEMORY, "too many rows for Merge"};
    }
    leftRows.resize(static_cast<std::size_t>(length));
    rightRows.resize(static_cast<std::size_t>(length));
    GetLeftRightMergeIndex(merge, index, type, leftRows, rightRows);
    return {};
}

} // namespace MERVO::Tessera
