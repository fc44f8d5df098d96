#include "tessera/numeric/skew_kurt.h"

#include <cmath>

#include "tessera/numeric/columns_abreast.h"
#include "tessera/numeric/count_divisor.h"
#include "tessera/numeric/plain_nan.h"
#include "tessera/numeric/power.h"
#include "tessera/numeric/reduction_result.h"
#include "tessera/numeric/term_sums.h"
#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera::Func {
namespace {

constexpr double NO_VALUE = std::numeric_limits<double>::quiet_NaN();
constexpr double EPSILON = std::numeric_limits<double>::epsilon();

/// What the first pass tells of the elements that count.
struct Present {
    std::uint64_t count = 0;
    double mean = NO_VALUE; ///< NaN also of infinities of both signs
};

/// Nothing counts where a NaN must not be skipped.
Present FindPresent(const Cursor& src, bool skipNan)
{
    double total = 0.0;
    std::int64_t missing = 0;
    RealRuns<double> runs(src);
    for (auto run = runs.Next(); !run.empty(); run = runs.Next()) {
        std::int64_t missingHere = 0; // of a local the compiler keeps count in a register
        total = AddTerms(total, run, [&missingHere](double value) {
            missingHere += value != value ? 1 : 0;
            return value == value ? value : 0.0;
        });
        missing += missingHere;
        if (missing != 0 && !skipNan) {
            return {};
        }
    }
    Present present{src->Length() - static_cast<std::uint64_t>(missing)};
    present.mean = present.count == 0 ? NO_VALUE : total / static_cast<double>(present.count);
    return present;
}

/**
 * How far an element lies from the mean. A NaN that is passed over counts as the mean itself: its terms are zeros,
 * which alter no sum. From a mean that is infinite it makes NaN of sums that are infinite or NaN without it, and a
 * statistic of either comes to the same.
 */
template <typename Number>
[[gnu::always_inline]] inline void FindDeviation(const Number& mean, const Number& value, Number& deviation)
{
    const Number present = value == value ? value : mean;
    deviation = present - mean;
}

/// The powers of a deviation that make the third and the second central moment: each is divided on its own.
struct Moments {
    static constexpr double SMALLEST_SQUARE = 0x1p-600; ///< the cube of its root is CountDivisor::FUSED_FROM

    template <typename Number>
    [[gnu::always_inline]] static void Make(
        const Number& deviation, const Number* count, Number* results, SmallestMagnitude& smallest)
    {
        const Number square = deviation * deviation;
        const Number cube = deviation * square;
        Divide(cube, count, results[0]);
        Divide(square, count, results[1]);
        smallest.See(square);
    }
};

/// Those that make the kurtosis, which are added up as they are.
struct EvenPowers {
    static constexpr double SMALLEST_SQUARE = 0.0; ///< nothing is divided

