#include "tessera/core/flat_call.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/numeric/extrema.h"
#include "tessera/numeric/mean.h"
#include "tessera/numeric/sum.h"
#include "tessera/tessera.h"

namespace {

/// A reduction without arguments; `call` is the caller's __func__.
template <template <MERVO::Tessera::ContainerID> class Reduction>
int32_t Reduce(const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    using namespace MERVO::Tessera;
    return ApplyUnary(call, dst, src, Func::FunctorFactory<Reduction, Func::UnaryBase>{});
}

} // namespace

int32_t MERVO_TSR_Sum(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<MERVO::Tessera::Func::Sum>(__func__, dst, src);
}

int32_t MERVO_TSR_Mean(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<MERVO::Tessera::Func::Mean>(__func__, dst, src);
}

int32_t MERVO_TSR_Max(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<MERVO::Tessera::Func::Max>(__func__, dst, src);
}

int32_t MERVO_TSR_Min(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<MERVO::Tessera::Func::Min>(__func__, dst, src);
}

int32_t MERVO_TSR_Ptp(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<MERVO::Tessera::Func::Ptp>(__func__, dst, src);
}

int32_t MERVO_TSR_IdxMax(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<MERVO::Tessera::Func::IdxMax>(__func__, dst, src);
}
