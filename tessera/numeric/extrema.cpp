#include "tessera/numeric/extrema.h"

#include "tessera/functors/element_walk.h"
#include "tessera/numeric/first_best.h"
#include "tessera/numeric/group_sums.h"
#include "tessera/numeric/plain_nan.h"
#include "tessera/numeric/reduction_result.h"

namespace MERVO::Tessera::Func {
namespace {

/// Value types that have no order, and those of which Min and Ptp serve none though Max does.
template <typename T>
inline constexpr bool IS_UNORDERED = std::is_same_v<T, DataFrame>;
template <typename T>
inline constexpr bool HAS_NO_LEAST = IS_UNORDERED<T> || std::is_same_v<T, std::string>;

/// Runs body(head, tail) on a range that has a first element; a caller that left out the check may have brought none.
template <typename T, typename Body>
ErrorCode WithFirst(const Cursor& src, Body&& body)
{
    return WithPlaces<T>(src, [&body](auto head, auto tail) -> ErrorCode {
        return head == tail ? ErrorCode{ERROR_EMPTY_CURSOR} : body(head, tail);
    });
}

template <typename T, typename Better>
ErrorCode StoreFirstBest(const Cursor& src, const Cursor& dst, Better better)
{
    return WithFirst<T>(
        src, [&dst, better](auto head, auto tail) { return StoreResult<T>(dst, *FirstBest(head, tail, better)); });
}

template <typename T, typename Better>
void StoreBestOfGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst)
{
    constexpr Better BETTER{};
    const T* const head = CursorAs<CONTAINER_ARRAY, T>(src).mHead;
    const T* const tail = CursorAs<CONTAINER_ARRAY, T>(src).mTail;
    T* const best = CursorAs<CONTAINER_ARRAY, T>(dst).mHead;
    for (std::uint32_t g = 0; g < groups.Count(); ++g) {
        best[g] = head[groups.firstRows[g]];
    }
    const std::uint32_t* group = groups.groupOfRow;
    for (const T* value = head; value != tail; ++value, ++group) {
        best[*group] = BETTER(*value, best[*group]) ? *value : best[*group];
    }
}

using GroupsEntry = void (*)(const Cursor& src, const RowGroups& groups, const Cursor& dst);

/// Serves arrays of numbers.
template <typename Better>
bool ReduceToBest(const Cursor& src, const RowGroups& groups, const Cursor& dst)
{
    constexpr auto ENTRIES = ForEachValueType([](auto number) -> GroupsEntry {
        using T = ValueTypes::At<number()>;
        if constexpr (Arithmetic<T> && !std::is_same_v<T, bool>) {
            return &StoreBestOfGroups<T, Better>;
        } else {
            return nullptr;
        }
    });
    const MERVO_TESSERA_TYPEID type = src->GetAttr().typeId;
    const GroupsEntry entry = HasCells(src, groups, dst, type) ? ENTRIES[static_cast<std::size_t>(type)] : nullptr;
    if (entry == nullptr) {
        return false;
    }
    entry(src, groups, dst);
    return true;
}

template <typename T>
T Difference(const T& largest, const T& smallest)
{
    if constexpr (std::is_same_v<T, bool>) {
        return largest != smallest;
    } else if constexpr (std::is_same_v<T, DateTime>) {
        const auto span =
            static_cast<std::uint32_t>(largest.TimeStamp()) - static_cast<std::uint32_t>(smallest.TimeStamp());
        return DateTime(static_cast<std::int32_t>(span));
    } else if constexpr (std::is_integral_v<T>) {
        using Wrapping = std::make_unsigned_t<T>;
        return static_cast<T>(static_cast<Wrapping>(largest) - static_cast<Wrapping>(smallest));
    } else {
        return WithPlainNan(largest - smallest); // NaN between equal infinities
    }
}

constexpr auto IS_NAN = [](const auto& value, const auto&) { return value != value; };

/// The span of numbers in an array, in one pass through memory.
template <typename Number>
Number SpanOf(const Number* head, const Number* const tail)
{
    Number smallest = *head;
    Number largest = *head;
    while (head != tail) {
        const Number* const end = head + std::min(BLOCK_OF<Number>, tail - head);
        if constexpr (std::is_floating_point_v<Number>) {
            const Number nan = BestOf(head, end, Number{0}, IS_NAN);
            if (nan != nan) {
                return *std::find_if(head, end, [](Number value) { return value != value; });
            }
        }
        smallest = BestOf(head, end, smallest, IsLess{});
        largest = BestOf(head, end, largest, IsGreater{});
        head = end;
    }
    return Difference(largest, smallest);
}

/// The span of anything else.
template <typename T, typename Position>
T SpanBetween(Position head, Position tail)
{
    if constexpr (std::is_floating_point_v<T>) {
        for (Position place = head; place != tail; ++place) {
            if (*place != *place) {
                return *place;
            }
        }
    }
    return Difference<T>(*FirstBest(head, tail, IsGreater{}), *FirstBest(head, tail, IsLess{}));
}

} // namespace

