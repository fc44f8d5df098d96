#pragma once

#include <limits>

namespace MERVO::Tessera::Func {

/// A result of arithmetic, with one NaN in place of those that differ in their sign from machine to machine.
template <typename Real>
Real WithPlainNan(Real result)
{
    return result == result ? result : std::numeric_limits<Real>::quiet_NaN();
}

} // namespace MERVO::Tessera::Func
