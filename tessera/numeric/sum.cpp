#include "tessera/numeric/sum.h"

#include "tessera/core/date_time.h"
#include "tessera/functors/element_walk.h"
#include "tessera/numeric/column_sums.h"
#include "tessera/numeric/reduction_result.h"

namespace MERVO::Tessera::Func {
namespace {

template <typename Position>
DateTime SumOfStamps(Position head, Position tail)
{
    std::uint32_t total = 0;
    for (; head != tail; ++head) {
        total += static_cast<std::uint32_t>((*head).TimeStamp());
    }
    return DateTime(static_cast<std::int32_t>(total));
}

/// The type that this returns is the type of the sum.
template <typename T, typename Position>
auto SumOf(Position head, Position tail)
{
    if constexpr (std::is_same_v<T, bool>) {
        return std::int64_t{static_cast<std::int32_t>(CountTrue(head, tail))};
    } else if constexpr (std::is_integral_v<T>) {
        return SumOfIntegers(0.0, head, tail);
    } else if constexpr (std::is_floating_point_v<T>) {
        return SumOfReals<T>(head, tail);
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return SumOfStamps(head, tail);
    } else {
        return InvalidType{};
    }
}

template <typename T>
using SumResult = decltype(SumOf<T>(ListPosition<T>(), ListPosition<T>()));

constexpr ResultTypes RESULT_TYPES =
    ForEachValueType([](auto number) { return TYPE_ID_OF<SumResult<ValueTypes::At<number()>>>; });

} // namespace

template <ContainerID CID>
std::string Sum<CID>::GetName() const
{
    return "Sum";
}

template <ContainerID CID>
SeriesAttr Sum<CID>::GetDstAttr(const Cursor& src) const
{
    return GetResultAttr(src, RESULT_TYPES);
}

template <ContainerID CID>
bool Sum<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return IsResultAttr(src, dst, RESULT_TYPES);
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode Sum<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (std::is_same_v<SumResult<T>, InvalidType>) {
        return ERROR_GENERAL;
    } else {
        return StoreResult(dst, WithPlaces<T>(src, [](auto head, auto tail) { return SumOf<T>(head, tail); }));
    }
}

template class Sum<CONTAINER_ARRAY>;
template class Unary<Sum<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>;

} // namespace MERVO::Tessera::Func
