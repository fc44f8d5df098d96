#include "tessera/numeric/round.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstring>

#include "tessera/core/double_bits.h"
#include "tessera/core/numeric_cast.h"
#include "tessera/functors/cell_blocks.h"
#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera::Func {
namespace {

constexpr std::uint32_t MOST_DECIMALS = 10;
constexpr double END_OF_INT64 = 9223372036854775808.0;
constexpr double ONLY_WHOLES = 4503599627370496.0; // from here on doubles have no fraction

struct Scale {
    double factor;  ///< 10^decimals
    double largest; ///< the magnitude up to which elements are rounded
};

/// Whether the quotient of the two tells that a scaled element is beyond 64 bits. It is the rounded quotient that
/// decides, so the bound is found by asking it.
constexpr bool IsTooLarge(double magnitude, double factor) { return factor > END_OF_INT64 / magnitude; }

constexpr double Neighbour(double positive, int step)
{
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(positive) + static_cast<std::uint64_t>(step));
}

constexpr Scale ScaleFor(double factor)
{
    double largest = END_OF_INT64 / factor;
    while (IsTooLarge(largest, factor)) {
        largest = Neighbour(largest, -1);
    }
    while (!IsTooLarge(Neighbour(largest, 1), factor)) {
        largest = Neighbour(largest, 1);
    }
    return {factor, largest};
}

constexpr auto SCALES = [] {
    std::array<Scale, MOST_DECIMALS + 1> scales{};
    double factor = 1.0;
    for (Scale& scale : scales) {
        scale = ScaleFor(factor);
        factor *= 10.0;
    }
    return scales;
}();

/// Chooses by a mask: of a plain condition the compiler makes a jump around the arithmetic, and no vectors.
inline double Choose(bool condition, double yes, double no)
{
    const std::uint64_t mask = std::uint64_t{0} - (condition ? 1 : 0);
    return std::bit_cast<double>(
        (std::bit_cast<std::uint64_t>(yes) & mask) | (std::bit_cast<std::uint64_t>(no) & ~mask));
}

/// The largest whole number up to a magnitude, by additions alone: they are vectors on every machine.
inline double Floor(double magnitude)
{
    const double nearest = (magnitude + ONLY_WHOLES) - ONLY_WHOLES;
    return Choose(magnitude < ONLY_WHOLES, nearest - Choose(nearest > magnitude, 1.0, 0.0), magnitude);
}

/// Cells in, rounded cells out; returns how many were copied as they are for being too large.
using RoundKernel = std::uint32_t (*)(const void* cells, void* results, std::uint32_t count, const Scale& scale);

template <typename T>
[[gnu::always_inline]] inline std::uint32_t RoundEach(const T* cells, T* results, std::uint32_t count, Scale scale)
{
    std::uint64_t copied = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto x = static_cast<double>(cells[i]);
        const double magnitude = std::abs(x);
        const bool isTooLarge = magnitude > scale.largest;
        copied += isTooLarge ? 1 : 0;
        // NaN becomes 0 here, and what is too large too, so that nothing below leaves the range.
        const double scaled = Choose(magnitude <= scale.largest, magnitude, 0.0) * scale.factor;
        const double rounded = std::copysign(Floor(scaled + 0.5) / scale.factor, x) + 0.0; // -0.0 + 0.0 is 0.0
        if constexpr (std::is_integral_v<T>) {
            results[i] = isTooLarge ? cells[i] : ConvertNumber<T>(rounded); // as doubles cells would lose bits
        } else {
            results[i] = static_cast<T>(Choose(isTooLarge, x, rounded));
        }
    }
    return static_cast<std::uint32_t>(copied);
}

template <typename T>
std::uint32_t RoundNarrow(const void* cells, void* results, std::uint32_t count, const Scale& scale)
{
    return RoundEach(static_cast<const T*>(cells), static_cast<T*>(results), count, scale);
}

template <typename T>
TESSERA_WIDE_VECTORS std::uint32_t RoundWide(const void* cells, void* results, std::uint32_t count, const Scale& scale)
{
    return RoundEach(static_cast<const T*>(cells), static_cast<T*>(results), count, scale);
}

/// Whole numbers of up to 32 bits come out as they went in: those that are not too large have an exact product, since
/// 10^decimals is a power of two times at most 5^10, and none of them gets beyond 2^53 by that.
template <typename T>
std::uint32_t KeepWholes(const void* cells, void* results, std::uint32_t count, const Scale& scale)
{
    std::memmove(results, cells, count * sizeof(T));
    std::uint32_t copied = 0;
    if (scale.largest < static_cast<double>(std::numeric_limits<T>::max())) {
        const auto* wholes = static_cast<const T*>(cells);
        for (std::uint32_t i = 0; i < count; ++i) {
            copied += std::abs(static_cast<double>(wholes[i])) > scale.largest ? 1 : 0;
        }
    }
    return copied;
}

struct RoundKernels {
    RoundKernel narrow = nullptr;
    RoundKernel wide = nullptr;
};

constexpr auto KERNELS = ForEachValueType([](auto number) -> RoundKernels {
    using T = ValueTypes::At<number()>;
    if constexpr (std::is_floating_point_v<T>) {
        return {&RoundNarrow<T>, &RoundWide<T>};
    } else if constexpr (std::is_same_v<T, bool> || !Arithmetic<T>) {
        return {};
    } else if constexpr (sizeof(T) > sizeof(std::int32_t)) {
        return {&RoundNarrow<T>, &RoundNarrow<T>};
    } else {
        return {&KeepWholes<T>, &KeepWholes<T>};
    }
});

ErrorCode RoundCells(const Cursor& src, const Cursor& dst, std::uint32_t decimals)
{
    const MERVO_TESSERA_TYPEID type = src->GetAttr().typeId;
    const RoundKernels& kernels = KERNELS[static_cast<std::size_t>(type)];
    const RoundKernel round = HasWideVectors() ? kernels.wide : kernels.narrow;
    if (round == nullptr || dst->GetAttr().typeId != type) {
        return ERROR_GENERAL;
    }
    if (decimals > MOST_DECIMALS) {
        LogError("Exceed the limits of round decimal: %d.", static_cast<int>(MOST_DECIMALS));
        return ERROR_OUT_OF_RANGE;
    }
    const Scale& scale = SCALES[decimals];
    ForEachBlock(src, dst, false, [&](const void* cells, void* results, std::uint32_t count) {
        for (std::uint32_t copied = round(cells, results, count, scale); copied != 0; --copied) {
            LogUnderName("QVR-ZLTArray", "Round Waraning: Some elements are not rounded.");
        }
    });
    return ERROR_NONE;
}

} // namespace

template <ContainerID CID>
std::string RoundBase<CID>::GetName() const
{
    return "Round";
}

template <ContainerID CID>
SeriesAttr RoundBase<CID>::GetDstAttr(const Cursor& src) const
{
    return src->GetAttr();
}

template <ContainerID CID>
bool RoundBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->Length() == dst->Length() && src->GetAttr().typeId == dst->GetAttr().typeId;
}

template <ContainerID CID>
template <typename T>
ErrorCode RoundBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    return RoundCells(src, dst, decimals);
}

template class RoundBase<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<RoundBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;

} // namespace MERVO::Tessera::Func
