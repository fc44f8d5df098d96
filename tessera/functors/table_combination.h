#pragma once

#include "tessera/core/data_frame.h"
#include "tessera/core/flat_call.h"

namespace MERVO::Tessera::Func {

/// A new table of what a binary functor makes of two tables; one that holds the failure's code and "Error on executing
/// operator" where that fails.
DataFrame CombineTables(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs);

/// A table that holds a failure and nothing else.
DataFrame FailedTable(ErrorCode code, const std::string& message);

/// What an operation gives that ran out of memory or room: a table with code 3. `call` is its name, for the message.
DataFrame TableWithoutMemory(const char* call);

/// The table that `make` gives; code 3 where memory or room is short. What a host's functor throws is passed on.
/// @param call the name of the operation, for the message.
template <typename Make>
DataFrame GuardedTable(const char* call, Make&& make)
{
    try {
        return make();
    } catch (...) {
        PassOnAllButNoMemory();
        return TableWithoutMemory(call);
    }
}

} // namespace MERVO::Tessera::Func
