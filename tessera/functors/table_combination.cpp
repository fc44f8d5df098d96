#include "tessera/functors/table_combination.h"

namespace MERVO::Tessera::Func {

DataFrame FailedTable(ErrorCode code, const std::string& message)
{
    DataFrame failed;
    failed.SetError({code, message});
    return failed;
}

DataFrame CombineTables(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs)
{
    DataFrame result;
    const ErrorCode code = result.ApplyInplace(factory, lhs, rhs);
    return code == ERROR_NONE ? std::move(result) : FailedTable(code, "Error on executing operator");
}

} // namespace MERVO::Tessera::Func
