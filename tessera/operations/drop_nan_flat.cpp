#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"

using namespace MERVO::Tessera;

int32_t MERVO_TSR_DropNanRow(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool any)
{
    constexpr const char* CALL = "MERVO_TSR_DropNanRow";
    return Guarded(CALL, [&] {
        if (!CheckDataFrame(dst) || !CheckDataFrame(src)) {
            return RefuseHandle(CALL);
        }
        *dst->dataFrame = src->dataFrame->DropNanRow(any);
        return dst->dataFrame->GetError().code;
    });
}

int32_t MERVO_TSR_DropNanCol(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, bool any)
{
    constexpr const char* CALL = "MERVO_TSR_DropNanCol";
    return Guarded(CALL, [&] {
        if (!CheckDataFrame(dst) || !CheckDataFrame(src)) {
            return RefuseHandle(CALL);
        }
        *dst->dataFrame = src->dataFrame->DropNanCol(any);
        return dst->dataFrame->GetError().code;
    });
}
