#pragma once

#include <limits>

namespace MERVO::Tessera::Func {

/// A result of arithmetic, with one NaN in place of those that differ in their sign from machine to machine.
template <typename Real>
Real WithPlainNan(Real result)
{
    return result == result ? result : std::numeric_limits<Real>::quiet_NaN();
}

/**
 * Adds a term to a total. One that is NaN stays as it is: the first NaN term, made quiet, or the one that infinities of
 * both signs make.
 *
 * Machines disagree on the sign of a NaN that an addition makes, and on which of two NaNs an addition keeps.
 */
template <typename Real>
void AddTerm(Real& total, Real term)
{
    const Real sum = total + term;
    if (sum == sum) [[likely]] {
        total = sum;
    } else if (total == total) {
        total = term != term ? term + Real{0} : std::numeric_limits<Real>::quiet_NaN();
    }
}

} // namespace MERVO::Tessera::Func
