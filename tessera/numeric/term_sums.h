#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

#include "tessera/numeric/plain_nan.h"
#include "tessera/numeric/real_runs.h"

/**
 * Sums of what is made of each element, in order.
 *
 * The terms of a short batch are computed together, at full width, before they are added one by one: that hides behind
 * the additions, each of which waits for the one before.
 */
namespace MERVO::Tessera::Func {

inline constexpr std::size_t TERMS_AT_ONCE = 16;

/// Adds term(value) to a total for each value, from the first to the last.
template <typename Total, typename Real, typename Term>
Total AddTerms(Total total, std::span<const Real> values, Term term)
{
    std::size_t done = 0;
    for (; values.size() - done >= TERMS_AT_ONCE; done += TERMS_AT_ONCE) {
        Total terms[TERMS_AT_ONCE];
        for (std::size_t i = 0; i < TERMS_AT_ONCE; ++i) {
            terms[i] = term(values[done + i]);
        }
        for (const Total present : terms) {
            total += present;
        }
    }
    for (; done < values.size(); ++done) {
        total += term(values[done]);
    }
    return total;
}

/// Two sums that grow side by side.
struct SumPair {
    double first = 0.0;
    double second = 0.0;
};

/// Adds both of term(value), which is a SumPair, to the totals for each value, from the first to the last.
template <typename Term>
[[gnu::always_inline]] inline void AddTermPairs(SumPair& totals, std::span<const double> values, Term term)
{
    SumPair sums = totals;
    std::size_t done = 0;
    for (; values.size() - done >= TERMS_AT_ONCE; done += TERMS_AT_ONCE) {
        double firsts[TERMS_AT_ONCE];
        double seconds[TERMS_AT_ONCE];
        for (std::size_t i = 0; i < TERMS_AT_ONCE; ++i) {
            const SumPair terms = term(values[done + i]);
            firsts[i] = terms.first;
            seconds[i] = terms.second;
        }
        for (std::size_t i = 0; i < TERMS_AT_ONCE; ++i) {
            sums.first += firsts[i];
            sums.second += seconds[i];
        }
    }
    for (; done < values.size(); ++done) {
        const SumPair terms = term(values[done]);
        sums.first += terms.first;
        sums.second += terms.second;
    }
    totals = sums;
}

template <typename Real>
std::uint32_t CountNan(std::span<const Real> values)
{
    using Lane = std::conditional_t<sizeof(Real) == sizeof(std::int64_t), std::int64_t, std::int32_t>;
    Lane count = 0;
    for (const Real value : values) {
        count += value != value ? 1 : 0;
    }
    return static_cast<std::uint32_t>(count);
}

/// The NaN that a column's sum of terms ends in; see AddTerm.
template <typename Real, typename Term>
Real NanOfTerms(const Cursor& column, Term term)
{
    Real total{0};
    RealRuns<Real> runs(column);
    for (auto run = runs.Next(); !run.empty() && total == total; run = runs.Next()) {
        for (const Real value : run) {
            AddTerm(total, term(value));
        }
    }
    return total == total ? std::numeric_limits<Real>::quiet_NaN() : total;
}

} // namespace MERVO::Tessera::Func
