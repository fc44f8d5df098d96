#pragma once

#include <cstdint>
#include <string>

#include "tessera/core/error.h"
#include "tessera/core/value_types.h"

namespace MERVO::Tessera::Func {

/// Casts `count` adjacent cells; a bool is a byte here. On a failure, which it logs, it stops: cells before the failing
/// one are written, that one and those behind it are not.
using CastKernel = ErrorCode (*)(const void* from, void* to, std::uint32_t count);

/// Makes `count` texts of as many adjacent numbers; afterwards all of them are alive, also if it throws std::bad_alloc.
using TextMaker = void (*)(const void* numbers, std::string* texts, std::uint32_t count);

/// The kernel for a pair of value types; null for a pair that has no conversion.
CastKernel CastKernelFor(MERVO_TESSERA_TYPEID from, MERVO_TESSERA_TYPEID to);

/// The maker for the numbers of a type; null for what is no number, and for bool.
TextMaker TextMakerFor(MERVO_TESSERA_TYPEID from);

} // namespace MERVO::Tessera::Func
