#include "tessera/core/flat_call.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/numeric/extrema.h"
#include "tessera/numeric/mean.h"
#include "tessera/numeric/sum.h"
#include "tessera/tessera.h"

using namespace MERVO::Tessera;

namespace {

/// A reduction without arguments; `call` is the caller's __func__.
template <template <ContainerID> class Reduction>
int32_t Reduce(const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return ApplyUnary(call, dst, src, Func::FunctorFactory<Reduction, Func::UnaryBase>{});
}

} // namespace

int32_t MERVO_TSR_Sum(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<Func::Sum>(__func__, dst, src);
}

int32_t MERVO_TSR_Mean(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<Func::Mean>(__func__, dst, src);
}

int32_t MERVO_TSR_Max(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<Func::Max>(__func__, dst, src);
}

int32_t MERVO_TSR_Min(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<Func::Min>(__func__, dst, src);
}

int32_t MERVO_TSR_Ptp(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<Func::Ptp>(__func__, dst, src);
}

int32_t MERVO_TSR_IdxMax(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return Reduce<Func::IdxMax>(__func__, dst, src);
}