template <ContainerID CID>
std::string Max<CID>::GetName() const
{
    return "Max";
}

template <ContainerID CID>
bool Max<CID>::ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const
{
    return ReduceToBest<IsGreater>(src, groups, dst);
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode Max<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (IS_UNORDERED<T>) {
        return ERROR_GENERAL;
    } else {
        return StoreFirstBest<T>(src, dst, IsGreater{});
    }
}

template <ContainerID CID>
std::string Min<CID>::GetName() const
{
    return "Min";
}

template <ContainerID CID>
bool Min<CID>::ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const
{
    return ReduceToBest<IsLess>(src, groups, dst);
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode Min<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (HAS_NO_LEAST<T>) {
        return ERROR_GENERAL;
    } else {
        return StoreFirstBest<T>(src, dst, IsLess{});
    }
}

template <ContainerID CID>
std::string Ptp<CID>::GetName() const
{
    return "Ptp";
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode Ptp<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (HAS_NO_LEAST<T>) {
        return ERROR_GENERAL;
    } else {
        return WithFirst<T>(src, [&dst](auto head, auto tail) {
            if constexpr (Arithmetic<T> && std::is_pointer_v<decltype(head)>) {
                return StoreResult<T>(dst, SpanOf<T>(head, tail));
            } else {
                return StoreResult<T>(dst, SpanBetween<T>(head, tail));
            }
        });
    }
}

template <ContainerID CID>
std::string IdxMax<CID>::GetName() const
{
    return "IdxMax";
}

template <ContainerID CID>
SeriesAttr IdxMax<CID>::GetDstAttr(const Cursor& src) const
{
    return WithType(WithLength(src->GetAttr(), 1), TESSERA_UINT32);
}

template <ContainerID CID>
bool IdxMax<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->Length() != 0 && dst->Length() == 1 && dst->GetAttr().typeId == TESSERA_UINT32;
}

template <ContainerID CID>
template <typename T>
ErrorCode IdxMax<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (IS_UNORDERED<T>) {
        LogError("this type donnot support IdxMax functor");
        return ERROR_GENERAL;
    } else {
        return WithFirst<T>(src, [&dst](auto head, auto tail) {
            return StoreResult(dst, static_cast<std::uint32_t>(FirstBest(head, tail, IsGreater{}) - head));
        });
    }
}

template class Max<CONTAINER_ARRAY>;
template const UnaryTable<2> Unary<Max<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
template class Min<CONTAINER_ARRAY>;
template const UnaryTable<2> Unary<Min<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
template class Ptp<CONTAINER_ARRAY>;
template const UnaryTable<2> Unary<Ptp<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
template class IdxMax<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<IdxMax<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;

} // namespace MERVO::Tessera::Func
