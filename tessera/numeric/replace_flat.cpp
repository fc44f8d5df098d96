#include <string>

#include "tessera/core/flat_call.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/numeric/replace.h"
#include "tessera/tessera.h"

namespace {

using namespace MERVO::Tessera;

/// All the calls; `call` is the name that messages give.
int32_t ReplaceCells(const char* call, MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src,
    const Func::ReplaceArgument& oldValue, const Func::ReplaceArgument& newValue)
{
    using Argument = const Func::ReplaceArgument&;
    return ApplyUnary(
        call, dst, src, Func::FunctorFactory<Func::Replace, Func::UnaryBase, Argument, Argument>{oldValue, newValue});
}

template <typename T>
int32_t ReplaceNumber(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, T oldValue, T newValue)
{
    return ReplaceCells("MERVO_TSR_Replace", dst, src, {&oldValue, TYPE_ID_OF<T>}, {&newValue, TYPE_ID_OF<T>});
}

} // namespace

int32_t MERVO_TSR_ReplaceBool(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool oldValue, bool newValue)
{
    return ReplaceNumber(dst, src, oldValue, newValue);
}

int32_t MERVO_TSR_ReplaceInt8(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, int8_t oldValue, int8_t newValue)
{
    return ReplaceNumber(dst, src, oldValue, newValue);
}

int32_t MERVO_TSR_ReplaceUint8(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint8_t oldValue, uint8_t newValue)
{
    return ReplaceNumber(dst, src, oldValue, newValue);
}

int32_t MERVO_TSR_ReplaceInt16(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, int16_t oldValue, int16_t newValue)
{
    return ReplaceNumber(dst, src, oldValue, newValue);
}

int32_t MERVO_TSR_ReplaceUint16(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint16_t oldValue, uint16_t newValue)
{
    return ReplaceNumber(dst, src, oldValue, newValue);
}

int32_t MERVO_TSR_ReplaceInt32(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, int32_t oldValue, int32_t newValue)
{
    return ReplaceNumber(dst, src, oldValue, newValue);
}

int32_t MERVO_TSR_ReplaceUint32(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t oldValue, uint32_t newValue)
{
    return ReplaceNumber(dst, src, oldValue, newValue);
}

int32_t MERVO_TSR_ReplaceInt64(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, int64_t oldValue, int64_t newValue)
{
    return ReplaceNumber(dst, src, oldValue, newValue);
}

int32_t MERVO_TSR_ReplaceUint64(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint64_t oldValue, uint64_t newValue)
{
    return ReplaceNumber(dst, src, oldValue, newValue);
}

int32_t MERVO_TSR_ReplaceFloat(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, float oldValue, float newValue)
{
    return ReplaceNumber(dst, src, oldValue, newValue);
}

int32_t MERVO_TSR_ReplaceDouble(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, double oldValue, double newValue)
{
    return ReplaceNumber(dst, src, oldValue, newValue);
}

int32_t MERVO_TSR_ReplaceString(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const char* oldValue, const char* newValue)
{
    if (oldValue == nullptr || newValue == nullptr) {
        return RefuseHandle(__func__);
    }
    return Guarded(__func__, [&, call = __func__] {
        const std::string oldText = oldValue;
        const std::string newText = newValue;
        return ReplaceCells(call, dst, src, {&oldText, TESSERA_STRING}, {&newText, TESSERA_STRING});
    });
}
