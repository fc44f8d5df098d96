#include "tessera/core/handles.h"

#include <memory>
#include <new>

#include "tessera/core/flat_call.h"

namespace MERVO::Tessera {

bool CheckDataFrame(const Tag_MERVO_TSR_CONTEXT* handle)
{
    return handle != nullptr && handle->dataFrame != nullptr && handle->dataFrameRef == nullptr;
}

bool CheckDataFrameRef(const Tag_MERVO_TSR_CONTEXT* handle)
{
    return handle != nullptr && handle->dataFrameRef != nullptr && handle->dataFrame == nullptr;
}

DataFrameRef* TableBehind(const Tag_MERVO_TSR_CONTEXT* handle)
{
    if (CheckDataFrame(handle)) {
        return handle->dataFrame;
    }
    return CheckDataFrameRef(handle) ? handle->dataFrameRef : nullptr;
}

} // namespace MERVO::Tessera

using namespace MERVO::Tessera;

MERVO_TSR_CONTEXT* MERVO_TSR_CreateDF(void)
{
    std::unique_ptr<MERVO_TSR_CONTEXT> handle(new (std::nothrow) MERVO_TSR_CONTEXT{nullptr, nullptr});
    if (handle == nullptr) {
        LogError("[MERVO_TSR_CreateDF] Create MERVO_TSR_CONTEXT failed");
        return nullptr;
    }
    // Constructing the table allocates too, and may throw.
    const int32_t code = Guarded(__func__, [&handle] {
        handle->dataFrame = new (std::nothrow) DataFrame;
        return handle->dataFrame == nullptr ? ERROR_OUT_OF_MEMORY : ERROR_NONE;
    });
    if (code != ERROR_NONE) {
        LogError("[MERVO_TSR_CreateDF] Create MERVO_TSR_CONTEXT dataframe failed");
        return nullptr;
    }
    return handle.release();
}

int32_t MERVO_TSR_Release(MERVO_TSR_CONTEXT** handle)
{
    if (handle == nullptr || *handle == nullptr) {
        LogError("[MERVO_TSR_RELEASE] Input is nullptr");
        return ERROR_NULL_HANDLE;
    }
    delete (*handle)->dataFrame;
    delete (*handle)->dataFrameRef;
    delete *handle;
    *handle = nullptr;
    return ERROR_NONE;
}
