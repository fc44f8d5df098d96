#include "tessera/numeric/moments.h"

#include "tessera/numeric/deviations.h"
#include "tessera/numeric/power.h"
#include "tessera/numeric/reduction_result.h"

namespace MERVO::Tessera::Func {
namespace {

template <typename Real>
[[gnu::noinline]] ErrorCode StoreMoment(const Cursor& src, const Cursor& dst, std::uint32_t degree)
{
    const Real mean = MeanOfShares<Real>(src);
    const double total =
        SumOverDeviations(src, mean, [degree](double deviation) { return WholePower(deviation, degree); });
    return StoreResult(dst, NarrowStatistic(total / static_cast<double>(src->Length()), mean));
}

/// The sums of the first to fourth powers of a column.
template <typename Real>
struct PowerSums {
    explicit PowerSums(const Cursor& column) : n(static_cast<Real>(column->Length()))
    {
        RealRuns<Real> runs(column);
        for (auto run = runs.Next(); !run.empty(); run = runs.Next()) {
            for (const Real value : run) {
                const Real square = value * value;
                const Real cube = square * value;
                s1 += value;
                s2 += square;
                s3 += cube;
                s4 += cube * value;
            }
        }
    }

    Real n;
    Real s1{0};
    Real s2{0};
    Real s3{0};
    Real s4{0};
};

/// Evaluates strictly from left to right. The power is a double, and makes doubles of what is added to it.
template <typename Real>
Real KstatisticOf(const PowerSums<Real>& sums, std::uint32_t degree)
{
    const auto [n, s1, s2, s3, s4] = sums;
    switch (degree) {
    case 1: {
        return s1 / n;
    }
    case 2: {
        return (n * s2 - s1 * s1) / n / (n - 1);
    }
    case 3: {
        const double cube = WholePower(s1, 3);
        return static_cast<Real>(cube + cube - 3 * n * s1 * s2 + n * n * s3) / n / (n - 1) / (n - 2);
    }
    default: {
        const double sum = 12 * n * s1 * s1 * s2 - 6 * WholePower(s1, 4) - 3 * n * (n - 1) * s2 * s2 -
            4 * n * (n + 1) * s1 * s3 + n * n * (n + 1) * s4;
        return static_cast<Real>(sum) / n / (n - 1) / (n - 2) / (n - 3);
    }
    }
}

/// The NaN of a k-statistic is that of the first power sum that it reads.
template <typename Real>
Real NanOfKstatistic(const Cursor& src, std::uint32_t degree)
{
    return NanOfTerms<Real>(src, [degree](Real value) { return degree == 2 ? value * value : value; });
}

template <typename Real>
[[gnu::noinline]] ErrorCode StoreKstatistic(const Cursor& src, const Cursor& dst, std::uint32_t degree)
{
    if (src->Length() == 0) {
        return ERROR_GENERAL;
    }
    if (degree < 1 || degree > 4) {
        return ERROR_BAD_VALUE;
    }
    const Real statistic = KstatisticOf(PowerSums<Real>(src), degree);
    return StoreResult(dst, statistic == statistic ? statistic : NanOfKstatistic<Real>(src, degree));
}

} // namespace

template <ContainerID CID>
std::string MomentBase<CID>::GetName() const
{
    return "Moment";
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode MomentBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (Arithmetic<T>) {
        return StoreMoment<RealOf<T>>(src, dst, power);
    } else {
        return ERROR_GENERAL;
    }
}

template <ContainerID CID>
std::string KstatBase<CID>::GetName() const
{
    return "Kstat";
}

template <ContainerID CID>
bool KstatBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->Length() != 0 && IsRealResultAttr(src, dst);
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode KstatBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (Arithmetic<T> && !std::is_same_v<T, bool>) {
        return StoreKstatistic<RealOf<T>>(src, dst, order);
    } else {
        return ERROR_GENERAL;
    }
}

template class MomentBase<CONTAINER_ARRAY>;
template class RealStatistic<MomentBase<CONTAINER_ARRAY>>;
template class Unary<MomentBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>;
template class Moment<CONTAINER_ARRAY, std::uint32_t>;
template class Moment<CONTAINER_ARRAY, std::uint32_t&>;
template class Moment<CONTAINER_ARRAY, const std::uint32_t&>;
template class KstatBase<CONTAINER_ARRAY>;
template class RealStatistic<KstatBase<CONTAINER_ARRAY>>;
template class Unary<KstatBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>;
template class Kstat<CONTAINER_ARRAY, std::uint32_t>;
template class Kstat<CONTAINER_ARRAY, std::uint32_t&>;
template class Kstat<CONTAINER_ARRAY, const std::uint32_t&>;

} // namespace MERVO::Tessera::Func
