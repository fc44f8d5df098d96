#pragma once

#include "tessera/numeric/real_statistic.h"

namespace MERVO::Tessera::Func {

/// All of Var but the form in which it takes its argument, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API VarBase : public RealStatistic<VarBase<CID>> {
public:
    explicit VarBase(std::uint32_t ddof) : lostDegrees(ddof) {}

    std::string GetName() const override;
    bool ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const override;
    bool ReducesColumns() const override { return true; }
    bool ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const override;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    std::uint32_t lostDegrees; ///< of freedom
};

/**
 * The variance of a column: the sum of the squared deviations from the mean, over n - ddof as doubles.
 *
 * The mean is the sum of x / n. A float column has its mean and deviations in float, and the squares and their sum in
 * double; the result is narrowed. NaN goes through. The divisor is not guarded: n equal to ddof gives infinity or NaN,
 * and a greater ddof turns the sign. Code 1: strings, stamps and nested tables.
 * @tparam DDOF how the lost degrees of freedom are handed in: uint32 by value, reference or const reference.
 */
template <ContainerID CID, typename DDOF>
class Var final : public VarBase<CID> {
public:
    explicit Var(DDOF ddof) : VarBase<CID>(ddof) {}
};

/// All of Std but the form in which it takes its argument.
template <ContainerID CID>
class TESSERA_API StdBase : public RealStatistic<StdBase<CID>> {
public:
    explicit StdBase(std::uint32_t ddof = 1) : lostDegrees(ddof) {}

    std::string GetName() const override;
    bool ReduceGroups(const Cursor& src, const RowGroups& groups, const Cursor& dst) const override;
    bool ReducesColumns() const override { return true; }
    bool ReduceColumns(std::span<const Cursor> sources, std::span<const Cursor> results) const override;
    template <typename T, typename>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    std::uint32_t lostDegrees; ///< of freedom
};

/**
 * The standard deviation of a column: the square root of what Var divides, over n - ddof.
 *
 * It differs from Var in the divisor, which is taken in 32 bits without a sign: n equal to ddof gives NaN, and a
 * greater ddof wraps to a huge divisor. Code 1: strings, stamps and nested tables.
 * @tparam DDOF nothing for ddof 1, or as in Var.
 */
template <ContainerID CID, typename... DDOF>
class Std final : public StdBase<CID> {
public:
    explicit Std(DDOF... ddof) : StdBase<CID>(ddof...) {}
};

extern template const UnaryTable<2>
    Unary<VarBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class VarBase<CONTAINER_ARRAY>;
extern template const UnaryTable<2>
    Unary<StdBase<CONTAINER_ARRAY>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
extern template class StdBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
