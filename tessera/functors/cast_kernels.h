#pragma once

#include <cstdint>

#include "tessera/core/error.h"
#include "tessera/core/value_types.h"

namespace MERVO::Tessera::Func {

/// Casts `count` adjacent cells; a bool is a byte here. On a failure, which it logs, it stops: cells before the failing
/// one are written, that one and those behind it are not.
using CastKernel = ErrorCode (*)(const void* from, void* to, std::uint32_t count);

/// The kernel for a pair of value types; null for a pair that has no conversion.
CastKernel CastKernelFor(MERVO_TESSERA_TYPEID from, MERVO_TESSERA_TYPEID to);

} // namespace MERVO::Tessera::Func
