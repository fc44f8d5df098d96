#include "tessera/core/flat_call.h"

namespace MERVO::Tessera {

std::int32_t RefuseHandle(const char* call) noexcept
{
    LogError("[%s] Input is nullptr", call);
    return ERROR_NULL_HANDLE;
}

} // namespace MERVO::Tessera
