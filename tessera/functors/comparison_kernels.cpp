#include "tessera/functors/comparison_kernels.h"

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>

#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera::Func {
namespace {

struct IsEqual {
    template <typename T>
    bool operator()(const T& left, const T& right) const
    {
        if constexpr (std::is_floating_point_v<T>) {
            return std::abs(left - right) < std::numeric_limits<T>::epsilon(); // false for equal infinities
        } else {
            return left == right;
        }
    }
};

struct IsLess {
    template <typename T>
    bool operator()(const T& left, const T& right) const
    {
        return left < right;
    }
};

struct IsLessEqual {
    template <typename T>
    bool operator()(const T& left, const T& right) const
    {
        return left <= right;
    }
};

template <typename T, typename Rule>
[[gnu::always_inline]] inline void CompareEach(
    const T* __restrict lefts, const T* __restrict rights, bool* __restrict results, std::uint32_t count)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        results[i] = Rule{}(lefts[i], rights[i]);
    }
}

template <typename T, typename Rule>
TESSERA_WIDE_VECTORS void CompareWide(const T* lefts, const T* rights, bool* results, std::uint32_t count)
{
    CompareEach<T, Rule>(lefts, rights, results, count);
}

template <typename T, typename Rule>
void CompareNumbers(const void* left, const void* right, void* result, std::uint32_t count)
{
    const auto* const lefts = static_cast<const T*>(left);
    const auto* const rights = static_cast<const T*>(right);
    auto* const results = static_cast<bool*>(result);
    HasWideVectors() ? CompareWide<T, Rule>(lefts, rights, results, count)
                     : CompareEach<T, Rule>(lefts, rights, results, count);
}

template <typename Rule>
void CompareTexts(const void* left, const void* right, void* result, std::uint32_t count)
{
    const auto* lefts = static_cast<const std::string* const*>(left);
    const auto* rights = static_cast<const std::string* const*>(right);
    auto* results = static_cast<bool*>(result);
    for (std::uint32_t i = 0; i < count; ++i) {
        results[i] = Rule{}(*lefts[i], *rights[i]);
    }
}

/// A value type as kernels meet it.
template <typename T>
consteval auto Comparable()
{
    if constexpr (std::is_same_v<T, bool>) {
        return std::type_identity<std::uint8_t>{};
    } else if constexpr (std::is_same_v<T, DateTime>) {
        return std::type_identity<std::int32_t>{};
    } else {
        return std::type_identity<T>{};
    }
}

template <typename T, typename Rule>
consteval CellKernel KernelOf()
{
    using Number = typename decltype(Comparable<T>())::type;
    if constexpr (std::is_same_v<T, std::string>) {
        return &CompareTexts<Rule>;
    } else if constexpr (std::is_same_v<T, DataFrame>) {
        return nullptr;
    } else if constexpr (std::is_integral_v<Number> && std::is_same_v<Rule, IsEqual>) {
        return &CompareNumbers<std::make_unsigned_t<Number>, Rule>; // the sign alters no equality
    } else {
        return &CompareNumbers<Number, Rule>;
    }
}

/// What is not less is greater or equal, except beside a NaN.
template <typename T>
inline constexpr bool HAS_NAN = std::is_floating_point_v<T>;

struct KernelsOfType {
    CellKernel equal;
    CellKernel less;
    CellKernel lessEqual; ///< null where it is the opposite of less, with the operands swapped
};

constexpr auto KERNELS = ForEachValueType([](auto number) {
    using T = ValueTypes::At<number()>;
    KernelsOfType kernels{KernelOf<T, IsEqual>(), KernelOf<T, IsLess>(), nullptr};
    if constexpr (HAS_NAN<T>) {
        kernels.lessEqual = KernelOf<T, IsLessEqual>();
    }
    return kernels;
});

} // namespace

ComparisonPlan PlanFor(Compare::Relation relation, MERVO_TESSERA_TYPEID type)
{
    using Compare::Relation;
    const KernelsOfType& kernels = KERNELS[static_cast<std::size_t>(type)];
    const bool isInverted = kernels.lessEqual == nullptr;
    switch (relation) {
    case Relation::EQUAL:
        return {kernels.equal, false, false};
    case Relation::LESS:
        return {kernels.less, false, false};
    case Relation::GREATER:
        return {kernels.less, true, false};
    case Relation::LESS_EQUAL:
        return isInverted ? ComparisonPlan{kernels.less, true, true} : ComparisonPlan{kernels.lessEqual, false, false};
    default:
        return isInverted ? ComparisonPlan{kernels.less, false, true} : ComparisonPlan{kernels.lessEqual, true, false};
    }
}

} // namespace MERVO::Tessera::Func
