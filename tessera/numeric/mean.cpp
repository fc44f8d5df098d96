#include "tessera/numeric/mean.h"

#include <limits>
#include <vector>

#include "tessera/core/date_time.h"
#include "tessera/functors/element_walk.h"
#include "tessera/numeric/cal_mean.h"
#include "tessera/numeric/columns_abreast.h"
#include "tessera/numeric/group_sums.h"
#include "tessera/numeric/reduction_result.h"

namespace MERVO::Tessera::Func {
namespace {

DateTime MeanOfStamps(const Cursor& src)
{
    const std::uint32_t count = src->Length();
    std::uint32_t total = 0;
    ForEachElement<DateTime>(
        src, [count, &total](const DateTime& time) { total += static_cast<std::uint32_t>(time.TimeStamp()) / count; });
    return DateTime(static_cast<std::int32_t>(total));
}

/// The type that this returns is the type of the mean.
template <typename T>
auto MeanOf([[maybe_unused]] const Cursor& src, [[maybe_unused]] bool skipNan)
{
    if constexpr (std::is_same_v<T, float>) {
        return static_cast<float>(CalMean(src, skipNan));
    } else if constexpr (Arithmetic<T>) {
        return CalMean(src, skipNan);
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return MeanOfStamps(src);
    } else {
        return InvalidType{};
    }
}

template <typename T>
using MeanResult = decltype(MeanOf<T>(nullptr, true));

template <typename Real>
bool StoreMeansOfGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst)
{
    if (!HasCells(src, groups, dst, TYPE_ID_OF<Real>)) {
        return false;
    }
    std::vector<double> totals(groups.Count());
    std::vector<std::uint32_t> missing(groups.Count());
    ForEachInGroups<Real>(src, groups, [&totals, &missing](Real value, std::uint32_t group) {
        if (value == value) [[likely]] {
            totals[group] += static_cast<double>(value);
        } else {
            ++missing[group];
        }
    });
    Real* const means = CursorAs<CONTAINER_ARRAY, Real>(dst).mHead;
    for (std::uint32_t g = 0; g < groups.Count(); ++g) {
        means[g] = static_cast<Real>(MeanFrom(WithPlainNan(totals[g]), groups.SizeOf(g) - missing[g]));
    }
    return true;
}

struct Average {
    bool skipNan;

    template <typename Adder>
    [[gnu::always_inline]] Abreast Reduce(const ColumnsAbreast& columns) const
    {
        auto [means, missing] = SumsOfPresentAbreast<Adder>(columns);
        for (std::size_t k = 0; k < columns.count; ++k) {
            means[k] = missing[k] != 0 && !skipNan
                ? std::numeric_limits<double>::quiet_NaN()
                : MeanFrom(means[k], columns.length - static_cast<std::uint32_t>(missing[k]));
        }
        return means;
    }
};

constexpr ResultTypes RESULT_TYPES =
    ForEachValueType([](auto number) { return TYPE_ID_OF<MeanResult<ValueTypes::At<number()>>>; });

} // namespace

template <ContainerID CID>
std::string Mean<CID>::GetName() const
{
    return "Mean";
}

template <ContainerID CID>
SeriesAttr Mean<CID>::GetDstAttr(const Cursor& src) const
{
    return GetResultAttr(src, RESULT_TYPES);
}

template <ContainerID CID>
bool Mean<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return IsResultAttr(src, dst, RESULT_TYPES);
}

template <ContainerID CID>
bool Mean<CID>::ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const
{
    return skipNan &&
        (src->GetAttr().typeId == TESSERA_FLOAT ? StoreMeansOfGroups<float>(src, groups, dst)
                                                : StoreMeansOfGroups<double>(src, groups, dst));
}

template <ContainerID CID>
bool Mean<CID>::ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const
{
    return ReduceAbreast(*this, sources, results, Average{skipNan});
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode Mean<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (std::is_same_v<MeanResult<T>, InvalidType>) {
        return ERROR_GENERAL;
    } else {
        return StoreResult(dst, MeanOf<T>(src, skipNan));
    }
}

template class Mean<CONTAINER_ARRAY>;
template const UnaryTable<2>
    Unary<Mean<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;

} // namespace MERVO::Tessera::Func