    template <typename Number>
    [[gnu::always_inline]] static void Make(const Number& deviation, const Number*, Number* results, SmallestMagnitude&)
    {
        const Number square = deviation * deviation;
        results[0] = square * square;
        results[1] = square;
    }
};

/// The powers of one element's deviation.
template <typename Powers>
[[gnu::always_inline]] inline SumPair PowersOf(double value, double mean, double count)
{
    double deviation;
    FindDeviation(mean, value, deviation);
    double results[2];
    SmallestMagnitude unused;
    Powers::Make(deviation, &count, results, unused);
    return {results[0], results[1]};
}

[[gnu::always_inline]] inline void AddMoments(
    SumPair& moments, std::span<const double> values, double mean, double count)
{
    AddTermPairs(moments, values, [mean, count](double value) { return PowersOf<Moments>(value, mean, count); });
}

TESSERA_WIDE_VECTORS void AddMomentsWide(SumPair& moments, std::span<const double> values, double mean, double count)
{
    AddMoments(moments, values, mean, count);
}

/// @param moments the third and the second central one
/// @param zero the largest magnitude that counts as none
double SkewnessFrom(const SumPair& moments, std::uint64_t elements, bool bias, double zero)
{
    const auto [third, second] = moments;
    const auto count = static_cast<double>(elements);
    double skewness = 0.0;
    if (bias) {
        skewness = std::abs(second) < EPSILON ? 0.0 : third / PowerOneAndAHalf(second);
    } else if (std::abs(second) < EPSILON || elements == 2) {
        return NO_VALUE;
    } else {
        const auto pairs = static_cast<double>(elements * (elements - 1));
        skewness = std::sqrt(pairs) * third / ((count - 2.0) * PowerOneAndAHalf(second));
    }
    return std::abs(skewness) > zero ? skewness : 0.0;
}

double Skewness(const Cursor& src, const ShapeParam& param, double zero)
{
    const Present present = FindPresent(src, param.skipNan);
    if (present.count == 0) {
        return NO_VALUE;
    }
    const auto count = static_cast<double>(present.count);
    SumPair moments;
    RealRuns<double> runs(src);
    for (auto run = runs.Next(); !run.empty(); run = runs.Next()) {
        HasWideVectors() ? AddMomentsWide(moments, run, present.mean, count)
                         : AddMoments(moments, run, present.mean, count);
    }
    return SkewnessFrom(moments, present.count, param.bias, zero);
}

/// The excess kurtosis of a population, from the sums of fourth powers and of squares of the deviations in a sample.
double UnbiasedKurtosis(double fourth, double second, double n)
{
    constexpr double NEARLY_ZERO = 1e-14;
    const double product = (n + 1.0) * n * (n - 1.0) * fourth;
    const double numerator = std::abs(product) < NEARLY_ZERO ? 0.0 : product;
    const double scale = (n - 2.0) * (n - 3.0);
    const double denominator = second * second * scale;
    if (std::abs(denominator) < NEARLY_ZERO) {
        return 0.0;
    }
    return WithPlainNan(numerator / denominator - (n - 1.0) * (n - 1.0) * 3.0 / scale);
}

/// @param sums those of fourth powers and of squares
double KurtosisFrom(const SumPair& sums, std::uint64_t elements, bool bias, double zero)
{
    const auto [fourth, second] = sums;
    const auto count = static_cast<double>(elements);
    if (!bias) {
        return elements < 4 ? NO_VALUE : UnbiasedKurtosis(fourth, second, count);
    }
    if (std::abs(second) < EPSILON) {
        return -3.0;
    }
    const double variance = second / count;
    const double kurtosis = fourth / count / (variance * variance) - 3.0;
    return std::abs(kurtosis) > zero ? kurtosis : 0.0;
}

double Kurtosis(const Cursor& src, const ShapeParam& param, double zero)
{
    const Present present = FindPresent(src, param.skipNan);
    if (present.count == 0) {
        return NO_VALUE;
    }
    SumPair sums;
    RealRuns<double> runs(src);
    for (auto run = runs.Next(); !run.empty(); run = runs.Next()) {
        AddTermPairs(sums, run, [mean = present.mean](double value) { return PowersOf<EvenPowers>(value, mean, 1.0); });
    }
    return KurtosisFrom(sums, present.count, param.bias, zero);
}

/// A measure of shape of doubles, made of what the two passes give.
using ShapeFrom = double (*)(const SumPair& sums, std::uint64_t elements, bool bias, double zero);

/// The two passes over several columns at a time.
template <typename Powers>
struct MeasureShape {
    ShapeParam param;
    ShapeFrom shapeFrom;

