#include <array>
#include <utility>

#include "tessera/core/handles.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/functors/table_combination.h"
#include "tessera/grouping/group_array.h"
#include "tessera/numeric/dispersion.h"
#include "tessera/numeric/extrema.h"
#include "tessera/numeric/mean.h"
#include "tessera/numeric/sum.h"

using namespace MERVO::Tessera;

namespace {

constexpr const char* CALL = "MERVO_TSR_GroupBy_Transform";

using Func::FunctorFactory;
using Func::UnaryBase;
using Transformation = DataFrame (*)(const Groups& groups);

/// By their numbers in the flat call.
constexpr std::array<Transformation, 5> TRANSFORMATIONS = {
    [](const Groups& groups) { return groups.Transform(FunctorFactory<Func::Max, UnaryBase>()); },
    [](const Groups& groups) { return groups.Transform(FunctorFactory<Func::Min, UnaryBase>()); },
    [](const Groups& groups) { return groups.Transform(FunctorFactory<Func::Std, UnaryBase>()); },
    [](const Groups& groups) { return groups.Transform(FunctorFactory<Func::Sum, UnaryBase>()); },
    [](const Groups& groups) { return groups.Transform(FunctorFactory<Func::Mean, UnaryBase>()); },
};

DataFrame TransformBy(std::uint32_t functor, const Groups& groups)
{
    if (functor >= TRANSFORMATIONS.size()) {
        LogError("[%s] Invalid Functor", CALL);
        return Func::FailedTable(ERROR_BAD_KIND, "[MERVO_TSR_GroupBy_Transform] Invalid Functor");
    }
    return TRANSFORMATIONS[functor](groups);
}

} // namespace

MERVO_TSR_GROUP_ARRAY* MERVO_TSR_GroupBy_Transform(
    MERVO_TSR_CONTEXT* table, const uint32_t* keys, uint32_t keyCount, uint32_t functor)
{
    if (keys == nullptr || keyCount == 0) {
        LogError("[%s] Input is nullptr", CALL);
        return nullptr;
    }
    if (!CheckDataFrame(table)) {
        LogError("[%s] Input is nullptr after checking dataframe", CALL);
        return nullptr;
    }
    return GuardedArray(CALL, [&]() -> GroupArray {
        DataFrame transformed = Func::GuardedTable(
            CALL, [&] { return TransformBy(functor, table->dataFrame->GroupBy(keyCount, keys, true, false, true)); });
        if (transformed.GetError().code != ERROR_NONE) {
            LogError("[%s] Transform operation failed", CALL);
            return nullptr;
        }
        GroupArray array = NewGroupArray(CALL, 1);
        const bool isWhole = array != nullptr && PutTable(CALL, std::move(transformed), array->entries[0]);
        return isWhole ? std::move(array) : nullptr;
    });
}
