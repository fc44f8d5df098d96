#pragma once

#include "tessera/numeric/real_statistic.h"

namespace MERVO::Tessera::Func {

/// How Skew and Kurt take a column.
struct ShapeParam {
    bool skipNan; ///< leaves NaN elements out; without it one of them makes the result NaN
    bool bias;    ///< gives the statistic of the elements themselves, not the estimate for the population
};

/// All of Skew but the form in which it takes its arguments, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API SkewBase : public RealStatistic<SkewBase<CID>> {
public:
    explicit SkewBase(const ShapeParam& shape) : param(shape) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool ReducesColumns() const override { return true; }
    bool ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const override;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    ShapeParam param;
};

/**
 * The skewness of a column: the third central moment over the second to the power 1.5; with bias false that is
 * multiplied by sqrt(n (n - 1)) / (n - 2), the coefficients g1 and G1 of D. N. Joanes and C. A. Gill, "Comparing
 * Measures of Sample Skewness and Kurtosis", The Statistician 47 (1998).
 *
 * The mean is the sum over n, and each term of a moment is divided by n before it is added. All is computed in double,
 * and narrowed for a float column. Where the second moment is within 2^-52 of zero the skewness is 0, with bias false
 * NaN, as it is for two elements. A result within the epsilon of the column's type of zero, or NaN by infinities, is 0.
 * Nothing present gives NaN. Code 1: bools, strings, stamps and nested tables.
 * @tparam FLAG how skipNan and bias, two bools in this order, are handed in: by value, reference or const reference.
 */
template <ContainerID CID, typename... FLAG>
class Skew final : public SkewBase<CID> {
public:
    explicit Skew(FLAG... skipNanAndBias) : SkewBase<CID>(ShapeParam{skipNanAndBias...}) {}
};

/// All of Kurt but the form in which it takes its arguments.
template <ContainerID CID>
class TESSERA_API KurtBase : public RealStatistic<KurtBase<CID>> {
public:
    explicit KurtBase(const ShapeParam& shape) : param(shape) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool ReducesColumns() const override { return true; }
    bool ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const override;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    ShapeParam param;
};

/**
 * The excess kurtosis of a column, 0 for a normal distribution: the fourth central moment over the square of the
 * second, less 3; with bias false the unbiased form of Skew's source, which calls the two g2 and G2.
 *
 * Computed in double and narrowed for a float column. With bias false fewer than 4 elements give NaN, and a denominator
 * within 1e-14 of zero gives 0. With bias true a sum of squares within 2^-52 of zero gives -3, and a result within the
 * epsilon of the column's type of zero, or NaN by infinities, is 0. Nothing present gives NaN. Code 1: bools, strings,
 * stamps and nested tables.
 * @tparam FLAG as in Skew.
 */
template <ContainerID CID, typename... FLAG>
class Kurt final : public KurtBase<CID> {
public:
    explicit Kurt(FLAG... skipNanAndBias) : KurtBase<CID>(ShapeParam{skipNanAndBias...}) {}
};

extern template const UnaryTable<2>
    Unary<SkewBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class SkewBase<CONTAINER_ARRAY>;
extern template const UnaryTable<2>
    Unary<KurtBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class KurtBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
