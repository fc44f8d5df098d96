#include "tessera/grouping/keyed_rows.h"

#include <algorithm>
#include <array>
#include <utility>

namespace MERVO::Tessera {
namespace {

/// Calls visit(row, key) for each row, block by block, until isDone().
template <typename Visit, typename IsDone>
void ForEachKey(const DenseKeys& keys, DenseKeys::Side side, std::uint32_t rowCount, Visit visit, IsDone isDone)
{
    std::array<std::uint64_t, DenseKeys::BLOCK> read;
    for (std::uint32_t first = 0; first < rowCount && !isDone(); first += DenseKeys::BLOCK) {
        const std::uint32_t count = std::min(rowCount - first, DenseKeys::BLOCK);
        keys.Read(side, first, count, read.data());
        for (std::uint32_t i = 0; i < count; ++i) {
            visit(first + i, static_cast<std::size_t>(read[i]));
        }
    }
}

} // namespace

KeyedRows::KeyedRows(const DenseKeys& keys, DenseKeys::Side side, std::uint32_t rowCount)
    : places(MakeBlock<std::uint32_t>(keys.Bound()))
{
    if (places != nullptr && !PutSingly(keys, side, rowCount)) {
        rows = MakeBlock<std::uint32_t>(rowCount);
        rows != nullptr ? PutByCount(keys, side, rowCount) : places.reset();
    }
}

bool KeyedRows::PutSingly(const DenseKeys& keys, DenseKeys::Side side, std::uint32_t rowCount)
{
    std::uint32_t* const to = places.get();
    std::fill_n(to, keys.Bound(), Func::NO_ROW);
    bool areSingle = true;
    ForEachKey(
        keys, side, rowCount,
        [to, &areSingle](std::uint32_t row, std::size_t key) {
            areSingle &= to[key] == Func::NO_ROW;
            to[key] = row;
        },
        [&areSingle] { return !areSingle; });
    return areSingle;
}

void KeyedRows::PutByCount(const DenseKeys& keys, DenseKeys::Side side, std::uint32_t rowCount)
{
    std::uint32_t* const next = places.get();
    std::uint32_t* const to = rows.get();
    const auto isDone = [] { return false; };
    std::fill_n(next, keys.Bound(), 0U);
    ForEachKey(
        keys, side, rowCount, [next](std::uint32_t, std::size_t key) { ++next[key]; }, isDone);
    std::uint32_t before = 0;
    for (std::uint32_t key = 0; key < keys.Bound(); ++key) {
        before += std::exchange(next[key], before);
    }
    ForEachKey(
        keys, side, rowCount, [next, to](std::uint32_t row, std::size_t key) { to[next[key]++] = row; }, isDone);
}

} // namespace MERVO::Tessera
