#include "tessera/operations/drop_row.h"

#include <algorithm>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/operations/dropped_rows.h"
#include "tessera/operations/marked_cells.h"

namespace MERVO::Tessera::Func {

template <ContainerID CID>
std::uint32_t DropRowBase<CID>::Count() const
{
    return marked != nullptr ? marked->Count() : static_cast<std::uint32_t>(listed->size());
}

template <ContainerID CID>
std::string DropRowBase<CID>::GetName() const
{
    return "DropRow";
}

template <ContainerID CID>
SeriesAttr DropRowBase<CID>::GetDstAttr(const Cursor& src) const
{
    const SeriesAttr attr = src->GetAttr();
    return WithLength(attr, attr.length - std::min(attr.length, Count()));
}

template <ContainerID CID>
bool DropRowBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->GetAttr().typeId == dst->GetAttr().typeId && dst->Length() == GetDstAttr(src).length;
}

template <ContainerID CID>
template <typename T>
ErrorCode DropRowBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if (src == nullptr || dst == nullptr) {
        LogError("the input data is Invalid");
        return ERROR_BAD_VALUE;
    }
    const std::uint32_t length = src->Length();
    if (marked != nullptr) {
        if (marked->Marks()->Length() < length || (marked->Count() != 0 && marked->Largest() >= length)) {
            return ERROR_GENERAL;
        }
        CopyMarked(src, marked->Marks(), false, dst);
        return ERROR_NONE;
    }
    if (!listed->empty() && *listed->rbegin() >= length) {
        return ERROR_GENERAL;
    }
    DroppedRows rows(length);
    if (!rows.HasMarks()) {
        return ERROR_OUT_OF_MEMORY;
    }
    for (const std::uint32_t number : *listed) {
        rows.Add(number);
    }
    CopyMarked(src, rows.Marks(), false, dst);
    return ERROR_NONE;
}

template const UnaryTable<1> Unary<DropRowBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class DropRowBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
