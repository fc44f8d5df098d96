#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <numeric>
#include <optional>
#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/core/memory_room.h"
#include "tessera/functors/missing_cell.h"
#include "tessera/grouping/row_pairs.h"
#include "tessera/operations/sort_keys.h"
#include "tessera/operations/stable_order.h"

namespace MERVO::Tessera {
namespace {

using Rows = std::vector<std::uint32_t>;

constexpr std::uint64_t MOST_ROWS = std::numeric_limits<std::uint32_t>::max();

/// Up to so many times as many numbers as rows, putting rows down by their keys' numbers is faster than sorting them,
/// and takes no more memory.
constexpr std::uint64_t NUMBERS_PER_ROW = 2;

Error TooManyRows() { return {ERROR_OUT_OF_MEMORY, "too many rows for Merge"}; }

/// The rows of a column. All else has been checked, so that only memory can be wanting.
Cursor RowsOf(const DataFrame& table, std::uint32_t key)
{
    Cursor cursor = table.GetSlicedIterator(table.GetColumn(key));
    if (cursor == nullptr) {
        throw std::bad_alloc();
    }
    return cursor;
}

/// Pairs rows by the numbers of their keys; none where keys have no numbers, or where these take more than there is
/// room for.
std::optional<RowPairs> PairsByNumber(
    const Cursor& leftKeys, const Cursor& rightKeys, MERVO_TESSERA_MERGE_JOINTYPE type)
{
    const std::uint64_t rows = std::uint64_t{leftKeys->Length()} + rightKeys->Length();
    const auto most = static_cast<std::uint32_t>(std::min(NUMBERS_PER_ROW * rows, MOST_ROWS));
    const std::unique_ptr<DenseKeys> keys = DenseKeysOf(leftKeys, rightKeys, most);
    if (keys == nullptr) {
        return std::nullopt;
    }
    RowPairs pairs(*keys, leftKeys->Length(), rightKeys->Length(), type);
    return pairs.HasRoom() ? std::optional(std::move(pairs)) : std::nullopt;
}

/// Reserves so many elements in both lists of rows; false, with a message, where so many rows of the result have no
/// room.
bool MakeRoomFor(std::uint64_t length, std::uint64_t cellBytes, Rows& leftRows, Rows& rightRows)
{
    if (length > MOST_ROWS || !HasRoomFor(length, 2 * sizeof(std::uint32_t) + cellBytes)) {
        LogError("Can't build a merged table of %llu rows", static_cast<unsigned long long>(length));
        return false;
    }
    leftRows.reserve(static_cast<std::size_t>(length));
    rightRows.reserve(static_cast<std::size_t>(length));
    return true;
}

/// Calls visit(flags, index) with pieces of sorted rows, cut in front of flagged ones.
template <typename Visit>
void ForEachPiece(const std::vector<std::uint8_t>& flags, const Rows& index, Visit visit)
{
    constexpr std::size_t PIECE = 4096;
    std::vector<std::uint8_t> pieceFlags;
    Rows piece;
    for (std::size_t begin = 0, end = 0; begin < index.size(); begin = end) {
        end = std::min(begin + PIECE, index.size());
        while (end < index.size() && flags[end] == 0) {
            ++end;
        }
        pieceFlags.assign(flags.data() + begin, flags.data() + end);
        piece.assign(index.data() + begin, index.data() + end);
        visit(pieceFlags, piece);
    }
}

} // namespace

Rows DataFrame::SortAndGetKey(
    const DataFrame& right, const MergeRows& leftOn, const MergeRows& rightOn, std::vector<std::uint8_t>& flags) const
{
    Rows index(flags.size());
    std::iota(index.begin(), index.end(), 0U);
    std::vector<std::unique_ptr<SortKeys>> unmarked;
    for (std::size_t k = 0; k < leftOn.size(); ++k) {
        std::unique_ptr<SortKeys> keys = KeysOf(RowsOf(*this, leftOn[k]), RowsOf(right, rightOn[k]));
        if (k + 1 == leftOn.size() && !keys->MayHaveNan()) {
            OrderStably(*keys, false, index, flags, SortRoom::SCARCE);
        } else {
            OrderStably(*keys, false, index, {}, SortRoom::SCARCE);
            unmarked.push_back(std::move(keys));
        }
    }
    for (const auto& keys : unmarked) { // in the order that the last sort has made
        keys->MarkChanges(index, flags.data());
    }
    return index;
}

void DataFrame::CalculateMergeIndex(
    const std::vector<std::uint8_t>& flags, const MergeRows& index, std::vector<MergeIndex>& result) const
{
    const std::uint32_t leftCount = RowCount();
    result.reserve(result.size() + std::accumulate(flags.begin(), flags.end(), std::size_t{0}));
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
    std::uint64_t length = 0;
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
    // Keys within the tolerance stand in the order of their values, so that a run's rows of both sides can be mixed.
    const std::uint32_t leftCount = RowCount();
    const auto nextLeft = [&](std::uint32_t& place) {
        for (; index[place] >= leftCount; ++place) {
        }
        return index[place++];
    };
    const auto nextRight = [&](std::uint32_t& place) {
        for (; index[place] < leftCount; ++place) {
        }
        return index[place++] - leftCount;
    };
    const std::size_t before = left.size();
    const std::size_t length = before + static_cast<std::size_t>(GetMergedSeriesLength(merge, type));
    left.resize(length);
    right.resize(length);
    std::uint32_t* toLeft = left.data() + before;
    std::uint32_t* toRight = right.data() + before;
    for (const MergeIndex& run : merge) {
        std::uint32_t leftPlace = run.leftBegin;
        std::uint32_t rightPlace = run.rightBegin;
        if (run.leftCount != 0 && run.rightCount != 0) {
            const std::uint32_t* const block = toRight;
            std::generate_n(toRight, run.rightCount, [&] { return nextRight(rightPlace); });
            for (std::uint32_t i = 0; i < run.leftCount; ++i) {
                toLeft = std::fill_n(toLeft, run.rightCount, nextLeft(leftPlace));
                toRight = i == 0 ? toRight + run.rightCount : std::copy_n(block, run.rightCount, toRight);
            }
        } else if (run.leftCount != 0 && KeepsLeft(type)) {
            toLeft = std::generate_n(toLeft, run.leftCount, [&] { return nextLeft(leftPlace); });
            toRight = std::fill_n(toRight, run.leftCount, Func::NO_ROW);
        } else if (run.rightCount != 0 && KeepsRight(type)) {
            toLeft = std::fill_n(toLeft, run.rightCount, Func::NO_ROW);
            toRight = std::generate_n(toRight, run.rightCount, [&] { return nextRight(rightPlace); });
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
        return TooManyRows();
    }
    const std::uint64_t cellBytes = RowSizeOf(*series) + RowSizeOf(*right.series);
    const auto pairs =
        leftOn.size() == 1 ? PairsByNumber(RowsOf(*this, leftOn[0]), RowsOf(right, rightOn[0]), type) : std::nullopt;
    if (pairs.has_value()) {
        const std::uint64_t length = pairs->Count();
        if (!MakeRoomFor(length, cellBytes, leftRows, rightRows)) {
            return TooManyRows();
        }
        leftRows.resize(static_cast<std::size_t>(length));
        rightRows.resize(static_cast<std::size_t>(length));
        pairs->Write(leftRows, rightRows);
        return {};
    }
    std::vector<std::uint8_t> flags(static_cast<std::size_t>(count));
    flags.front() = 1;
    const MergeRows index = SortAndGetKey(right, leftOn, rightOn, flags);
    const auto forEachPieceOfRuns = [&](auto visit) {
        std::vector<MergeIndex> runs;
        ForEachPiece(flags, index, [&](const std::vector<std::uint8_t>& pieceFlags, const MergeRows& piece) {
            runs.clear();
            CalculateMergeIndex(pieceFlags, piece, runs);
            visit(runs, piece);
        });
    };
    std::uint64_t length = 0; // at most all pairs and all single rows, which 64 bits can hold
    forEachPieceOfRuns([&](const auto& runs, const MergeRows&) { length += GetMergedSeriesLength(runs, type); });
    if (!MakeRoomFor(length, cellBytes, leftRows, rightRows)) {
        return TooManyRows();
    }
    forEachPieceOfRuns([&](const auto& runs, const MergeRows& piece) {
        GetLeftRightMergeIndex(runs, piece, type, leftRows, rightRows);
    });
    return {};
}

} // namespace MERVO::Tessera
