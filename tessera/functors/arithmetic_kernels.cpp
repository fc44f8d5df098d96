#include "tessera/functors/arithmetic_kernels.h"

#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <new>
#include <string>
#include <type_traits>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/functors/table_combination.h"
#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera::Func {
namespace {

// ---- Integers

/// What an integer is computed in. Unsigned numbers wrap, and 16 bits must not grow into signed 32.
template <typename Integer>
using WrappingOf =
    std::conditional_t<(sizeof(Integer) < sizeof(std::uint32_t)), std::uint32_t, std::make_unsigned_t<Integer>>;

/// An operation whose low bits don't depend on the sign of its operands.
template <typename Operation>
struct Wrapped {
    template <typename Integer>
    Integer operator()(Integer left, Integer right) const
    {
        return static_cast<Integer>(
            Operation{}(static_cast<WrappingOf<Integer>>(left), static_cast<WrappingOf<Integer>>(right)));
    }
};

/// Divides integers by way of a real type that holds them exactly, in vectors, and without the division in software
/// that many an ARM needs. It can't round up to the next whole number: that one is at least 1 / divisor away, which is
/// more than half a unit in the last place of any quotient.
template <typename Integer>
Integer TruncatedQuotient(Integer dividend, Integer divisor)
{
    if constexpr (sizeof(Integer) < sizeof(std::int32_t)) {
        return static_cast<Integer>(
            static_cast<std::int32_t>(static_cast<float>(dividend) / static_cast<float>(divisor)));
    } else if constexpr (sizeof(Integer) == sizeof(std::int32_t)) {
        return static_cast<Integer>(static_cast<double>(dividend) / static_cast<double>(divisor));
    } else {
        return dividend / divisor;
    }
}

/// By 0 it gives 0, by -1 the negative, which wraps. It divides by 1 there and corrects the quotient by masks: with a
/// condition around the division the loop would not become one of vectors.
struct IntegerQuotient {
    template <typename Integer>
    Integer operator()(Integer dividend, Integer divisor) const
    {
        using Word = WrappingOf<Integer>;
        constexpr bool CAN_OVERFLOW = std::is_signed_v<Integer> && sizeof(Integer) >= sizeof(std::int32_t);
        const Word isZero = divisor == 0 ? 1 : 0;
        const Word isMinusOne = CAN_OVERFLOW && divisor == static_cast<Integer>(-1) ? 1 : 0;
        const auto safe = static_cast<Integer>(static_cast<Word>(divisor) + isZero + 2 * isMinusOne);
        const auto quotient = static_cast<Word>(TruncatedQuotient<Integer>(dividend, safe));
        const Word turned = (quotient ^ (Word{0} - isMinusOne)) + isMinusOne;
        return static_cast<Integer>(turned & (isZero - 1));
    }
};

struct IntegerRemainder {
    template <typename Integer>
    Integer operator()(Integer dividend, Integer divisor) const
    {
        using Word = WrappingOf<Integer>;
        const auto quotient = static_cast<Word>(IntegerQuotient{}(dividend, divisor));
        return static_cast<Integer>(static_cast<Word>(dividend) - quotient * static_cast<Word>(divisor));
    }
};

template <typename Integer, typename Operation>
void CombineEach(
    const Integer* __restrict lefts, const Integer* __restrict rights, Integer* __restrict results, std::uint32_t count)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        results[i] = Operation{}(lefts[i], rights[i]);
    }
}

template <typename Integer, typename Operation>
void CombineIntegers(const void* left, const void* right, void* result, std::uint32_t count)
{
    CombineEach<Integer, Operation>(
        static_cast<const Integer*>(left), static_cast<const Integer*>(right), static_cast<Integer*>(result), count);
}

// ---- Float and double

/// The remainder of a float is that of the doubles, narrowed.
struct RealRemainder {
    template <typename T>
    T operator()(T left, T right) const
    {
        return static_cast<T>(std::fmod(static_cast<double>(left), static_cast<double>(right)));
    }
};

template <typename Real>
struct RealBits {
    using Word = std::conditional_t<sizeof(Real) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;
    static constexpr Word MAGNITUDE = std::numeric_limits<Word>::max() >> 1;
    static constexpr Word INFINITE = std::bit_cast<Word>(std::numeric_limits<Real>::infinity());
    static constexpr Word PLAIN_NAN = std::bit_cast<Word>(std::numeric_limits<Real>::quiet_NaN());
    static constexpr int TOP = 8 * sizeof(Word) - 1;

    /// A word whose top bit tells NaN. Integer vectors can do this everywhere, which is not so of comparing doubles.
    static Word Probe(Word bits) { return (bits & MAGNITUDE) + (MAGNITUDE - INFINITE); }
    /// All ones for NaN, else 0.
    static Word NanMask(Word bits) { return Word{0} - (Probe(bits) >> TOP); }
};

/// Replaces the NaNs among results. Machines disagree on the sign of one that comes about, and of two operands
/// compilers may swap which one goes through.
template <typename Real>
[[gnu::noinline]] void SettleNans(
    const Real* __restrict lefts, const Real* __restrict rights, Real* __restrict results, std::uint32_t count)
{
    using Bits = RealBits<Real>;
    using Word = typename Bits::Word;
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto left = std::bit_cast<Word>(lefts[i]);
        const auto right = std::bit_cast<Word>(rights[i]);
        const auto result = std::bit_cast<Word>(results[i]);
        const Word isLeftNan = Bits::NanMask(left);
        const Word isNan = Bits::NanMask(result);
        const Word passed = (left & isLeftNan) | (right & Bits::NanMask(right) & ~isLeftNan);
        results[i] = std::bit_cast<Real>((result & ~isNan) | ((passed | Bits::PLAIN_NAN) & isNan));
    }
}

