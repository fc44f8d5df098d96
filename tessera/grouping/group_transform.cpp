#include "tessera/grouping/group_transform.h"

#include <algorithm>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/flat_call.h"
#include "tessera/functors/array_form.h"
#include "tessera/functors/element_walk.h"

namespace MERVO::Tessera::Func {

template <ContainerID CID>
std::string GroupTransformBase<CID>::GetName() const
{
    return "GroupTransform";
}

template <ContainerID CID>
SeriesAttr GroupTransformBase<CID>::GetDstAttr(const Cursor& src) const
{
    return WithLength(src->GetAttr(), begins.empty() ? 0 : begins.back());
}

template <ContainerID CID>
bool GroupTransformBase<CID>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    return src->GetAttr().typeId == dst->GetAttr().typeId && begins.size() >= 2 && dst->Length() == begins.back() &&
        std::is_sorted(begins.begin(), begins.end());
}

template <ContainerID CID>
template <typename T>
ErrorCode GroupTransformBase<CID>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    return Guarded("GroupTransform", [&]() -> ErrorCode {
        const ArrayForm source(src);
        const auto& values = CursorAs<CONTAINER_ARRAY, T>(source.Get());
        WithPlaces<T>(dst, [&](auto to, auto) {
            auto place = values.mHead;
            for (auto begin = begins.begin(); begins.end() - begin > 1 && place != values.mTail; ++begin, ++place) {
                const T& value = *place;
                for (std::uint32_t count = begin[1] - begin[0]; count != 0; --count, ++to) {
                    *to = value;
                }
            }
        });
        return ERROR_NONE;
    });
}

template const UnaryTable<1> Unary<GroupTransformBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class GroupTransformBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
