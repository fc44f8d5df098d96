#pragma once

#include "tessera/core/error.h"
#include "tessera/numeric/rolling.h"

namespace MERVO::Tessera::Func {

/// A run of RollingSum or RollingMean over one column, in either container.
struct RollingRun {
    RollingParam param;
    bool isMean;
    const char* refusal;           ///< what goes to the log when there is no memory
    std::uint32_t blockRows = 512; ///< results made at a time, or a multiple for wide windows: all in the first cache
    std::uint32_t slideFrom = 64;  ///< narrowest window, at least 2, for which a running total may be worth a look
};

/// Runs over a column of numbers or bools whose sums are Reals. Returns 1 if dst holds no Reals, 21 without memory.
ErrorCode RollColumn(const Cursor& src, const Cursor& dst, const RollingRun& run, std::type_identity<float>);
ErrorCode RollColumn(const Cursor& src, const Cursor& dst, const RollingRun& run, std::type_identity<double>);

} // namespace MERVO::Tessera::Func
