#include "tessera/numeric/real_statistic.h"

#include "tessera/numeric/reduction_result.h"

namespace MERVO::Tessera::Func {
namespace {

constexpr ResultTypes REAL_TYPES =
    ForEachValueType([](auto number) { return TYPE_ID_OF<RealOf<ValueTypes::At<number()>>>; });

} // namespace

SeriesAttr GetRealResultAttr(const Cursor& src) { return GetResultAttr(src, REAL_TYPES); }

bool IsRealResultAttr(const Cursor& src, const Cursor& dst) { return IsResultAttr(src, dst, REAL_TYPES); }

} // namespace MERVO::Tessera::Func
