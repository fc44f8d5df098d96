#include "tessera/numeric/cal_mean.h"

#include <limits>

#include "tessera/functors/element_walk.h"
#include "tessera/numeric/column_sums.h"
#include "tessera/numeric/plain_nan.h"

namespace MERVO::Tessera::Func {
namespace {

/// A sum and what it is divided by.
struct Fraction {
    double total;
    std::uint32_t count;
};

template <typename T, typename Position>
Fraction FractionOf(Position head, Position tail, bool skipNan)
{
    const auto length = static_cast<std::uint32_t>(tail - head);
    if constexpr (std::is_same_v<T, bool>) {
        return {static_cast<double>(CountTrue(head, tail)), length};
    } else if constexpr (std::is_integral_v<T>) {
        return {SumOfIntegers(0.0, head, tail), length};
    } else if (skipNan) {
        const PresentSum sum = SumOfPresent(head, tail);
        return {WithPlainNan(sum.total), sum.count};
    } else {
        return {SumOfReals<double>(head, tail), length};
    }
}

template <typename T>
double MeanOf(const Cursor& column, bool skipNan)
{
    if constexpr (Arithmetic<T>) {
        const Fraction mean =
            WithPlaces<T>(column, [skipNan](auto head, auto tail) { return FractionOf<T>(head, tail, skipNan); });
        return MeanFrom(mean.total, mean.count);
    } else {
        return std::numeric_limits<double>::quiet_NaN();
    }
}

using MeanEntry = double (*)(const Cursor& column, bool skipNan);

constexpr auto MEANS = ForEachValueType([](auto number) -> MeanEntry { return &MeanOf<ValueTypes::At<number()>>; });

} // namespace

double MeanFrom(double total, std::uint32_t count)
{
    return count == 0 ? std::numeric_limits<double>::quiet_NaN() : total / static_cast<double>(count);
}

double CalMean(const Cursor& column, bool skipNan)
{
    const auto number = static_cast<std::size_t>(column->GetAttr().typeId);
    return number < MEANS.size() ? MEANS[number](column, skipNan) : std::numeric_limits<double>::quiet_NaN();
}

} // namespace MERVO::Tessera::Func
