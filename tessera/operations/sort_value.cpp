#include "tessera/operations/sort_value.h"

#include <numeric>
#include <vector>

#include "tessera/core/flat_call.h"
#include "tessera/functors/array_form.h"
#include "tessera/functors/gather.h"
#include "tessera/operations/stable_order.h"

namespace MERVO::Tessera::Func {
namespace {

void WriteInOrder(const Cursor& src, const Cursor& dst, bool ascending)
{
    const ArrayForm array(src);
    std::vector<std::uint32_t> positions(src->Length());
    std::iota(positions.begin(), positions.end(), 0U);
    OrderStably(*KeysOf(array.Get()), ascending, positions);
    Gather(array.Get(), positions, dst);
}

} // namespace

template <ContainerID CID>
std::string SortValueBase<CID>::GetName() const
{
    return "SortValue";
}

template <ContainerID CID>
SeriesAttr SortValueBase<CID>::GetDstAttr(const Cursor& src) const
{
    return src->GetAttr();
}

template <ContainerID CID>
bool SortValueBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    const SeriesAttr from = src->GetAttr();
    const SeriesAttr to = dst->GetAttr();
    return from.length == to.length && from.containerId == to.containerId && from.typeId == to.typeId;
}

template <ContainerID CID>
template <typename T>
ErrorCode SortValueBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (Arithmetic<T>) {
        return Guarded("SortValue", [&]() -> ErrorCode {
            WriteInOrder(src, dst, ascending);
            return ERROR_NONE;
        });
    } else {
        return ERROR_GENERAL;
    }
}

template class SortValueBase<CONTAINER_ARRAY>;
template const UnaryTable<1> Unary<SortValueBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;

} // namespace MERVO::Tessera::Func
