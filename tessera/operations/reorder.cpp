#include "tessera/operations/reorder.h"

#include "tessera/core/flat_call.h"
#include "tessera/functors/array_form.h"
#include "tessera/functors/gather.h"

namespace MERVO::Tessera::Func {
namespace {

ErrorCode GatherChecked(const Cursor& lhs, const Cursor& rhs, const Cursor& dst)
{
    const ArrayForm list(lhs);
    const auto& walk = CursorAs<CONTAINER_ARRAY, std::uint32_t>(list.Get());
    const std::span<const std::uint32_t> positions(walk.mHead, walk.mTail);
    if (!AreBelow(positions, rhs->Length())) {
        LogError("there exists position that exceeds length limit in Reorder");
        return ERROR_OUT_OF_RANGE;
    }
    Gather(ArrayForm(rhs).Get(), positions, dst);
    return ERROR_NONE;
}

} // namespace

template <ContainerID CID>
std::string Reorder<CID>::GetName() const
{
    return "Reorder";
}

template <ContainerID CID>
SeriesAttr Reorder<CID>::GetDstAttr(const Cursor& lhs, const Cursor& rhs) const
{
    return WithType(lhs->GetAttr(), rhs->GetAttr().typeId);
}

template <ContainerID CID>
bool Reorder<CID>::CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    if (lhs->GetAttr().typeId != TESSERA_UINT32) {
        LogError("the data type of indexlist should be uint32");
        return false;
    }
    return lhs->Length() == dst->Length() && rhs->GetAttr().typeId == dst->GetAttr().typeId && lhs->Length() != 0 &&
        rhs->Length() != 0;
}

template <ContainerID CID>
template <typename T>
ErrorCode Reorder<CID>::OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return Guarded("Reorder", [&] { return GatherChecked(lhs, rhs, dst); });
}

template class Reorder<CONTAINER_ARRAY>;
template const BinaryTable<1> Binary<Reorder<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;

} // namespace MERVO::Tessera::Func
