#include "tessera/core/flat_call.h"

#include <new>
#include <stdexcept>

namespace MERVO::Tessera {

ErrorCode TellNoMemory(const char* call) noexcept
{
    LogError("[%s] out of memory", call);
    return ERROR_OUT_OF_MEMORY;
}

void PassOnAllButNoMemory()
{
    try {
        throw;
    } catch (const std::bad_alloc&) {    // no memory
    } catch (const std::length_error&) { // more elements than a list or a text can have
    }
}

ErrorCode KeepNoMemory(const DataFrameView& table)
{
    PassOnAllButNoMemory();
    table.SetError({ERROR_OUT_OF_MEMORY, "out of memory"});
    return ERROR_OUT_OF_MEMORY;
}

std::int32_t RefuseHandle(const char* call) noexcept
{
    LogError("[%s] Input is nullptr", call);
    return ERROR_NULL_HANDLE;
}

} // namespace MERVO::Tessera
