#include "tessera/grouping/group_array.h"

#include <new>
#include <utility>

namespace MERVO::Tessera {
namespace {

/// A table on the heap; null without memory for it or its cells.
std::unique_ptr<DataFrame> TableOf(const BaseGroups& groups, std::uint32_t group)
{
    try {
        auto table = std::make_unique<DataFrame>(groups.CopyGroup(group));
        return table->GetError().code == ERROR_NONE ? std::move(table) : nullptr;
    } catch (...) {
        return nullptr;
    }
}

} // namespace

GroupArray TablesOf(const char* call, const BaseGroups& groups)
{
    GroupArray array(new (std::nothrow) MERVO_TSR_GROUP_ARRAY{});
    if (array == nullptr) {
        LogError("[%s] Initialize groupby failed", call);
        return nullptr;
    }
    const std::uint32_t count = groups.GetGroupNum();
    if (count == 0) {
        LogError("[%s] Groupby length is zero", call);
        return nullptr;
    }
    array->entries = new (std::nothrow) MERVO_TSR_CONTEXT[count]();
    if (array->entries == nullptr) {
        LogError("[%s] Create MERVO_TSR_CONTEXT failed", call);
        return nullptr;
    }
    array->count = count;
    for (std::uint32_t group = 0; group < count; ++group) {
        array->entries[group].dataFrame = TableOf(groups, group).release();
        if (array->entries[group].dataFrame == nullptr) {
            LogError("[%s] Create MERVO_TSR_CONTEXT dataframe failed", call);
            return nullptr;
        }
    }
    return array;
}

} // namespace MERVO::Tessera
