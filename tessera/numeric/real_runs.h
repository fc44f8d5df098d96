#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <span>

#include "tessera/functors/cell_runs.h"

namespace MERVO::Tessera::Func {

/**
 * A walk over a column of numbers or bools in runs of adjacent floats or doubles, so that a kernel is compiled once for
 * all value types and containers.
 *
 * An array of Real is read where it lies. All else is converted in passing, through a buffer in the object; a float
 * walk serves float columns only.
 */
template <typename Real>
class RealRuns {
public:
    explicit RealRuns(const Cursor& column);

    /// Whether the elements are read where they lie, one run after the other.
    bool IsInPlace() const { return isArrayOfReal; }

    /// The next elements, `most` at most; none at the end. They stay until the next call.
    std::span<const Real> Next(std::uint32_t most = std::numeric_limits<std::uint32_t>::max());

private:
    static constexpr std::uint32_t BUFFERED = 512;
    using Converter = void (*)(const void* cells, Real* reals, std::uint32_t count);

    CellRuns cells;
    std::uint32_t left;
    bool isArrayOfReal;
    Converter convert;
    std::array<Real, BUFFERED> buffer;
};

extern template class RealRuns<float>;
extern template class RealRuns<double>;

} // namespace MERVO::Tessera::Func
