#include <memory>
#include <new>
#include <utility>

#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"

using namespace MERVO::Tessera;

MERVO_TSR_CONTEXT* MERVO_TSR_Slice(
    const MERVO_TSR_CONTEXT* src, const uint32_t* rows, const uint32_t* cols, uint32_t rowsLength, uint32_t colsLength)
{
    constexpr const char* CALL = "MERVO_TSR_Slice";
    if (rows == nullptr || cols == nullptr || rowsLength != 2 || colsLength != 2) {
        LogError("[%s] input shape is invalid", CALL);
        return nullptr;
    }
    std::unique_ptr<MERVO_TSR_CONTEXT> handle(new (std::nothrow) MERVO_TSR_CONTEXT{nullptr, nullptr});
    if (handle == nullptr) {
        LogError("[%s] Create MERVO_TSR_CONTEXT failed", CALL);
        return nullptr;
    }
    const DataFrameRef* table = TableBehind(src);
    if (table == nullptr) {
        LogError("[%s] Input is invalid", CALL);
        return nullptr;
    }
    const std::int32_t code = Guarded(CALL, [&]() -> std::int32_t {
        DataFrameRef slice = table->Slice({rows[0], rows[1]}, {cols[0], cols[1]});
        if (slice.GetError().code != ERROR_NONE) {
            return slice.GetError().code;
        }
        handle->dataFrameRef = new (std::nothrow) DataFrameRef(std::move(slice));
        if (handle->dataFrameRef == nullptr) {
            LogError("[%s] Create MERVO_TSR_CONTEXT dataframeRef failed", CALL);
            return ERROR_OUT_OF_MEMORY;
        }
        return ERROR_NONE;
    });
    if (code != ERROR_NONE) {
        LogError("[%s] slice failed", CALL);
        return nullptr;
    }
    return handle.release();
}
