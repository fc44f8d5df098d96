#include <vector>

#include "tessera/core/data_frame.h"
#include "tessera/functors/column_runs.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/functors/table_combination.h"
#include "tessera/operations/select_row.h"
#include "tessera/operations/unique.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::vector<std::uint32_t>;

/// What speaks against looking for the distinct values of a table's column.
Error Refusal(const DataFrameRef& table, std::uint32_t column)
{
    if (table.GetError().code != ERROR_NONE) {
        LogError("invalid dataframe %d", table.GetError().code);
        return table.GetError();
    }
    if (table.ColumnCount() == 0) {
        LogError("there is no cols in dataframe");
        return {ERROR_EMPTY_TABLE, "there is no cols in dataframe"};
    }
    if (table.RowCount() == 0) {
        LogError("there is no rows in dataframe");
        return {ERROR_EMPTY_TABLE, "there is no rows in dataframe"};
    }
    if (column >= table.ColumnCount()) {
        LogError("invalid input param colIndex %d", static_cast<int>(column));
        return {ERROR_BAD_VALUE, "invalid input param colIndex"};
    }
    return {};
}

DataFrame DistinctCells(const DataFrameRef& table, std::uint32_t position)
{
    const DataFrameRef window = table.Slice(1U, DataFrameRef::Range{position, position + 1});
    const SeriesPtr& column = window.GetColumn(0);
    Positions index;
    const Func::FunctorFactory<Func::Unique, Func::NullaryBase, Positions&> make(index);
    const Error outcome = make(Func::ContainerOf(column))->ProcessSeries(window.GetSlicedIterator(column));
    if (outcome.code != ERROR_NONE) {
        return Func::FailedTable(outcome.code, outcome.message);
    }
    if (index.size() == window.RowCount()) {
        return DataFrame(window);
    }
    DataFrame result;
    using RowSelection = Func::FunctorFactory<Func::SelectRow, Func::UnaryBase, const Positions&>;
    static_cast<void>(result.ApplyInplace(RowSelection{index}, window)); // the result holds the code
    return result;
}

} // namespace

DataFrame DataFrameRef::Unique(std::uint32_t column) const
{
    const Error refusal = Refusal(*this, column);
    if (refusal.code != ERROR_NONE) {
        return Func::FailedTable(refusal.code, refusal.message);
    }
    try {
        return DistinctCells(*this, column);
    } catch (...) { // no memory, or more rows than a list has room for
        return Func::FailedTable(ERROR_OUT_OF_MEMORY, "out of memory on Unique");
    }
}

} // namespace MERVO::Tessera
