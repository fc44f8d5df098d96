#include "tessera/core/flat_call.h"

namespace MERVO::Tessera {

ErrorCode TellNoMemory(const char* call) noexcept
{
    LogError("[%s] out of memory", call);
    return ERROR_OUT_OF_MEMORY;
}

ErrorCode KeepNoMemory(const DataFrameView& table)
{
    table.SetError({ERROR_OUT_OF_MEMORY, "out of memory"});
    return ERROR_OUT_OF_MEMORY;
}

std::int32_t RefuseHandle(const char* call) noexcept
{
    LogError("[%s] Input is nullptr", call);
    return ERROR_NULL_HANDLE;
}

} // namespace MERVO::Tessera
