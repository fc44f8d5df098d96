#pragma once

#include "tessera/numeric/term_sums.h"

namespace MERVO::Tessera::Func {

/**
 * The mean of a column as the statistics on deviations take it: each element is divided by their number, and the
 * quotients are added up.
 *
 * It differs in low bits from the sum over the number, and doesn't overflow where that does.
 */
template <typename Real>
Real MeanOfShares(const Cursor& column)
{
    const auto length = static_cast<Real>(column->Length());
    const auto share = [length](Real value) { return value / length; };
    Real mean{0};
    RealRuns<Real> runs(column);
    for (auto run = runs.Next(); !run.empty(); run = runs.Next()) {
        mean = AddTerms(mean, run, share);
    }
    return mean == mean ? mean : NanOfTerms<Real>(column, share);
}

/// Adds term(element - mean) over a column, in order and in double. The difference is one of Reals.
template <typename Real, typename Term>
double SumOverDeviations(const Cursor& column, Real mean, Term term)
{
    double total = 0.0;
    RealRuns<Real> runs(column);
    for (auto run = runs.Next(); !run.empty(); run = runs.Next()) {
        total = AddTerms(total, run, [mean, term](Real value) { return term(static_cast<double>(value - mean)); });
    }
    return total;
}

/// A statistic on deviations in the type of its cell. A NaN is that of the mean, if the mean is one.
template <typename Real>
Real NarrowStatistic(double statistic, Real mean)
{
    if (statistic != statistic) {
        return mean != mean ? mean : std::numeric_limits<Real>::quiet_NaN();
    }
    return static_cast<Real>(statistic);
}

} // namespace MERVO::Tessera::Func
