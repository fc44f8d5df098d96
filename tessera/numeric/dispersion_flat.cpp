#include "tessera/core/flat_call.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/numeric/dispersion.h"
#include "tessera/tessera.h"

using namespace MERVO::Tessera;
using Func::FunctorFactory;
using Func::UnaryBase;

int32_t MERVO_TSR_Var(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t ddof)
{
    return ApplyUnary(__func__, dst, src, FunctorFactory<Func::Var, UnaryBase, uint32_t>{ddof});
}

int32_t MERVO_TSR_Std(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t ddof)
{
    return ApplyUnary(__func__, dst, src, FunctorFactory<Func::Std, UnaryBase, uint32_t>{ddof});
}
