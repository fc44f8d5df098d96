#pragma once

#include <cstdint>

/**
 * Powers for the moments, correctly rounded in all but the most exotic cases.
 *
 * The C library's pow is not: about one result in a thousand misses the nearest double, and which one depends on
 * whether the processor has a fused multiply-add. These give the same bits everywhere. Where a result comes near the
 * ends of the range of double, or is none, they leave it to pow, whose rules for zeros, infinities and NaN hold.
 */
namespace MERVO::Tessera::Func {

double WholePower(double base, std::uint32_t exponent);

/// base to the power 1.5.
double PowerOneAndAHalf(double base);

} // namespace MERVO::Tessera::Func
