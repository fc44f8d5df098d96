#include "tessera/functors/table_combination.h"

namespace MERVO::Tessera::Func {

DataFrame FailedTable(ErrorCode code, const std::string& message)
{
    DataFrame failed;
    failed.SetError({code, message});
    return failed;
}

DataFrame TableWithoutMemory(const char* call)
{
    LogError("out of memory on %s", call);
    return FailedTable(ERROR_OUT_OF_MEMORY, std::string("out of memory on ") + call);
}

DataFrame CombineTables(const BinaryFactory& factory, const DataFrameRef& lhs, const DataFrameRef& rhs)
try {
    DataFrame result;
    const ErrorCode code = result.ApplyInplace(factory, lhs, rhs);
    return code == ERROR_NONE ? std::move(result) : FailedTable(code, "Error on executing operator");
} catch (...) { // no memory
    return TableWithoutMemory("a table operator");
}

} // namespace MERVO::Tessera::Func