    template <typename Adder>
    [[gnu::always_inline]] Abreast Reduce(const ColumnsAbreast& columns) const
    {
        const PresentAbreast present = SumsOfPresentAbreast<Adder>(columns);
        Abreast counts{};
        Abreast means{};
        for (std::size_t k = 0; k < columns.count; ++k) {
            counts[k] = static_cast<double>(columns.length) - present.missing[k];
            means[k] = present.totals[k] / counts[k]; // NaN where nothing is present
        }
        const auto [divisors, reciprocals] = DivisorsAbreast(counts);
        SmallestMagnitude smallest;
        const auto sums = SumsAbreast<Adder, 2>(columns, ParametersAbreast<3>{means, divisors, reciprocals},
            [&smallest](const auto& value, const auto* meanAndCount, auto* results) {
                std::remove_cvref_t<decltype(value)> deviation;
                FindDeviation(meanAndCount[0], value, deviation);
                Powers::Make(deviation, meanAndCount + 1, results, smallest);
            });
        const bool isLossy = smallest.IsBelow(Powers::SMALLEST_SQUARE);
        Abreast shapes;
        for (std::size_t k = 0; k < columns.count; ++k) {
            const double both = sums[0][k] + sums[1][k]; // NaN also where an infinite power was to be divided
            const bool isKnown = !isLossy && both == both && (present.missing[k] == 0 || param.skipNan);
            const auto elements = static_cast<std::uint64_t>(counts[k]);
            shapes[k] = isKnown ? shapeFrom({sums[0][k], sums[1][k]}, elements, param.bias, EPSILON) : NO_VALUE;
        }
        return shapes;
    }
};

template <typename T>
ErrorCode StoreShape(const Cursor& src, const Cursor& dst, const ShapeParam& param,
    double (*statistic)(const Cursor&, const ShapeParam&, double))
{
    using Real = RealOf<T>;
    if constexpr (Arithmetic<T> && !std::is_same_v<T, bool>) {
        const double zero = std::numeric_limits<Real>::epsilon();
        return StoreResult(dst, static_cast<Real>(statistic(src, param, zero)));
    } else {
        return ERROR_GENERAL;
    }
}

} // namespace

template <ContainerID CID>
std::string SkewBase<CID>::GetName() const
{
    return "Skew";
}

template <ContainerID CID>
SeriesAttr SkewBase<CID>::GetDstAttr(const Cursor& src) const
{
    if (src->GetAttr().typeId > TESSERA_DOUBLE) {
        LogError("the input data type doesn't match needs of functor");
    }
    return GetRealResultAttr(src);
}

template <ContainerID CID>
bool SkewBase<CID>::ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const
{
    return ReduceAbreast(*this, sources, results, MeasureShape<Moments>{param, &SkewnessFrom});
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode SkewBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    return StoreShape<T>(src, dst, param, &Skewness);
}

template <ContainerID CID>
std::string KurtBase<CID>::GetName() const
{
    return "Kurt";
}

template <ContainerID CID>
SeriesAttr KurtBase<CID>::GetDstAttr(const Cursor& src) const
{
    if (src->GetAttr().typeId > TESSERA_DOUBLE) {
        LogError("the input data type doesn't satisfy needs of functor");
    }
    return GetRealResultAttr(src);
}

template <ContainerID CID>
bool KurtBase<CID>::ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const
{
    return ReduceAbreast(*this, sources, results, MeasureShape<EvenPowers>{param, &KurtosisFrom});
}

template <ContainerID CID>
template <typename T, typename>
ErrorCode KurtBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    return StoreShape<T>(src, dst, param, &Kurtosis);
}

template class SkewBase<CONTAINER_ARRAY>;
template class RealStatistic<SkewBase<CONTAINER_ARRAY>>;
template class Unary<SkewBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>;
template class Skew<CONTAINER_ARRAY, bool, bool>;
template class Skew<CONTAINER_ARRAY, bool&, bool&>;
template class Skew<CONTAINER_ARRAY, const bool&, const bool&>;
template class KurtBase<CONTAINER_ARRAY>;
template class RealStatistic<KurtBase<CONTAINER_ARRAY>>;
template class Unary<KurtBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>;
template class Kurt<CONTAINER_ARRAY, bool, bool>;
template class Kurt<CONTAINER_ARRAY, bool&, bool&>;
template class Kurt<CONTAINER_ARRAY, const bool&, const bool&>;

} // namespace MERVO::Tessera::Func
