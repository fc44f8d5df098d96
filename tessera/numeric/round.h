#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// All of Round but the form in which it takes its argument, so that the forms share their code.
template <ContainerID CID>
class TESSERA_API RoundBase : public Unary<RoundBase<CID>, MutableArgs::DESTINATION> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    explicit RoundBase(std::uint32_t places) : decimals(places) {}

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;

private:
    std::uint32_t decimals;
};

/**
 * Rounds the elements of a column to a number of decimals, halves away from zero.
 *
 * An element is taken as a double x, multiplied by 10^decimals, half a unit is added away from zero, and what is cut to
 * a whole number then is divided by 10^decimals again. It is the binary product that is rounded: 1.005 with two
 * decimals gives 1.0, for it lies below. A result of 0 has no sign, and NaN gives 0. Where x * 10^decimals does not fit
 * into 64 bits the element is copied, infinities too, and a warning goes to the log at level 0 for each.
 *
 * Code 21: lengths or value types differ. Code 4, with a message in the log: more than 10 decimals; no element is
 * written then. Code 1: bools, strings, stamps and nested tables.
 * @tparam DECIMALS how the decimals are handed in: uint32 by value, reference or const reference.
 */
template <ContainerID CID, typename DECIMALS>
class Round final : public RoundBase<CID> {
public:
    explicit Round(DECIMALS places) : RoundBase<CID>(places) {}
};

extern template const UnaryTable<1> Unary<RoundBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
extern template class RoundBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
