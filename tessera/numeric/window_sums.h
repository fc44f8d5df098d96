#pragma once

#include <cstddef>
#include <cstdint>

namespace MERVO::Tessera::Func {

/// Elements that AddWindows may read behind the last window, and sums that it may write behind the last one.
inline constexpr std::size_t WINDOW_SLACK = 64;

/**
 * Adds up each of `count` neighbouring windows: sums[i] is what 0 + values[i + window - 1] + ... + values[i] gives,
 * added from left to right, the newest first.
 *
 * `window` is at least 1. Windows are added many at a time, each in a register of its own: one load of neighbouring
 * elements serves them all, since what is one window's newest is the next one's second.
 * @param mayGoWide lets a processor use wider vectors than the build is for.
 */
void AddWindows(const float* values, std::size_t count, std::size_t window, float* sums, bool mayGoWide = true);
void AddWindows(const double* values, std::size_t count, std::size_t window, double* sums, bool mayGoWide = true);

/// Divides each sum, none of which is -0, by `divisor`, which is not 0, and gives every NaN the one sign and payload of
/// plain_nan.h. The results may take the sums' own place.
void FinishSums(const float* sums, std::size_t count, std::uint32_t divisor, float* results);
void FinishSums(const double* sums, std::size_t count, std::uint32_t divisor, double* results);

/**
 * Tells whether any `window` of these values adds up without rounding, in whatever order: all are multiples of a power
 * of two, and no sum of their magnitudes needs more bits above it than the type has. Whole numbers often are. False
 * where a value is infinite or NaN. `window` is at least 2.
 */
bool HaveExactSums(const float* values, std::size_t count, std::size_t window);
bool HaveExactSums(const double* values, std::size_t count, std::size_t window);

/// What AddWindows does, for values with exact sums: by a running total, at a cost that doesn't grow with the window.
void SlideWindows(const float* values, std::size_t count, std::size_t window, float* sums);
void SlideWindows(const double* values, std::size_t count, std::size_t window, double* sums);

} // namespace MERVO::Tessera::Func
