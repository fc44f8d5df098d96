#include "tessera/core/flat_call.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/numeric/fill_nan.h"
#include "tessera/numeric/interpolate.h"
#include "tessera/numeric/is_nan.h"
#include "tessera/numeric/replace_nan.h"
#include "tessera/tessera.h"

using namespace MERVO::Tessera;
using Func::FunctorFactory;
using Func::UnaryBase;

namespace {

constexpr uint32_t FILL_TYPE_LENGTH = 5; // without the terminator

int32_t RefuseText(const char* call, const char* reason)
{
    LogError("[%s] %s", call, reason);
    return ERROR_BAD_VALUE;
}

} // namespace

int32_t MERVO_TSR_IsNan(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return ApplyUnary(__func__, dst, src, FunctorFactory<Func::IsNan, UnaryBase>{});
}

int32_t MERVO_TSR_FillNan(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const char* fillType, uint32_t length)
{
    if (length != FILL_TYPE_LENGTH + 1) {
        return RefuseText(__func__, "Length should be 6 (bfill/ ffill)");
    }
    if (fillType == nullptr) {
        return RefuseText(__func__, "fillType is nullptr");
    }
    return ApplyUnary(__func__, dst, src,
        FunctorFactory<Func::FillNan, UnaryBase, std::string_view>{std::string_view(fillType, FILL_TYPE_LENGTH)});
}

int32_t MERVO_TSR_ReplaceNan(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const char* replaceNum, uint32_t length)
{
    if (replaceNum == nullptr || length == 0) {
        return RefuseText(__func__, "replaceNum should not be nullptr");
    }
    return ApplyUnary(__func__, dst, src,
        FunctorFactory<Func::ReplaceNan, UnaryBase, std::string_view>{std::string_view(replaceNum, length)});
}

int32_t MERVO_TSR_Interpolate(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return ApplyUnary(__func__, dst, src, FunctorFactory<Func::Interpolate, UnaryBase>{});
}
