#include "tessera/numeric/dispersion.h"

#include <cmath>

#include "tessera/numeric/deviations.h"
#include "tessera/numeric/reduction_result.h"

namespace MERVO::Tessera::Func {
namespace {

template <typename Real>
double SumOfSquares(const Cursor& src, Real mean)
{
    return SumOverDeviations(src, mean, [](double deviation) { return deviation * deviation; });
}

template <typename Real>
[[gnu::noinline]] ErrorCode StoreVariance(const Cursor& src, const Cursor& dst, std::uint32_t ddof)
{
    const Real mean = MeanOfShares<Real>(src);
    const double freedom = static_cast<double>(src->Length()) - static_cast<double>(ddof);
    return StoreResult(dst, NarrowStatistic(SumOfSquares(src, mean) / freedom, mean));
}

template <typename Real>
[[gnu::noinline]] ErrorCode StoreDeviation(const Cursor& src, const Cursor& dst, std::uint32_t ddof)
{
    const std::uint32_t freedom = src->Length() - ddof;
    if (freedom == 0) {
        return StoreResult(dst, std::numeric_limits<Real>::quiet_NaN());
    }
    const Real mean = MeanOfShares<Real>(src);
    const double variance = SumOfSquares(src, mean) / static_cast<double>(freedom);
    return StoreResult(dst, NarrowStatistic(std::sqrt(variance), mean));
}

} // namespace

template <ContainerID CID>
std::string VarBase<CID>::GetName() const
{
    return "Var";
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode VarBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (Arithmetic<T>) {
        return StoreVariance<RealOf<T>>(src, dst, lostDegrees);
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
template <typename T, typename>
ErrorCode StdBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (Arithmetic<T>) {
        return StoreDeviation<RealOf<T>>(src, dst, lostDegrees);
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
