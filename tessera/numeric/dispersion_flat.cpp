#include "tessera/core/flat_call.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/numeric/dispersion.h"
#include "tessera/tessera.h"

using MERVO::Tessera::ApplyUnary;
using MERVO::Tessera::Func::FunctorFactory;
using MERVO::Tessera::Func::Std;
using MERVO::Tessera::Func::UnaryBase;
using MERVO::Tessera::Func::Var;

int32_t MERVO_TSR_Var(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t ddof)
{
    return ApplyUnary(__func__, dst, src, FunctorFactory<Var, UnaryBase, uint32_t>{ddof});
}

int32_t MERVO_TSR_Std(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t ddof)
{
    return ApplyUnary(__func__, dst, src, FunctorFactory<Std, UnaryBase, uint32_t>{ddof});
}
