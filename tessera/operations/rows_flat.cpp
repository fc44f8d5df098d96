#include <vector>

#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"
#include "tessera/operations/bool_filter.h"

using namespace MERVO::Tessera;

int32_t MERVO_TSR_DropRowByBool(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const MERVO_TSR_CONTEXT* filter)
{
    constexpr const char* CALL = "MERVO_TSR_DropRowByBool";
    return Guarded(CALL, [&] {
        if (!CheckDataFrame(dst) || !CheckDataFrame(src) || TableBehind(filter) == nullptr) {
            return RefuseHandle(CALL);
        }
        DataFrame copy;
        *dst->dataFrame = src->dataFrame->DropRow(FilterBehind(filter, copy));
        return dst->dataFrame->GetError().code;
    });
}

int32_t MERVO_TSR_DropRowByIndex(
    MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, const uint32_t* indices, uint32_t count)
{
    constexpr const char* CALL = "MERVO_TSR_DropRowByIndex";
    return Guarded(CALL, [&] {
        if (!CheckDataFrame(dst) || !CheckDataFrame(src) || indices == nullptr || count == 0) {
            return RefuseHandle(CALL);
        }
        *dst->dataFrame = src->dataFrame->DropRow(std::vector<std::uint32_t>(indices, indices + count));
        return dst->dataFrame->GetError().code;
    });
}
