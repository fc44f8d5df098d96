#include "tessera/numeric/rolling.h"

#include "tessera/numeric/real_statistic.h"
#include "tessera/numeric/rolling_column.h"

namespace MERVO::Tessera::Func {
namespace {

bool IsInteger(MERVO_TESSERA_TYPEID type) { return type >= TESSERA_INT8 && type <= TESSERA_UINT64; }

template <typename T>
ErrorCode Roll(const Cursor& src, const Cursor& dst, const RollingRun& run)
{
    if constexpr (Arithmetic<T>) {
        return RollColumn(src, dst, run, std::type_identity<RealOf<T>>{});
    } else {
        return ERROR_GENERAL;
    }
}

} // namespace

template <ContainerID CID, bool IS_MEAN>
std::string RollingBase<CID, IS_MEAN>::GetName() const
{
    return IS_MEAN ? "RollingMean" : "RollingSum";
}

template <ContainerID CID, bool IS_MEAN>
SeriesAttr RollingBase<CID, IS_MEAN>::GetDstAttr(const Cursor& src) const
{
    const SeriesAttr attr = src->GetAttr();
    return IsInteger(attr.typeId) ? WithType(attr, TESSERA_DOUBLE) : attr;
}

template <ContainerID CID, bool IS_MEAN>
bool RollingBase<CID, IS_MEAN>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->GetAttr().typeId != TESSERA_BOOL && dst->GetAttr().typeId == GetDstAttr(src).typeId;
}

template <ContainerID CID, bool IS_MEAN>
template <typename T, typename>
ErrorCode RollingBase<CID, IS_MEAN>::OnExecuteSIMD(const Cursor& src, const Cursor& dst) const
{
    if (Arithmetic<T> && dst->Length() == 0) {
        LogError("the data pointer is nullptr and data is invalid");
        return ERROR_NONE;
    }
    return Roll<T>(src, dst, {param, IS_MEAN, "Apply for sum array or invalidnum array failed"});
}

template <ContainerID CID, bool IS_MEAN>
template <typename T, typename>
ErrorCode RollingBase<CID, IS_MEAN>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    return Roll<T>(src, dst, {param, IS_MEAN, "initialized storage failed"});
}

template class RollingBase<CONTAINER_ARRAY, false>;
template const UnaryTable<2>
    Unary<RollingBase<CONTAINER_ARRAY, false>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;
template class RollingBase<CONTAINER_ARRAY, true>;
template const UnaryTable<2>
    Unary<RollingBase<CONTAINER_ARRAY, true>, MutableArgs::SOURCE, MutableArgs::DESTINATION>::transformTable;

} // namespace MERVO::Tessera::Func
