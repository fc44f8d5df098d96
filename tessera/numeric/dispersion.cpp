#include "tessera/numeric/dispersion.h"

#include <cmath>
#include <limits>
#include <vector>

#include "tessera/numeric/columns_abreast.h"
#include "tessera/numeric/count_divisor.h"
#include "tessera/numeric/deviations.h"
#include "tessera/numeric/group_sums.h"
#include "tessera/numeric/reduction_result.h"

namespace MERVO::Tessera::Func {
namespace {

template <typename Real>
double SumOfSquares(const Cursor& src, Real mean)
{
    return SumOverDeviations(src, mean, [](double deviation) { return deviation * deviation; });
}

/// A measure of spread, made of what one or two passes over n elements give.
template <typename Real>
using SpreadFrom = Real (*)(double squares, Real mean, std::uint32_t n, std::uint32_t lostDegrees);

template <typename Real>
Real VarianceFrom(double squares, Real mean, std::uint32_t n, std::uint32_t lostDegrees)
{
    return NarrowStatistic(squares / (static_cast<double>(n) - static_cast<double>(lostDegrees)), mean);
}

template <typename Real>
Real DeviationFrom(double squares, Real mean, std::uint32_t n, std::uint32_t lostDegrees)
{
    const std::uint32_t freedom = n - lostDegrees;
    return freedom == 0 ? std::numeric_limits<Real>::quiet_NaN()
                        : NarrowStatistic(std::sqrt(squares / static_cast<double>(freedom)), mean);
}

template <typename Real>
[[gnu::noinline]] ErrorCode StoreSpread(
    const Cursor& src, const Cursor& dst, SpreadFrom<Real> spreadFrom, std::uint32_t lostDegrees)
{
    const Real mean = MeanOfShares<Real>(src);
    return StoreResult(dst, spreadFrom(SumOfSquares(src, mean), mean, src->Length(), lostDegrees));
}

/// A group on the way through the two passes.
template <typename Real>
struct Spread {
    Real mean{0};
    Real length{0};
    double squares = 0.0;
};

template <typename Real>
bool StoreSpreadsOfGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst, SpreadFrom<Real> spreadFrom,
    std::uint32_t lostDegrees)
{
    if (!HasCells(src, groups, dst, TYPE_ID_OF<Real>)) {
        return false;
    }
    std::vector<Spread<Real>> spreads(groups.Count());
    for (std::uint32_t g = 0; g < groups.Count(); ++g) {
        spreads[g].length = static_cast<Real>(groups.SizeOf(g));
    }
    ForEachInGroups<Real>(src, groups, [&spreads](Real value, std::uint32_t group) {
        Spread<Real>& spread = spreads[group];
        AddTerm(spread.mean, value / spread.length);
    });
    ForEachInGroups<Real>(src, groups, [&spreads](Real value, std::uint32_t group) {
        Spread<Real>& spread = spreads[group];
        const auto deviation = static_cast<double>(value - spread.mean);
        spread.squares += deviation * deviation;
    });
    Real* const cells = CursorAs<CONTAINER_ARRAY, Real>(dst).mHead;
    for (std::uint32_t g = 0; g < groups.Count(); ++g) {
        cells[g] = spreadFrom(spreads[g].squares, spreads[g].mean, groups.SizeOf(g), lostDegrees);
    }
    return true;
}

struct MeasureSpread {
    SpreadFrom<double> spreadFrom;
    std::uint32_t lostDegrees;

    template <typename Adder>
    [[gnu::always_inline]] Abreast Reduce(const ColumnsAbreast& columns) const
    {
        Abreast lengths;
        lengths.fill(columns.length);
        SmallestMagnitude smallest;
        const auto [means] = SumsAbreast<Adder, 1>(
            columns, DivisorsAbreast(lengths), [&smallest](const auto& value, const auto* length, auto* results) {
                smallest.See(value);
                Divide(value, length, results[0]);
            });
        const bool isLossy = smallest.IsBelow(CountDivisor::FUSED_FROM);
        auto [spreads] = SumsAbreast<Adder, 1>(
            columns, ParametersAbreast<1>{means}, [](const auto& value, const auto* mean, auto* results) {
                const auto deviation = value - mean[0];
                results[0] = deviation * deviation;
            });
        for (std::size_t k = 0; k < columns.count; ++k) {
            spreads[k] = isLossy ? std::numeric_limits<double>::quiet_NaN()
                                 : spreadFrom(spreads[k], means[k], columns.length, lostDegrees);
        }
        return spreads;
    }
};

} // namespace

template <ContainerID CID>
std::string VarBase<CID>::GetName() const
{
    return "Var";
}

template <ContainerID CID>
bool VarBase<CID>::ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const
{
    return src->GetAttr().typeId == TESSERA_FLOAT
        ? StoreSpreadsOfGroups<float>(src, groups, dst, &VarianceFrom<float>, lostDegrees)
        : StoreSpreadsOfGroups<double>(src, groups, dst, &VarianceFrom<double>, lostDegrees);
}

template <ContainerID CID>
bool VarBase<CID>::ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const
{
    return ReduceAbreast(*this, sources, results, MeasureSpread{&VarianceFrom<double>, lostDegrees});
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode VarBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (Arithmetic<T>) {
        return StoreSpread<RealOf<T>>(src, dst, &VarianceFrom<RealOf<T>>, lostDegrees);
    } else {
        return ERROR_GENERAL;
    }
}

template <ContainerID CID>
std::string StdBase<CID>::GetName() const
{
    return "Std";
}

template <ContainerID CID>
bool StdBase<CID>::ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const
{
    return src->GetAttr().typeId == TESSERA_FLOAT
        ? StoreSpreadsOfGroups<float>(src, groups, dst, &DeviationFrom<float>, lostDegrees)
        : StoreSpreadsOfGroups<double>(src, groups, dst, &DeviationFrom<double>, lostDegrees);
}

template <ContainerID CID>
bool StdBase<CID>::ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const
{
    return ReduceAbreast(*this, sources, results, MeasureSpread{&DeviationFrom<double>, lostDegrees});
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode StdBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (Arithmetic<T>) {
        return StoreSpread<RealOf<T>>(src, dst, &DeviationFrom<RealOf<T>>, lostDegrees);
    } else {
        return ERROR_GENERAL;
    }
}

template class VarBase<CONTAINER_ARRAY>;
template class RealStatistic<VarBase<CONTAINER_ARRAY>>;
template class Unary<VarBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>;
template class Var<CONTAINER_ARRAY, std::uint32_t>;
template class Var<CONTAINER_ARRAY, std::uint32_t&>;
template class Var<CONTAINER_ARRAY, const std::uint32_t&>;
template class StdBase<CONTAINER_ARRAY>;
template class RealStatistic<StdBase<CONTAINER_ARRAY>>;
template class Unary<StdBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>;
template class Std<CONTAINER_ARRAY>;
template class Std<CONTAINER_ARRAY, std::uint32_t>;
template class Std<CONTAINER_ARRAY, std::uint32_t&>;
template class Std<CONTAINER_ARRAY, const std::uint32_t&>;

} // namespace MERVO::Tessera::Func
