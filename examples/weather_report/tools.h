#pragma once

#include <string>
#include <vector>

#include "tessera/tessera.hpp"

// What the sections of the report share.
namespace Report {

using namespace MERVO::Tessera;

/// A report on half the data is worse than none.
void StopOnFailure(ErrorCode code, const std::string& what);

DataFrame ReadTable(const std::string& path, const DataFrame::Types& types);
void WriteTable(const DataFrame& table, const std::string& path);

/// What an operation makes of a table.
template <template <ContainerID, typename...> class OPERATION, typename... Arguments>
DataFrame Compute(const DataFrameRef& table, Arguments... arguments)
{
    DataFrame result;
    const Func::FunctorFactory<OPERATION, Func::UnaryBase, Arguments...> operation{arguments...};
    StopOnFailure(result.ApplyInplace(operation, table), "a computation");
    return result;
}

/// One value, which meets every cell of a table on its left.
template <typename T>
DataFrame Constant(const T& value)
{
    DataFrame constant;
    StopOnFailure(constant.ReadVector<T>({value}, {1, 1}), "making a constant");
    return constant;
}

/// How many cells of each column of a table of bools are true.
std::vector<std::int64_t> CountTrue(const DataFrame& marks);

template <typename T>
SeriesPtr MakeColumn(const std::string& name, const std::vector<T>& values)
{
    SeriesPtr column = BuildSeries({static_cast<std::uint32_t>(values.size()), CONTAINER_ARRAY, TYPE_ID_OF<T>}, name);
    const Cursor cursor = column->GetIterator();
    for (std::uint32_t i = 0; i < values.size(); ++i) {
        SetValueToIterator<T>(cursor, values[i], i);
    }
    return column;
}

/// The cells of a table of doubles, row by row, as one column.
SeriesPtr MakeColumn(const std::string& name, const DataFrameRef& cells);

/// One row per column of a table of doubles: how many values, statistics without the missing ones, and the row of the
/// largest. Only the range does not pass over missing values: it is NaN then.
DataFrame::Columns Summarize(const DataFrameRef& numbers);

} // namespace Report
