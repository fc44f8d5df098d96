#pragma once

#include <memory>

#include "tessera/core/flat_call.h"
#include "tessera/grouping/groups.h"
#include "tessera/tessera.h"

namespace MERVO::Tessera {

struct ReleaseArray {
    void operator()(MERVO_TSR_GROUP_ARRAY* array) const { MERVO_TSR_ReleaseGroupArray(&array); }
};
using GroupArray = std::unique_ptr<MERVO_TSR_GROUP_ARRAY, ReleaseArray>;

/// Runs the body of a flat call that gives a record to the host; null where memory has run out, even for a table that
/// would say so.
template <typename Body>
MERVO_TSR_GROUP_ARRAY* GuardedArray(const char* call, Body&& body) noexcept
{
    GroupArray array;
    static_cast<void>(Guarded(call, [&]() -> ErrorCode {
        array = body();
        return ERROR_NONE;
    }));
    return array.release();
}

/// A record with room for that many tables, for a host; null, and the reason in the log under the name of the flat
/// call, for none or no memory.
GroupArray NewGroupArray(const char* call, std::uint32_t count);
/// Puts a table into a record's entry. False, and the reason in the log, without memory for it or if it has failed.
bool PutTable(const char* call, DataFrame&& table, MERVO_TSR_CONTEXT& entry);

/// A table for each group, for a host. Null, and the reason in the log under the name of the flat call, where there are
/// no groups or no memory.
GroupArray TablesOf(const char* call, const BaseGroups& groups);

} // namespace MERVO::Tessera