/// Whether a NaN is among the results.
template <typename Real, typename Operation>
[[gnu::always_inline]] inline bool CombineAndProbe(
    const Real* __restrict lefts, const Real* __restrict rights, Real* __restrict results, std::uint32_t count)
{
    using Bits = RealBits<Real>;
    using Word = typename Bits::Word;
    Word probes = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const Real value = Operation{}(lefts[i], rights[i]);
        results[i] = value;
        probes |= Bits::Probe(std::bit_cast<Word>(value));
    }
    return (probes >> Bits::TOP) != 0;
}

template <typename Real, typename Operation>
TESSERA_WIDE_VECTORS bool CombineAndProbeWide(const Real* lefts, const Real* rights, Real* results, std::uint32_t count)
{
    return CombineAndProbe<Real, Operation>(lefts, rights, results, count);
}

template <typename Real, typename Operation>
void CombineReals(const void* left, const void* right, void* result, std::uint32_t count)
{
    const auto* lefts = static_cast<const Real*>(left);
    const auto* rights = static_cast<const Real*>(right);
    auto* results = static_cast<Real*>(result);
    const bool hasNan = HasWideVectors() ? CombineAndProbeWide<Real, Operation>(lefts, rights, results, count)
                                         : CombineAndProbe<Real, Operation>(lefts, rights, results, count);
    if (hasNan) {
        SettleNans(lefts, rights, results, count);
    }
}

// ---- Texts and nested tables

void JoinTexts(const void* left, const void* right, void* result, std::uint32_t count)
{
    const auto* lefts = static_cast<const std::string* const*>(left);
    const auto* rights = static_cast<const std::string* const*>(right);
    auto* results = static_cast<std::string* const*>(result);
    for (std::uint32_t i = 0; i < count; ++i) {
        *results[i] = *lefts[i] + *rights[i];
    }
}

template <template <ContainerID> class Functor>
void CombineNested(const void* left, const void* right, void* result, std::uint32_t count)
{
    const auto* lefts = static_cast<const DataFrame* const*>(left);
    const auto* rights = static_cast<const DataFrame* const*>(right);
    auto* results = static_cast<DataFrame* const*>(result);
    const BinaryFactory factory = FunctorFactory<Functor, BinaryBase>{};
    for (std::uint32_t i = 0; i < count; ++i) {
        *results[i] = CombineTables(factory, *lefts[i], *rights[i]);
        if (results[i]->GetError().code == ERROR_OUT_OF_MEMORY && lefts[i]->GetError().code == ERROR_NONE &&
            rights[i]->GetError().code == ERROR_NONE) {
            throw std::bad_alloc(); // or the column would seem to be whole
        }
    }
}

// ---- All value types. Signed and unsigned share what wraps, and a stamp is an integer.

template <template <ContainerID> class Functor, typename Operation>
consteval KernelsByType WrappingKernels()
{
    return ForEachValueType([](auto number) -> CellKernel {
        using T = ValueTypes::At<number()>;
        if constexpr (std::is_same_v<T, bool>) {
            return nullptr;
        } else if constexpr (std::is_integral_v<T>) {
            return &CombineIntegers<std::make_unsigned_t<T>, Wrapped<Operation>>;
        } else if constexpr (std::is_floating_point_v<T>) {
            return &CombineReals<T, Operation>;
        } else if constexpr (std::is_same_v<T, DataFrame>) {
            return &CombineNested<Functor>;
        } else if constexpr (std::is_same_v<T, DateTime> && !std::is_same_v<Operation, std::multiplies<>>) {
            return &CombineIntegers<std::uint32_t, Wrapped<Operation>>;
        } else if constexpr (std::is_same_v<T, std::string> && std::is_same_v<Operation, std::plus<>>) {
            return &JoinTexts;
        } else {
            return nullptr;
        }
    });
}

template <template <ContainerID> class Functor, typename IntegerOperation, typename RealOperation>
consteval KernelsByType DividingKernels()
{
    return ForEachValueType([](auto number) -> CellKernel {
        using T = ValueTypes::At<number()>;
        if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool>) {
            return &CombineIntegers<T, IntegerOperation>;
        } else if constexpr (std::is_floating_point_v<T>) {
            return &CombineReals<T, RealOperation>;
        } else if constexpr (std::is_same_v<T, DataFrame>) {
            return &CombineNested<Functor>;
        } else {
            return nullptr;
        }
    });
}

constexpr std::array KERNELS = {WrappingKernels<Add, std::plus<>>(), WrappingKernels<Sub, std::minus<>>(),
    WrappingKernels<Mul, std::multiplies<>>(), DividingKernels<Div, IntegerQuotient, std::divides<>>(),
    DividingKernels<Mod, IntegerRemainder, RealRemainder>()};

} // namespace

const KernelsByType& KernelsOf(Arith::ArithOpType operation) { return KERNELS[operation]; }

} // namespace MERVO::Tessera::Func
