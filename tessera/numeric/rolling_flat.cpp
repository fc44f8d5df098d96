#include "tessera/core/flat_call.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/numeric/rolling.h"
#include "tessera/tessera.h"

using namespace MERVO::Tessera;
using Func::FunctorFactory;
using Func::UnaryBase;

int32_t MERVO_TSR_RollingSum(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t window, bool center, uint32_t minPeriods)
{
    return ApplyUnary(__func__, dst, src,
        FunctorFactory<Func::RollingSum, UnaryBase, uint32_t, bool, uint32_t>{window, center, minPeriods});
}

int32_t MERVO_TSR_RollingMean(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t window, bool center, uint32_t minPeriods)
{
    return ApplyUnary(__func__, dst, src,
        FunctorFactory<Func::RollingMean, UnaryBase, uint32_t, bool, uint32_t>{window, center, minPeriods});
}
