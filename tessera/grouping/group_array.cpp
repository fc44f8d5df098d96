#include "tessera/grouping/group_array.h"

#include <new>
#include <utility>

#include "tessera/functors/table_combination.h"

namespace MERVO::Tessera {

GroupArray NewGroupArray(const char* call, std::uint32_t count)
{
    GroupArray array(new (std::nothrow) MERVO_TSR_GROUP_ARRAY{});
    if (array == nullptr) {
        LogError("[%s] Initialize groupby failed", call);
        return nullptr;
    }
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
    return array;
}

bool PutTable(const char* call, DataFrame&& table, MERVO_TSR_CONTEXT& entry)
{
    const bool isWhole = table.GetError().code == ERROR_NONE;
    entry.dataFrame = isWhole ? new (std::nothrow) DataFrame(std::move(table)) : nullptr;
    if (entry.dataFrame == nullptr) {
        LogError("[%s] Create MERVO_TSR_CONTEXT dataframe failed", call);
    }
    return entry.dataFrame != nullptr;
}

GroupArray TablesOf(const char* call, const BaseGroups& groups)
{
    const std::uint32_t count = groups.GetGroupNum();
    GroupArray array = NewGroupArray(call, count);
    for (std::uint32_t group = 0; array != nullptr && group < count; ++group) {
        DataFrame table = Func::GuardedTable(call, [&] { return groups.CopyGroup(group); });
        if (!PutTable(call, std::move(table), array->entries[group])) {
            return nullptr;
        }
    }
    return array;
}

} // namespace MERVO::Tessera
