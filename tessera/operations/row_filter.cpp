#include "tessera/operations/row_filter.h"

#include <algorithm>

#include "tessera/core/bit_scan.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/element_walk.h"
#include "tessera/operations/marked_cells.h"

namespace MERVO::Tessera::Func {
namespace {

bool IsBool(const Cursor& cursor) { return cursor->GetAttr().typeId == TESSERA_BOOL; }

std::uint32_t CountSet(const Cursor& filter)
{
    if (filter->IsMemoryContiguous()) {
        const auto& bits = CursorAs<CONTAINER_ARRAY, bool>(filter);
        return CountBits(bits.mHead, bits.mTail);
    }
    std::uint32_t count = 0;
    ForEachElement<bool>(filter, [&count](bool isSet) { count += isSet ? 1 : 0; });
    return count;
}

} // namespace

SeriesAttr RowFilter::GetDstAttr(
    const Cursor& filter, const Cursor& src, bool wanted, const char* refusal, std::uint32_t& goingRows)
{
    if (!IsBool(filter)) {
        LogError("%s", refusal);
        return {0, NO_CONTAINER, TESSERA_INVALID};
    }
    const std::uint32_t set = CountSet(filter);
    goingRows = wanted ? filter->Length() - set : set;
    const SeriesAttr attr = src->GetAttr();
    return WithLength(attr, attr.length - std::min(attr.length, goingRows));
}

bool RowFilter::CheckParams(const Cursor& filter, const Cursor& src, const Cursor& dst, std::uint32_t goingRows)
{
    return (IsBool(filter) || filter->GetAttr().typeId == TESSERA_UINT32) &&
        src->GetAttr().typeId == dst->GetAttr().typeId &&
        std::uint64_t{goingRows} + dst->Length() == std::uint64_t{src->Length()};
}

ErrorCode RowFilter::Execute(const Cursor& filter, const Cursor& src, bool wanted, const Cursor& dst)
{
    if (!IsBool(filter)) {
        return ERROR_GENERAL;
    }
    CopyMarked(src, filter, wanted, dst);
    return ERROR_NONE;
}

template <ContainerID CID>
std::string SelectRowByBool<CID>::GetName() const
{
    return "SelectRowByBool";
}

template <ContainerID CID>
SeriesAttr SelectRowByBool<CID>::GetDstAttr(const Cursor& filter, const Cursor& src) const
{
    return RowFilter::GetDstAttr(filter, src, true, "lhs should be TESSERA_BOOL Type in select row", goingRows);
}

template <ContainerID CID>
bool SelectRowByBool<CID>::CheckParams(const Cursor& filter, const Cursor& src, const Cursor& dst) const
{
    return RowFilter::CheckParams(filter, src, dst, goingRows);
}

template <ContainerID CID>
template <typename T>
ErrorCode SelectRowByBool<CID>::OnExecute(const Cursor& filter, const Cursor& src, const Cursor& dst) const
{
    return RowFilter::Execute(filter, src, true, dst);
}

template <ContainerID CID>
std::string DropRowByBool<CID>::GetName() const
{
    return "DropRowByBool";
}

template <ContainerID CID>
SeriesAttr DropRowByBool<CID>::GetDstAttr(const Cursor& filter, const Cursor& src) const
{
    return RowFilter::GetDstAttr(filter, src, false, "lhs should be TESSERA_BOOL Type in drop row", goingRows);
}

template <ContainerID CID>
bool DropRowByBool<CID>::CheckParams(const Cursor& filter, const Cursor& src, const Cursor& dst) const
{
    return RowFilter::CheckParams(filter, src, dst, goingRows);
}

template <ContainerID CID>
template <typename T>
ErrorCode DropRowByBool<CID>::OnExecute(const Cursor& filter, const Cursor& src, const Cursor& dst) const
{
    return RowFilter::Execute(filter, src, false, dst);
}

template class SelectRowByBool<CONTAINER_ARRAY>;
template const BinaryTable<1> Binary<SelectRowByBool<CONTAINER_ARRAY>, MutableArgs::SECOND>::transformTable;
template class DropRowByBool<CONTAINER_ARRAY>;
template const BinaryTable<1> Binary<DropRowByBool<CONTAINER_ARRAY>, MutableArgs::SECOND>::transformTable;

} // namespace MERVO::Tessera::Func
