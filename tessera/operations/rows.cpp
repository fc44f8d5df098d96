#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "tessera/functors/functor_factory.h"
#include "tessera/functors/table_combination.h"
#include "tessera/operations/bool_filter.h"
#include "tessera/operations/chosen_rows.h"
#include "tessera/operations/drop_row.h"
#include "tessera/operations/dropped_rows.h"
#include "tessera/operations/row_filter.h"
#include "tessera/operations/select_row.h"

namespace MERVO::Tessera {
namespace {

using Func::FailedTable;

/// Of columns in lists, which functors don't serve.
constexpr const char* CONTAINER_CHANGED = "the container type is changed";

/// A table of columns like those of another, without rows. Their containers are all that a filtering asks of it.
DataFrame WithoutRows(const DataFrameRef& table)
{
    DataFrameRef window(table);
    window.SetRowIndex({0, 0});
    return GetEmptyDataFrame(window);
}

/// The rows whose mark in a filter of one column is as wanted; none where the functors have to see to it.
std::optional<DataFrame> FilteredAtOnce(const DataFrame& table, const DataFrame& filter, bool wanted)
{
    const Cursor marks = filter.GetSlicedIterator(filter.GetColumn(0));
    const bool areBits = marks != nullptr && marks->IsMemoryContiguous() && marks->GetAttr().typeId == TESSERA_BOOL;
    return areBits ? RowsMarked(table, marks, wanted) : std::nullopt;
}

DataFrame FilterRows(const DataFrame& table, const DataFrame& filter, bool wanted, const BinaryFactory& factory,
    const FilterTexts& texts)
{
    const bool fits = filter.ColumnCount() == 1 && filter.RowCount() == table.RowCount();
    const Error refusal = FilterRefusal(table, filter, fits, table.GetError().code, texts);
    if (refusal.code != ERROR_NONE) {
        return FailedTable(refusal.code, refusal.message);
    }
    if (std::optional<DataFrame> rows = FilteredAtOnce(table, filter, wanted)) {
        return std::move(*rows);
    }
    DataFrame result = WithoutRows(table);
    const ErrorCode code = result.ApplyInplace(factory, filter, table);
    if (code == ERROR_BAD_KIND) { // which the apply has told only the log
        result.SetError({code, filter.Type() == TESSERA_BOOL ? CONTAINER_CHANGED : texts.refusal});
    } else if (code == ERROR_NONE && table.ColumnCount() == 1) {
        result.SetColumnName(table.GetColumnName()); // against one column, the filter counts as the first operand
    }
    return result;
}

DataFrame Applied(const UnaryFactory& factory, const DataFrame& table)
{
    DataFrame result;
    const ErrorCode code = result.ApplyInplace(factory, table);
    if (code == ERROR_BAD_KIND) { // which the apply has told only the log
        return FailedTable(code, CONTAINER_CHANGED);
    }
    return result;
}

} // namespace

DataFrame DataFrame::SelectRow(const DataFrame& boolFilter) const
try {
    constexpr FilterTexts TEXTS{"Invalid dataframe %d while selecting row for DataFrame",
        "Invalid boolFilter %d while selecting row", "Select row shape mismatch, boolFilter[%d, %d], this[%d, %d]",
        "SelectRow received invalid bool dataframe."};
    return FilterRows(*this, boolFilter, true, Func::FunctorFactory<Func::SelectRowByBool, Func::BinaryBase>{}, TEXTS);
} catch (...) { // no memory
    return Func::TableWithoutMemory("SelectRow");
}

DataFrame DataFrame::DropRow(const DataFrame& boolFilter) const
try {
    constexpr FilterTexts TEXTS{"Invalid dataframe %d while dropping row", "Invalid boolFilter %d while dropping row",
        nullptr, "DropNan received invalid bool dataframe."};
    return FilterRows(*this, boolFilter, false, Func::FunctorFactory<Func::DropRowByBool, Func::BinaryBase>{}, TEXTS);
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropRow");
}

DataFrame DataFrame::SelectRow(const std::vector<std::uint32_t>& index) const
try {
    if (error.code != ERROR_NONE) {
        LogError("Invalid dataframe %d while selecting row for vector", error.code);
        return FailedTable(error.code, error.message);
    }
    if (RowCount() == 0) {
        return FailedTable(ERROR_EMPTY_TABLE, "selecting row on an empty dataframe.");
    }
    if (std::optional<DataFrame> rows = RowsAt(*this, index)) {
        return std::move(*rows);
    }
    using Factory = Func::FunctorFactory<Func::SelectRow, Func::UnaryBase, const std::vector<std::uint32_t>&>;
    return Applied(Factory{index}, *this);
} catch (...) { // no memory
    return Func::TableWithoutMemory("SelectRow");
}

DataFrame DataFrame::DropRow(const std::vector<std::uint32_t>& index) const
try {
    if (error.code != ERROR_NONE) {
        LogError("Invalid dataframe on drop row %d", error.code);
        return FailedTable(error.code, error.message);
    }
    if (RowCount() == 0) {
        return FailedTable(ERROR_EMPTY_TABLE, "dropping row on an empty dataframe.");
    }
    if (index.empty()) {
        return DataFrame(*this);
    }
    const SeriesPtr& first = GetColumn(0);
    const std::uint32_t size = first == nullptr ? 0 : first->Size();
    const std::uint32_t largest = *std::max_element(index.begin(), index.end());
    if (largest >= size) {
        return FailedTable(ERROR_OUT_OF_RANGE, "Invalid series index:" + std::to_string(largest));
    }
    DroppedRows rows(size);
    if (!rows.HasMarks()) {
        return FailedTable(ERROR_OUT_OF_MEMORY, "out of memory on dropping rows");
    }
    for (const std::uint32_t row : index) {
        rows.Add(row);
    }
    return Applied(Func::FunctorFactory<Func::DropRow, Func::UnaryBase, const DroppedRows&>{rows}, *this);
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropRow");
}

ErrorCode DataFrame::SelectRowInplace(const DataFrame& boolFilter)
{
    *this = SelectRow(boolFilter);
    return error.code;
}

ErrorCode DataFrame::SelectRowInplace(const std::vector<std::uint32_t>& index)
{
    *this = SelectRow(index);
    return error.code;
}

ErrorCode DataFrame::DropRowInplace(const DataFrame& boolFilter)
{
    *this = DropRow(boolFilter);
    return error.code;
}

ErrorCode DataFrame::DropRowInplace(const std::vector<std::uint32_t>& index)
{
    *this = DropRow(index);
    return error.code;
}

} // namespace MERVO::Tessera
