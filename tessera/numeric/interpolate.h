#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/**
 * Fills the gaps of a column with straight lines: of a gap of g elements between c and v, the k-th becomes
 * k * (v - c) / (g + 1) + c. A gap at the end takes the last present element; one at the begin stays, as quiet NaN.
 *
 * A float column is computed in float and stays one; all other numbers become double, integers by conversion alone.
 * Working set: a few hundred bytes.
 *
 * Code 21: bools, strings, DateTime and nested tables, a destination of another length or type, or a column without
 * elements. Code 1: a float column into one of double; and where the check was left out, types without a kernel, which
 * the log tells.
 */
template <ContainerID CID>
class TESSERA_API Interpolate final : public Unary<Interpolate<CID>, MutableArgs::SOURCE> {
public:
    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& src) const override;
    bool CheckParams(const Cursor& src, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& src, const Cursor& dst) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& src, const Cursor& dst) const;
};

extern template const UnaryTable<1> Unary<Interpolate<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
extern template class Interpolate<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
