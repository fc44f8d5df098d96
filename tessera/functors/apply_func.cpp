#include "tessera/functors/apply_func.h"

#include <algorithm>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/element_walk.h"

namespace MERVO::Tessera::Func {

template <ContainerID CID, typename CALLABLE>
std::string ApplyFunc<CID, CALLABLE>::GetName() const
{
    return "ApplyFunc";
}

template <ContainerID CID, typename CALLABLE>
SeriesAttr ApplyFunc<CID, CALLABLE>::GetDstAttr(const Cursor& src) const
{
    return WithType(src->GetAttr(), TESSERA_BOOL);
}

template <ContainerID CID, typename CALLABLE>
bool ApplyFunc<CID, CALLABLE>::CheckParams(const Cursor& src, const Cursor& dst) const
{
    if (step == nullptr) {
        LogError("calling empty call back is risky.");
        return false;
    }
    return dst->Length() == src->Length() && src->GetAttr().typeId == TESSERA_BOOL &&
        dst->GetAttr().typeId == TESSERA_BOOL;
}

template <ContainerID CID, typename CALLABLE>
template <typename T>
ErrorCode ApplyFunc<CID, CALLABLE>::OnExecute(const Cursor& src, const Cursor& dst) const
{
    if constexpr (std::is_same_v<T, bool>) {
        AnyPlace<bool> from(src);
        AnyPlace<bool> to(dst);
        const std::uint32_t count = std::min(src->Length(), dst->Length());
        bool accumulator = count != 0 && *to;
        std::uint32_t codes = 0; // codes of any size may come, and their sum may wrap
        for (std::uint32_t i = 0; i < count; ++i, ++from, ++to) {
            codes += static_cast<std::uint32_t>(step(accumulator, *from));
            *to = accumulator;
        }
        return static_cast<ErrorCode>(codes);
    } else {
        return ERROR_GENERAL;
    }
}

template class ApplyFunc<CONTAINER_ARRAY, BoolStep&>;
template const UnaryTable<1> Unary<ApplyFunc<CONTAINER_ARRAY, BoolStep&>, MutableArgs::SOURCE>::transformTable;

} // namespace MERVO::Tessera::Func
