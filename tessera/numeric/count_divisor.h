#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace MERVO::Tessera::Func {

/**
 * Division by a number of elements, without the processor's slow division where it has fused multiply-adds.
 *
 * The product with the rounded reciprocal is off by two units of 2^-53 at most; its remainder, found by one fused
 * operation, corrects it to within 4 * 2^-106 of the quotient, and that is rounded once. The result is the nearest
 * double to the quotient itself unless the middle of two doubles lies between: a number m of 54 binary digits. But m
 * times the divisor is never the dividend, which has 53; they differ by a unit of m's last digit at least, so that m is
 * 2^-86 or more away from the quotient, where the divisor is below 2^32. The remainder step is that of P. W. Markstein,
 * "Computation of elementary functions on the IBM RISC System/6000 processor", IBM J. Res. Develop. 34 (1990).
 */
class CountDivisor {
public:
    CountDivisor() = default;
    explicit CountDivisor(std::uint32_t elements)
        : count(static_cast<double>(elements)), reciprocal(1.0 / static_cast<double>(elements))
    {
    }

    double Quotient(double value) const { return value / count; }

    /// The magnitude from which no step of FusedQuotient loses digits at the lower end of the doubles.
    static constexpr double FUSED_FROM = 0x1p-900;

    /// The same bits for zero and from FUSED_FROM on, but for the sign of a zero. An infinite value gives NaN.
    [[gnu::always_inline]] double FusedQuotient(double value) const
    {
        const double product = value * reciprocal;
        return __builtin_fma(__builtin_fma(-product, count, value), reciprocal, product);
    }

private:
    double count = 1.0;
    double reciprocal = 1.0;
};

/// Whether each number is zero or at least `smallest` in magnitude; NaN passes.
[[gnu::always_inline]] inline bool AreZeroOrAtLeast(double smallest, const double* values, std::size_t count)
{
    std::int64_t others = 0;
    for (std::size_t i = 0; i < count; ++i) {
        others += ((std::fabs(values[i]) < smallest) & (values[i] != 0.0)) ? 1 : 0;
    }
    return others == 0;
}

} // namespace MERVO::Tessera::Func
