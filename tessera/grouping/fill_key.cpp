#include "tessera/grouping/fill_key.h"

#include "tessera/core/flat_call.h"
#include "tessera/functors/array_form.h"
#include "tessera/functors/gather.h"
#include "tessera/functors/missing_cell.h"

namespace MERVO::Tessera::Func {
namespace {

using Rows = std::vector<std::uint32_t>;

/// Whether each row is one of the left column, or missing there and one of the right column.
bool HaveRows(const Rows& left, std::uint32_t leftLength, const Rows& right, std::uint32_t rightLength)
{
    bool haveAll = true;
    for (std::size_t i = 0; i < left.size(); ++i) {
        haveAll &= left[i] == NO_ROW ? right[i] < rightLength : left[i] < leftLength;
    }
    return haveAll;
}

} // namespace

template <ContainerID CID>
std::string FillKeyBase<CID>::GetName() const
{
    return "FillKey";
}

template <ContainerID CID>
SeriesAttr FillKeyBase<CID>::GetDstAttr(const Cursor& lhs, const Cursor&) const
{
    return WithLength(lhs->GetAttr(), static_cast<std::uint32_t>(left.size()));
}

template <ContainerID CID>
bool FillKeyBase<CID>::CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    const MERVO_TESSERA_TYPEID type = dst->GetAttr().typeId;
    return lhs->GetAttr().typeId == type && rhs->GetAttr().typeId == type && dst->Length() == left.size() &&
        left.size() == right.size() &&
        (AreBelow(left, lhs->Length()) || HaveRows(left, lhs->Length(), right, rhs->Length()));
}

template <ContainerID CID>
template <typename T>
ErrorCode FillKeyBase<CID>::OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return Guarded("FillKey", [&]() -> ErrorCode {
        const ArrayForm leftKeys(lhs);
        const ArrayForm rightKeys(rhs);
        ArrayRoom result(dst);
        if (AreBelow(left, lhs->Length())) {
            Gather(leftKeys.Get(), left, result.Get());
        } else {
            GatherEither(leftKeys.Get(), left, rightKeys.Get(), right, result.Get());
        }
        result.Deliver();
        return ERROR_NONE;
    });
}

template const BinaryTable<1> Binary<FillKeyBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class FillKeyBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
