#include "tessera/numeric/is_nan.h"

#include "tessera/functors/nan_marks.h"

namespace MERVO::Tessera::Func {

template <ContainerID CID, typename MARK>
std::string NanMarker<CID, MARK>::GetName() const
{
    return std::is_same_v<MARK, bool> ? "IsNan" : "IsNanInt";
}

template <ContainerID CID, typename MARK>
SeriesAttr NanMarker<CID, MARK>::GetDstAttr(const Cursor& src) const
{
    return WithType(src->GetAttr(), TYPE_ID_OF<MARK>);
}

template <ContainerID CID, typename MARK>
bool NanMarker<CID, MARK>::CheckParams(const Cursor&, const Cursor& dst) const
{
    return dst->GetAttr().typeId == TYPE_ID_OF<MARK>;
}

template <ContainerID CID, typename MARK>
template <typename T>
ErrorCode NanMarker<CID, MARK>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (std::is_same_v<T, DataFrame>) {
        LogError("%s not support Type DataFrame", GetName().c_str());
        return ERROR_GENERAL;
    } else {
        return MarkNans(src, dst);
    }
}

template class NanMarker<CONTAINER_ARRAY, bool>;
template const UnaryTable<1> Unary<NanMarker<CONTAINER_ARRAY, bool>, MutableArgs::SOURCE>::transformTable;
template class NanMarker<CONTAINER_ARRAY, std::int32_t>;
template const UnaryTable<1> Unary<NanMarker<CONTAINER_ARRAY, std::int32_t>, MutableArgs::SOURCE>::transformTable;

} // namespace MERVO::Tessera::Func
