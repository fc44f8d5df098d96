#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"

using namespace MERVO::Tessera;

int32_t MERVO_TSR_Transpose(MERVO_TSR_CONTEXT* dst, MERVO_TSR_CONTEXT* src)
{
    constexpr const char* CALL = "MERVO_TSR_Transpose";
    return Guarded(CALL, [&] {
        const DataFrameRef* source = TableBehind(src);
        if (!CheckDataFrame(dst) || source == nullptr) {
            return RefuseHandle(CALL);
        }
        *dst->dataFrame = source->Transpose();
        return dst->dataFrame->GetError().code;
    });
}
