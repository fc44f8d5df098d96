#include "tessera/numeric/sum.h"

#include <algorithm>

#include "tessera/core/date_time.h"
#include "tessera/functors/element_walk.h"
#include "tessera/numeric/column_sums.h"
#include "tessera/numeric/columns_abreast.h"
#include "tessera/numeric/group_sums.h"
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

/// The totals grow in the cells themselves.
template <typename Real>
bool StoreSumsOfGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst)
{
    if (!HasCells(src, groups, dst, TYPE_ID_OF<Real>)) {
        return false;
    }
    Real* const totals = CursorAs<CONTAINER_ARRAY, Real>(dst).mHead;
    std::fill_n(totals, groups.Count(), Real{0});
    AddGroups(src, groups, totals);
    return true;
}

struct AddUp {
    template <typename Adder>
    [[gnu::always_inline]] Abreast Reduce(const ColumnsAbreast& columns) const
    {
        return SumsAbreast<Adder, 1>(columns, ParametersAbreast<0>{},
            [](const auto& value, const auto*, auto* results) { results[0] = value; })[0];
    }
};

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
bool Sum<CID>::ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const
{
    return src->GetAttr().typeId == TESSERA_FLOAT
        ? StoreSumsOfGroups<float>(src, groups, dst)
        : StoreSumsOfGroups<double>(src, groups, dst); // a count of bools has no such cells
}

template <ContainerID CID>
bool Sum<CID>::ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const
{
    return ReduceAbreast(*this, sources, results, AddUp{});
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
template const UnaryTable<2> Unary<Sum<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;

} // namespace MERVO::Tessera::Func
