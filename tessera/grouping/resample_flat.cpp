#include "tessera/core/date_time.h"
#include "tessera/core/handles.h"
#include "tessera/grouping/group_array.h"
#include "tessera/grouping/samples.h"

using namespace MERVO::Tessera;

MERVO_TSR_GROUP_ARRAY* MERVO_TSR_Resample(
    MERVO_TSR_CONTEXT* table, uint32_t timeColumn, int32_t gapSeconds, bool labelLeft, bool closedLeft)
{
    constexpr const char* CALL = "MERVO_TSR_Resample";
    if (!CheckDataFrame(table)) {
        LogError("[%s] Input is nullptr", CALL);
        return nullptr;
    }
    return GuardedArray(CALL, [&] {
        return TablesOf(CALL, table->dataFrame->Resample(timeColumn, DateTime(gapSeconds), labelLeft, closedLeft));
    });
}
