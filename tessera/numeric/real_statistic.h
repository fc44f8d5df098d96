#pragma once

#include <type_traits>

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

/// The type of a statistic of a column of T: float for float, double for other numbers and bools, none for the rest.
template <typename T>
using RealOf =
    std::conditional_t<std::is_same_v<T, float>, float, std::conditional_t<Arithmetic<T>, double, InvalidType>>;

/// What the destination of such a statistic must be; no value type where the source has none.
TESSERA_API SeriesAttr GetRealResultAttr(const Cursor& src);
TESSERA_API bool IsRealResultAttr(const Cursor& src, const Cursor& dst);

/// The frame of the statistics whose one cell is a RealOf their column. Columns may be empty.
template <typename F>
class RealStatistic : public Unary<F, MutableArgs::SOURCE, MutableArgs::DESTINATION> {
public:
    static constexpr bool kDestinationAltersKernel = false;

    SeriesAttr GetDstAttr(const Cursor& src) const override { return GetRealResultAttr(src); }
    bool CheckParams(const Cursor& src, const Cursor& dst) const override { return IsRealResultAttr(src, dst); }
};

} // namespace MERVO::Tessera::Func
