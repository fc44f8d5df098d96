#include "tessera/functors/comparison.h"

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/broadcast.h"
#include "tessera/functors/comparison_kernels.h"

namespace MERVO::Tessera::Func {
namespace Compare {
namespace {

ErrorCode CompareCells(Relation relation, const Cursor& lhs, const Cursor& rhs, const Cursor& dst)
{
    const ComparisonPlan plan = PlanFor(relation, lhs->GetAttr().typeId);
    if (plan.kernel == nullptr) {
        return ERROR_GENERAL;
    }
    if (lhs->Length() == 0 || rhs->Length() == 0) {
        return ERROR_NONE;
    }
    const Cursor& first = plan.isSwapped ? rhs : lhs;
    const Cursor& second = plan.isSwapped ? lhs : rhs;
    ForEachBlock(first, second, dst, {first->Length() == 1, second->Length() == 1},
        [&plan](const void* left, const void* right, void* result, std::uint32_t count) {
            plan.kernel(left, right, result, count);
            if (plan.isInverted) {
                auto* results = static_cast<bool*>(result);
                for (std::uint32_t i = 0; i < count; ++i) {
                    results[i] = !results[i];
                }
            }
        });
    return ERROR_NONE;
}

} // namespace

SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs)
{
    return WithType(Common::BroadcastAttr(lhs, rhs), TESSERA_BOOL);
}

bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst)
{
    return Common::CanBroadcast(lhs, rhs) && lhs->GetAttr().typeId == rhs->GetAttr().typeId &&
        dst->GetAttr().typeId == TESSERA_BOOL && dst->Length() == Common::BroadcastLength(lhs, rhs);
}

template <typename F, MutableArgs ARG>
std::string CompareCommon<F, ARG>::GetName() const
{
    return F::NAME;
}

template <typename F, MutableArgs ARG>
SeriesAttr CompareCommon<F, ARG>::GetDstAttr(const Cursor& lhs, const Cursor& rhs) const
{
    return Compare::GetDstAttr(lhs, rhs);
}

template <typename F, MutableArgs ARG>
bool CompareCommon<F, ARG>::CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return Compare::CheckParams(lhs, rhs, dst);
}

template <typename F, MutableArgs ARG>
template <typename T>
ErrorCode CompareCommon<F, ARG>::OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return CompareCells(F::RELATION, lhs, rhs, dst);
}

} // namespace Compare

template class Compare::CompareCommon<Equal<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
template const BinaryTable<1> Binary<Equal<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
template class Compare::CompareCommon<Greater<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
template const BinaryTable<1> Binary<Greater<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
template class Compare::CompareCommon<Less<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
template const BinaryTable<1> Binary<Less<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
template class Compare::CompareCommon<GreaterEqual<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
template const BinaryTable<1> Binary<GreaterEqual<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;
template class Compare::CompareCommon<LessEqual<CONTAINER_ARRAY>, MutableArgs::SOURCE>;
template const BinaryTable<1> Binary<LessEqual<CONTAINER_ARRAY>, MutableArgs::SOURCE>::transformTable;

} // namespace MERVO::Tessera::Func
