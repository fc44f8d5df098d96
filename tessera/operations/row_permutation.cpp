#include "tessera/operations/row_permutation.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "tessera/core/block.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/scattered.h"
#include "tessera/functors/assign_text.h"
#include "tessera/functors/gather.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::span<const std::uint32_t>;

/// Whether copying a text needs no memory; then it takes less time than moving it.
bool IsShort(const std::string& text)
{
    static const bool areInline = std::string().capacity() >= Func::READ_AHEAD;
    return areInline && text.size() <= Func::READ_AHEAD;
}

/// A short text while it is on its way.
struct Luggage {
    std::array<char, Func::READ_AHEAD> characters;
    std::uint8_t size;
};
static_assert(sizeof(Luggage) == 16);

/// False if one is longer.
bool PackShortTexts(const std::string* texts, Positions positions, Luggage* to)
{
    std::size_t longest = 0;
    VisitScattered(
        positions.size(), [texts, positions](std::size_t i) { return texts + positions[i]; },
        [to, &longest](std::size_t i, const std::string* text) {
            longest = std::max(longest, text->size());
            std::memcpy(to[i].characters.data(), text->data(), Func::READ_AHEAD);
            to[i].size = static_cast<std::uint8_t>(text->size());
        });
    return longest <= Func::READ_AHEAD;
}

void Unpack(std::span<const Luggage> luggage, std::string* texts)
{
    for (const Luggage& packed : luggage) {
        std::destroy_at(texts);
        Func::MakeText(texts++, packed.characters.data(), packed.size);
    }
}

template <typename T>
void MoveCell(T& to, T& from) noexcept
{
    if constexpr (std::is_same_v<T, std::string>) {
        if (IsShort(from)) {
            Func::AssignText(to, from);
        } else {
            to = std::move(from);
        }
    } else if constexpr (std::is_nothrow_move_assignable_v<T>) {
        to = std::move(from);
    } else {
        std::destroy_at(&to);
        std::construct_at(&to, std::move(from));
    }
}

template <typename T>
void MoveCells(const Cursor& from, Positions positions, const Cursor& to)
{
    if constexpr (std::is_same_v<T, DataFrame>) { // copying such cells would take memory that may not be there
        T* const source = CursorAs<CONTAINER_ARRAY, T>(from).mHead;
        T* const target = CursorAs<CONTAINER_ARRAY, T>(to).mHead;
        VisitScattered(
            positions.size(), [source, positions](std::size_t i) { return source + positions[i]; },
            [target](std::size_t i, T* cell) { MoveCell(target[i], *cell); });
    } else {
        Func::Gather(from, positions, to);
    }
}

template <typename T>
void FollowCells(const Cursor& column, Positions positions, std::vector<bool>& isPlaced)
{
    const auto head = CursorAs<CONTAINER_ARRAY, T>(column).mHead;
    const auto cellAt = [head](
                            std::uint32_t row) -> decltype(auto) { return *(head + static_cast<std::ptrdiff_t>(row)); };
    for (std::uint32_t first = 0; first < positions.size(); ++first) {
        if (isPlaced[first]) {
            continue;
        }
        T kept = std::move(cellAt(first));
        std::uint32_t row = first;
        for (; positions[row] != first; row = positions[row]) {
            if constexpr (std::is_same_v<T, bool>) {
                cellAt(row) = cellAt(positions[row]);
            } else {
                MoveCell(cellAt(row), cellAt(positions[row]));
            }
            isPlaced[row] = true;
        }
        if constexpr (std::is_same_v<T, bool>) {
            cellAt(row) = kept;
        } else {
            MoveCell(cellAt(row), kept);
        }
        isPlaced[row] = true;
    }
}

using Mover = void (*)(const Cursor& from, Positions positions, const Cursor& to);
constexpr auto MOVERS = ForEachValueType([](auto number) -> Mover { return &MoveCells<ValueTypes::At<number()>>; });

using Follower = void (*)(const Cursor& column, Positions positions, std::vector<bool>& isPlaced);
constexpr auto FOLLOWERS =
    ForEachValueType([](auto number) -> Follower { return &FollowCells<ValueTypes::At<number()>>; });

} // namespace

RowPermutation::RowPermutation(Positions order) : positions(order), isPlaced(order.size()) {}

bool RowPermutation::KeepsAll() const { return std::is_sorted(positions.begin(), positions.end()); }

void RowPermutation::MoveInto(const Cursor& from, const Cursor& to) const noexcept
{
    MOVERS[static_cast<std::size_t>(from->GetAttr().typeId)](from, positions, to);
}

bool RowPermutation::ReorderShortTexts(std::string* texts) const noexcept
{
    constexpr std::size_t FIRSTS = 64; // which mostly tell of a column of long texts
    if (!std::all_of(texts, texts + std::min(FIRSTS, positions.size()), IsShort)) {
        return false;
    }
    // Two blocks, each as large as a column of doubles: one may do for both after another.
    const std::size_t half = positions.size() / 2;
    const Block<Luggage> first = MakeBlock<Luggage>(half);
    const Block<Luggage> second = MakeBlock<Luggage>(positions.size() - half);
    if (first == nullptr || second == nullptr || !PackShortTexts(texts, positions.first(half), first.get()) ||
        !PackShortTexts(texts, positions.subspan(half), second.get())) {
        return false;
    }
    Unpack({first.get(), half}, texts);
    Unpack({second.get(), positions.size() - half}, texts + half);
    return true;
}

void RowPermutation::MoveTexts(std::string* from, std::string* to) const noexcept
{
    VisitScattered(
        positions.size(), [from, rows = positions](std::size_t i) { return from + rows[i]; },
        [to](std::size_t i, std::string* text) {
            if (IsShort(*text)) {
                Func::MakeText(to + i, *text);
            } else {
                std::construct_at(to + i, std::move(*text));
            }
            std::destroy_at(text);
        });
}

void RowPermutation::ReorderInPlace(const Cursor& column) noexcept
{
    std::fill(isPlaced.begin(), isPlaced.end(), false);
    FOLLOWERS[static_cast<std::size_t>(column->GetAttr().typeId)](column, positions, isPlaced);
}

} // namespace MERVO::Tessera
