#include "tessera/core/data_frame.h"

#include <new>
#include <utility>

#include "tessera/core/flat_call.h"
#include "tessera/core/window_bounds.h"

namespace MERVO::Tessera {
namespace {

constexpr unsigned int WHOLE_TABLE = 0xFFFFFFFFU;

DataFrame WithoutMemory()
{
    DataFrame failed;
    KeepNoMemory(failed);
    return failed;
}

/// The column of a number in a table of new ones. Throws std::bad_alloc.
SeriesPtr NewColumn(const SeriesAttr& attr, unsigned int number)
{
    SeriesPtr column = BuildSeries(attr, "col_" + std::to_string(number));
    if (IsValueType(attr.typeId) && IsContainer(attr.containerId) && column->GetIterator() == nullptr) {
        throw std::bad_alloc();
    }
    return column;
}

} // namespace

DataFrame::DataFrame(Columns&& columns)
{
    *series = std::move(columns);
    colIndex = {0, static_cast<unsigned int>(series->size())};
    rowIndex = {0, series->empty() || series->front() == nullptr ? 0 : series->front()->Size()};
    for (const SeriesPtr& column : *series) {
        if (column == nullptr || column->Size() != RowCount()) {
            SetError({ERROR_BAD_SHAPE, "series should have the same length"});
            return;
        }
    }
}

DataFrame::DataFrame(const DataFrame& other) : DataFrameRef() { CopyOrThrow(other); }

DataFrame::DataFrame(const DataFrameRef& other) { DeepCopy(other); }

DataFrame& DataFrame::operator=(const DataFrame& other)
{
    if (this != &other) {
        CopyOrThrow(other);
    }
    return *this;
}

/// A copy in a cell must not keep the failure to itself: the column would seem to be whole.
void DataFrame::CopyOrThrow(const DataFrame& other)
{
    DeepCopy(other);
    if (error.code == ERROR_OUT_OF_MEMORY && other.error.code == ERROR_NONE) {
        throw std::bad_alloc();
    }
}

DataFrame& DataFrame::operator=(DataFrame&& other) noexcept
{
    if (this != &other) {
        Error moved = std::move(other.error); // a copy could take memory
        ShareColumnsOf(other);
        error = std::move(moved);
    }
    return *this;
}

DataFrame& DataFrame::operator=(const DataFrameRef& other)
{
    if (this != &other) {
        DeepCopy(other);
    }
    return *this;
}

DataFrame& DataFrame::operator=(DataFrameRef&& other)
try {
    if (this == &other) {
        return *this;
    }
    if (!SharesColumnsWith(other) || other.RowCount() != RowCount()) {
        DeepCopy(other);
        return *this;
    }
    auto selected = std::make_shared<Columns>();
    selected->reserve(other.ColumnCount());
    ShallowCopy(other);
    for (unsigned int k = 0; k < other.ColumnCount(); ++k) {
        const std::size_t position = static_cast<std::size_t>(other.GetColIndex()[0]) + k;
        selected->push_back(position < series->size() ? std::move((*series)[position]) : nullptr);
    }
    series = std::move(selected);
    colIndex = {0, other.ColumnCount()};
    isColNameDirty = true;            // the positions in the slice's map are those of the old columns
    static_cast<void>(RefreshView()); // a failure is in the table
    return *this;
} catch (...) { // no memory
    KeepNoMemory(*this);
    return *this;
}

void DataFrame::ShallowCopy(const DataFrameRef& other)
{
    Error copied = other.GetError();
    ShareColumnsOf(other);
    error = std::move(copied);
}

DataFrameRef DataFrame::operator[](Range rows) const { return Slice(0U, rows); }

DataFrameRef DataFrame::operator[](unsigned int row) const
{
    return row == WHOLE_TABLE ? DataFrameRef::operator[](row) : Slice(0U, Range{row, row + 1});
}

DataFrame GetEmptyDataFrame(std::array<unsigned int, 2> shape, MERVO_TESSERA_TYPEID type)
try {
    DataFrame::Columns columns;
    columns.reserve(shape[1]);
    for (unsigned int c = 0; c < shape[1]; ++c) {
        columns.push_back(NewColumn({shape[0], CONTAINER_ARRAY, type}, c));
    }
    return DataFrame(std::move(columns));
} catch (...) { // no memory
    return WithoutMemory();
}

DataFrame GetEmptyDataFrame(const DataFrameRef& like)
try {
    if (IsFarBeyondColumns(like)) {
        DataFrame failed;
        failed.SetError({ERROR_BAD_VALUE, "The window is beyond the columns."});
        return failed;
    }
    DataFrame::Columns columns;
    columns.reserve(like.ColumnCount());
    for (unsigned int c = 0; c < like.ColumnCount(); ++c) {
        const SeriesPtr& column = like.GetColumn(c);
        const SeriesAttr attr = column == nullptr ? SeriesAttr{} : WithLength(column->GetAttr(), like.RowCount());
        columns.push_back(NewColumn(attr, c));
    }
    return DataFrame(std::move(columns));
} catch (...) { // no memory
    return WithoutMemory();
}

} // namespace MERVO::Tessera
