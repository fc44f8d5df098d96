#include "tessera/core/flat_call.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/functors/type_cast.h"
#include "tessera/tessera.h"

namespace MERVO::Tessera {
namespace {

int32_t CastTo(MERVO_TESSERA_TYPEID type, const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return ApplyUnary(
        call, dst, src, Func::FunctorFactory<Func::TypeCast, Func::UnaryBase, MERVO_TESSERA_TYPEID>{type});
}

} // namespace
} // namespace MERVO::Tessera

using namespace MERVO::Tessera;

int32_t MERVO_TSR_TypeCast(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, MERVO_TESSERA_TYPEID type)
{
    return CastTo(type, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastBool(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_BOOL, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastInt8(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_INT8, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastUint8(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_UINT8, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastInt16(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_INT16, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastUint16(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_UINT16, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastInt32(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_INT32, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastUint32(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_UINT32, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastInt64(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_INT64, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastUint64(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_UINT64, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastFloat(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_FLOAT, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastDouble(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_DOUBLE, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastString(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_STRING, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastDateTime(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_DATETIME, __func__, dst, src);
}

int32_t MERVO_TSR_TypeCastDataFrame(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    return CastTo(TESSERA_DATAFRAME, __func__, dst, src);
}
