#include "tessera/functors/gather.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <type_traits>

#include "tessera/core/bit_bytes.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/scattered.h"
#include "tessera/functors/assign_text.h"
#include "tessera/functors/element_walk.h"
#include "tessera/functors/long_texts.h"
#include "tessera/functors/missing_cell.h"

namespace MERVO::Tessera::Func {
namespace {

using Positions = std::span<const std::uint32_t>;

/// A number as its bytes, so that numbers of one size share their code.
template <std::size_t SIZE>
struct Bytes {
    std::byte bytes[SIZE];
};

/// Where the elements of a column are read and written.
template <typename T>
struct Storage {
    using Cell = std::conditional_t<Arithmetic<T>, Bytes<sizeof(T)>, T>;
    using Head = const Cell*;
    static Head Of(const Cursor& column) { return reinterpret_cast<Head>(CursorAs<CONTAINER_ARRAY, T>(column).mHead); }
    static Head Of(const T& single) { return reinterpret_cast<Head>(&single); }
};

template <>
struct Storage<bool> {
    using Head = BitPosition;
    static Head Of(const Cursor& column) { return CursorAs<CONTAINER_ARRAY, bool>(column).mHead; }
};

template <typename T>
using HeadOf = typename Storage<T>::Head;

/// The places of elements: at some positions of a column.
template <typename Head>
struct OneColumn {
    Head operator()(std::size_t i) const { return head + positions[i]; }

    Head head;
    Positions positions;
};

/// The same, with another place where there is no row.
template <typename Head>
struct ColumnOrMissing {
    Head operator()(std::size_t i) const { return positions[i] == NO_ROW ? missing : head + positions[i]; }

    Head head;
    Positions positions;
    Head missing;
};

/// At positions of a second column where the first has no row.
template <typename Head>
struct EitherColumn {
    Head operator()(std::size_t i) const { return left.positions[i] == NO_ROW ? right(i) : left(i); }

    OneColumn<Head> left;
    OneColumn<Head> right;
};

template <typename Cell, typename PlaceOf>
void CopyNumbers(PlaceOf placeOf, Cell* to, std::size_t count)
{
    VisitScattered(count, placeOf, [to](std::size_t i, const Cell* from) { std::memcpy(to + i, from, sizeof(Cell)); });
}

template <typename PlaceOf>
void CopyBits(PlaceOf placeOf, BitPosition to, std::size_t count)
{
    std::array<bool, 512> copied;
    for (std::size_t first = 0; first < count; first += copied.size()) {
        const auto length = static_cast<std::uint32_t>(std::min(copied.size(), count - first));
        for (std::uint32_t i = 0; i < length; ++i) {
            copied[i] = *placeOf(first + i);
        }
        PackBits(copied.data(), to, length);
        to += length;
    }
}

template <typename T, typename PlaceOf>
void CopyLarge(PlaceOf placeOf, T* to, std::size_t count)
{
    if constexpr (std::is_same_v<T, std::string>) {
        LongTexts longTexts;
        VisitScattered(count, placeOf, [to, count, placeOf, &longTexts](std::size_t i, const T* from) {
            longTexts.Add(from->size(), placeOf, count);
            AssignText(to[i], *from);
        });
    } else {
        VisitScattered(count, placeOf, [to](std::size_t i, const T* from) { to[i] = *from; });
    }
}

template <typename T, typename PlaceOf>
void CopyFrom(PlaceOf placeOf, const Cursor& dst, std::size_t count)
{
    const auto to = CursorAs<CONTAINER_ARRAY, T>(dst).mHead;
    if constexpr (std::is_same_v<T, bool>) {
        CopyBits(placeOf, to, count);
    } else if constexpr (Arithmetic<T>) {
        CopyNumbers(placeOf, reinterpret_cast<typename Storage<T>::Cell*>(to), count);
    } else {
        CopyLarge(placeOf, to, count);
    }
}

template <typename T>
void GatherCells(const Cursor& src, Positions positions, const Cursor& dst)
{
    if (src->IsMemoryContiguous() && dst->IsMemoryContiguous()) {
        CopyFrom<T>(OneColumn<HeadOf<T>>{Storage<T>::Of(src), positions}, dst, positions.size());
        return;
    }
    AnyPlace<T> from(src);
    AnyPlace<T> to(dst);
    std::int64_t reached = 0;
    for (const std::uint32_t position : positions) {
        from += position - reached;
        reached = position;
        *to = static_cast<const T&>(*from);
        ++to;
    }
}

template <typename T>
void GatherCellsOrMissing(const Cursor& src, Positions positions, const Cursor& dst)
{
    const auto gather = [&](auto missing) {
        CopyFrom<T>(ColumnOrMissing<HeadOf<T>>{Storage<T>::Of(src), positions, missing}, dst, positions.size());
    };
    if constexpr (std::is_same_v<T, bool>) {
        std::uint8_t noBits = 0;
        gather(BitPosition(&noBits, 0));
    } else {
        const T missing = MissingCell<T>();
        gather(Storage<T>::Of(missing));
    }
}

template <typename T>
void GatherCellsOfEither(
    const Cursor& lhs, Positions leftPositions, const Cursor& rhs, Positions rightPositions, const Cursor& dst)
{
    const OneColumn<HeadOf<T>> left{Storage<T>::Of(lhs), leftPositions};
    const OneColumn<HeadOf<T>> right{Storage<T>::Of(rhs), rightPositions};
    CopyFrom<T>(EitherColumn<HeadOf<T>>{left, right}, dst, leftPositions.size());
}

constexpr auto GATHERERS = ForEachValueType([](auto number) { return &GatherCells<ValueTypes::At<number()>>; });
constexpr auto GATHERERS_OR_MISSING =
    ForEachValueType([](auto number) { return &GatherCellsOrMissing<ValueTypes::At<number()>>; });
constexpr auto GATHERERS_OF_EITHER =
    ForEachValueType([](auto number) { return &GatherCellsOfEither<ValueTypes::At<number()>>; });

std::size_t TypeOf(const Cursor& column) { return static_cast<std::size_t>(column->GetAttr().typeId); }

} // namespace

bool AreBelow(Positions positions, std::uint32_t bound)
{
    std::uint32_t largest = 0;
    for (const std::uint32_t position : positions) {
        largest = std::max(largest, position);
    }
    return positions.empty() || largest < bound;
}

void Gather(const Cursor& src, Positions positions, const Cursor& dst) { GATHERERS[TypeOf(src)](src, positions, dst); }

void GatherOrMissing(const Cursor& src, Positions positions, const Cursor& dst)
{
    GATHERERS_OR_MISSING[TypeOf(src)](src, positions, dst);
}

void GatherEither(
    const Cursor& lhs, Positions leftPositions, const Cursor& rhs, Positions rightPositions, const Cursor& dst)
{
    GATHERERS_OF_EITHER[TypeOf(lhs)](lhs, leftPositions, rhs, rightPositions, dst);
}

} // namespace MERVO::Tessera::Func
