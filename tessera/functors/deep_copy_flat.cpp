#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"

using namespace MERVO::Tessera;

int32_t MERVO_TSR_DeepCopy(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src)
{
    constexpr const char* CALL = "MERVO_TSR_DeepCopy";
    return Guarded(CALL, [&] {
        const DataFrameRef* source = TableBehind(src);
        if (!CheckDataFrame(dst) || source == nullptr) {
            return RefuseHandle(CALL);
        }
        *dst->dataFrame = *source;
        return dst->dataFrame->GetError().code;
    });
}
