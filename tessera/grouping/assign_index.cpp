#include "tessera/grouping/assign_index.h"

#include "tessera/core/flat_call.h"
#include "tessera/functors/array_form.h"
#include "tessera/functors/gather.h"
#include "tessera/functors/gather_present.h"

namespace MERVO::Tessera::Func {
namespace {

using Rows = std::vector<std::uint32_t>;

} // namespace

template <ContainerID CID>
std::string AssignIndexBase<CID>::GetName() const
{
    return "AssignIndex";
}

template <ContainerID CID>
SeriesAttr AssignIndexBase<CID>::GetDstAttr(const Cursor& src) const
{
    return WithLength(src->GetAttr(), static_cast<std::uint32_t>(rows.size()));
}

template <ContainerID CID>
bool AssignIndexBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->GetAttr().typeId == dst->GetAttr().typeId && dst->Length() == rows.size() &&
        AreRowsBelow(rows, src->Length());
}

template <ContainerID CID>
template <typename T>
ErrorCode AssignIndexBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    return Guarded("AssignIndex", [&]() -> ErrorCode {
        const ArrayForm source(src);
        ArrayRoom result(dst);
        const bool hasAll = AreBelow(rows, src->Length());
        hasAll ? Gather(source.Get(), rows, result.Get()) : GatherOrMissing(source.Get(), rows, result.Get());
        result.Deliver();
        return ERROR_NONE;
    });
}

template const UnaryTable<1> Unary<AssignIndexBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class AssignIndexBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
