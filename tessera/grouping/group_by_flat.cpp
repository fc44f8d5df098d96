#include <vector>

#include "tessera/core/handles.h"
#include "tessera/grouping/group_array.h"

using namespace MERVO::Tessera;

MERVO_TSR_GROUP_ARRAY* MERVO_TSR_GroupBy(MERVO_TSR_CONTEXT* table, const uint32_t* keys, uint32_t keyCount)
{
    constexpr const char* CALL = "MERVO_TSR_GroupBy";
    if (keys == nullptr || keyCount == 0) {
        LogError("[%s] Input is nullptr", CALL);
        return nullptr;
    }
    if (!CheckDataFrame(table)) {
        LogError("[%s] Input is nullptr checking data frame", CALL);
        return nullptr;
    }
    return GuardedArray(
        CALL, [&] { return TablesOf(CALL, table->dataFrame->GroupBy(keyCount, keys, true, false, true)); });
}

void MERVO_TSR_ReleaseGroupArray(MERVO_TSR_GROUP_ARRAY** array)
{
    if (array == nullptr || *array == nullptr) {
        LogError("[MERVO_TSR_ReleaseGroupArray] Input is nullptr");
        return;
    }
    for (uint32_t i = 0; (*array)->entries != nullptr && i < (*array)->count; ++i) {
        delete (*array)->entries[i].dataFrame;
    }
    delete[](*array)->entries;
    delete *array;
    *array = nullptr;
}
