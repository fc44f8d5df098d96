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

template <ContainerID CID, typename ASCENDING>
std::string SortValue<CID, ASCENDING>::GetName() const
{
    return "SortValue";
}

template <ContainerID CID, typename ASCENDING>
SeriesAttr SortValue<CID, ASCENDING>::GetDstAttr(const Cursor& src) const
{
    return src->GetAttr();
}

template <ContainerID CID, typename ASCENDING>
bool SortValue<CID, ASCENDING>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    const SeriesAttr from = src->GetAttr();
    const SeriesAttr to = dst->GetAttr();
    return from.length == to.length && from.containerId == to.containerId && from.typeId == to.typeId;
}

template <ContainerID CID, typename ASCENDING>
template <typename T>
ErrorCode SortValue<CID, ASCENDING>::OnExecute(const Cursor& src, const Cursor& dst) const
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

template class SortValue<CONTAINER_ARRAY, bool&>;
template class Unary<SortValue<CONTAINER_ARRAY, bool&>, MutableArgs::DESTINATION>;

} // namespace MERVO::Tessera::Func
