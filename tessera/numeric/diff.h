#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of Diff but the form in which it takes its argument, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API DiffBase : public Unary<DiffBase<CID>, MutableArgs::SOURCE> {
public:
    explicit DiffBase(std::int32_t lag) : periods(lag) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    std::int32_t periods;
};

/**
 * The difference between each element and the one `periods` rows before it; behind it where periods is negative.
 *
 * Differences are those of Sub, in the column's own type, so integers wrap. Rows that have no other element get NaN, or
 * 0 in a column of integers. The destination is no part of the column.
 *
 * Code 21: lengths or containers differ. Code 1: the destination's type; bools, strings, stamps and nested tables.
 * @tparam PERIODS how the lag is handed in: int32 by value, reference or const reference.
 */
template <ContainerID CID, typename PERIODS>
class Diff final : public DiffBase<CID> {
public:
    explicit Diff(PERIODS lag) : DiffBase<CID>(lag) {}
};

extern template const UnaryTable<1> Unary<DiffBase<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template class DiffBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
