#pragma once

#include "tessera/numeric/real_statistic.h"

namespace MERVO::Tessera::Func {

/// All of Moment but the form in which it takes its argument, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API MomentBase : public RealStatistic<MomentBase<CID>> {
public:
    explicit MomentBase(std::uint32_t degree) : power(degree) {}

    std::string GetName() const override;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    std::uint32_t power;
};

/**
 * The central moment of a column: the sum of the deviations from the mean, each raised to `degree`, over n.
 *
 * Mean, deviations and NaN are those of Var. Degree 0 gives 1 for any elements, and NaN for none. Code 1: strings,
 * stamps and nested tables.
 * @tparam DEGREE how the degree is handed in: uint32 by value, reference or const reference.
 */
template <ContainerID CID, typename DEGREE>
class Moment final : public MomentBase<CID> {
public:
    explicit Moment(DEGREE degree) : MomentBase<CID>(degree) {}
};

/// All of Kstat but the form in which it takes its argument.
template <ContainerID CID>
class TESSERA_API KstatBase : public RealStatistic<KstatBase<CID>> {
public:
    explicit KstatBase(std::uint32_t degree) : order(degree) {}

    std::string GetName() const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    std::uint32_t order;
};

/**
 * The k-statistic of a column, the unbiased estimate of a cumulant of the population: of degree 1 the mean, 2 the
 * sample variance, 3 and 4 what skewness and kurtosis are made of.
 *
 * They are computed from power sums by the formulas of R. A. Fisher, "Moments and Product Moments of Sampling
 * Distributions", Proceedings of the London Mathematical Society 30 (1930). Of a float column the powers, their sums
 * and most of the formula are float. NaN goes through. Fewer elements than the degree divide by zero: infinity or NaN.
 * Code 5: a degree outside 1 to 4. Code 1: bools, strings, stamps and nested tables. An empty column is refused.
 * @tparam DEGREE as in Moment.
 */
template <ContainerID CID, typename DEGREE>
class Kstat final : public KstatBase<CID> {
public:
    explicit Kstat(DEGREE degree) : KstatBase<CID>(degree) {}
};

extern template const UnaryTable<2>
    Unary<MomentBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class MomentBase<CONTAINER_ARRAY>;
extern template const UnaryTable<2>
    Unary<KstatBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class KstatBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
