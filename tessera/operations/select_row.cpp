#include "tessera/operations/select_row.h"

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/gather.h"

namespace MERVO::Tessera::Func {

template <ContainerID CID>
std::string SelectRowBase<CID>::GetName() const
{
    return "SelectRow";
}

template <ContainerID CID>
SeriesAttr SelectRowBase<CID>::GetDstAttr(const Cursor& src) const
{
    return WithLength(src->GetAttr(), static_cast<std::uint32_t>(index.size()));
}

template <ContainerID CID>
bool SelectRowBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    if (!AreBelow(index, src->Length())) {
        LogError("there exists index that exceeds length limit");
        return false;
    }
    return src->GetAttr().typeId == dst->GetAttr().typeId && dst->Length() == index.size();
}

template <ContainerID CID>
template <typename T>
ErrorCode SelectRowBase<CID>::OnExecuteSIMD(const Cursor& src, const Cursor& dst) const
{
    if (src->Length() == 0 || dst->Length() == 0) {
        LogError("lhs or dst is empty");
        return ERROR_GENERAL;
    }
    Gather(src, index, dst);
    return ERROR_NONE;
}

template <ContainerID CID>
template <typename T>
ErrorCode SelectRowBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    Gather(src, index, dst);
    return ERROR_NONE;
}

template const UnaryTable<1> Unary<SelectRowBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class SelectRowBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
