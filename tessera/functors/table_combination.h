#pragma once

#include "tessera/core/data_frame.h"

namespace MERVO::Tessera::Func {

/// A new table of what a binary functor makes of two tables; one that holds the failure's code and "Error on executing
/// operator" where that fails.
DataFrame CombineTables(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs);

/// A table that holds a failure and nothing else.
DataFrame FailedTable(ErrorCode code, const std::string& message);

} // namespace MERVO::Tessera::Func
