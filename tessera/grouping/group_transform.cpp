#include "tessera/grouping/group_transform.h"

#include <algorithm>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/core/flat_call.h"
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
        auto begin = begins.begin();
        WithPlaces<T>(dst, [&](auto to, auto) {
            ForEachElement<T>(src, [&](const auto& element) {
                if (begins.end() - begin < 2) {
                    return;
                }
                const T& value = element;
                for (std::uint32_t count = begin[1] - begin[0]; count != 0; --count, ++to) {
                    *to = value;
                }
                ++begin;
            });
        });
        return ERROR_NONE;
    });
}

template const UnaryTable<1> Unary<GroupTransformBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class GroupTransformBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
