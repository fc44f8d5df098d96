#pragma once

#include <cstdint>

#include "tessera/core/cursor.h"
#include "tessera/core/error.h"

/// Finding what is missing: a float or double element that is NaN, and nothing else.
namespace MERVO::Tessera::Func {

/// Mark of each of `count` adjacent elements whether it is NaN.
void MarkNans(const float* elements, bool* marks, std::uint32_t count);
void MarkNans(const double* elements, bool* marks, std::uint32_t count);

/// Count 1 up for each of `count` adjacent elements that is NaN.
void CountNans(const float* elements, std::uint8_t* counts, std::uint32_t count);
void CountNans(const double* elements, std::uint8_t* counts, std::uint32_t count);

/**
 * Marks of each element of src whether it is NaN, until the shorter of the two ends: true or false where dst holds
 * bools, 1 or 0 where it holds int32. Columns of other types than float and double have no NaN.
 * @return 0, or 1: dst holds another type.
 */
ErrorCode MarkNans(const Cursor& src, const Cursor& dst);

} // namespace MERVO::Tessera::Func
