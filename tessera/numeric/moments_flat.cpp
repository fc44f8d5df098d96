#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/numeric/moments.h"
#include "tessera/numeric/skew_kurt.h"
#include "tessera/tessera.h"

using namespace MERVO::Tessera;
using Func::FunctorFactory;
using Func::UnaryBase;

int32_t MERVO_TSR_Moment(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t degree)
{
    return Guarded(__func__, [&]() -> int32_t {
        if (TableBehind(dst) == nullptr || TableBehind(src) == nullptr) {
            LogError("[MERVO_TSR_Moment] Invalid input");
            return ERROR_NULL_HANDLE;
        }
        return ApplyUnaryTo("MERVO_TSR_Moment", dst, src, FunctorFactory<Func::Moment, UnaryBase, uint32_t>{degree});
    });
}

int32_t MERVO_TSR_Kstat(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t degree)
{
    return ApplyUnary(__func__, dst, src, FunctorFactory<Func::Kstat, UnaryBase, uint32_t>{degree});
}

int32_t MERVO_TSR_Skew(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool skipNan, bool bias)
{
    return ApplyUnary(__func__, dst, src, FunctorFactory<Func::Skew, UnaryBase, bool, bool>{skipNan, bias});
}

int32_t MERVO_TSR_Kurt(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool skipNan, bool bias)
{
    return ApplyUnary(__func__, dst, src, FunctorFactory<Func::Kurt, UnaryBase, bool, bool>{skipNan, bias});
}
