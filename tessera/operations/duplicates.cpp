#include <algorithm>
#include <array>
#include <new>
#include <numeric>
#include <utility>

#include "tessera/core/bit_bytes.h"
#include "tessera/core/data_frame.h"
#include "tessera/core/flat_call.h"
#include "tessera/core/window_bounds.h"
#include "tessera/functors/apply_nullary.h"
#include "tessera/functors/column_runs.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/functors/table_combination.h"
#include "tessera/operations/group_index.h"
#include "tessera/operations/repeated_rows.h"
#include "tessera/operations/sort_index.h"

namespace MERVO::Tessera {
namespace {

using Marks = std::vector<std::uint8_t>;
using Positions = std::vector<std::uint32_t>;

KeptRow KeptRowOf(const std::string& keep)
{
    return keep == "last" ? KeptRow::LAST : keep == "false" ? KeptRow::NONE : KeptRow::FIRST;
}

/// Cursors on all columns of a table; none where one gives no cursor, or is not compared by bits.
std::vector<Cursor> CursorsComparedByBits(const DataFrameRef& table)
{
    std::vector<Cursor> cursors;
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        cursors.push_back(table.GetSlicedIterator(table.GetColumn(k)));
        if (cursors.back() == nullptr || !IsComparedByBits(cursors.back())) {
            return {};
        }
    }
    return cursors;
}

/// Runs a functor over a table's columns without refreshing its names, which belong to another table as well.
bool RunOverColumns(DataFrame& table, const NullaryFactory& factory)
{
    const auto check = [&table](SeriesAttr& attr, const Cursor& cursor) -> ErrorCode {
        if (attr.containerId == cursor->GetAttr().containerId) {
            return ERROR_NONE;
        }
        table.SetError({ERROR_MIXED_CONTAINERS, "dst container type cannot be determinated"});
        return ERROR_MIXED_CONTAINERS;
    };
    return Func::ApplyNullaryCommon(factory, table, check) == ERROR_NONE;
}

/// Brings equal rows together by sorting, and marks those that equal the one before. Floating numbers that lie side by
/// side are equal within a tolerance, so only the order can tell which ones meet. None where the table has failed.
Marks MarksBySorting(DataFrame& table, KeptRow kept)
{
    bool ascending = true;
    bool sorted = true;
    Positions order(HasRows(table, table.GetColumn(0)) ? table.RowCount() : 0); // else the functor refuses
    std::iota(order.begin(), order.end(), 0U);
    using Sorting = Func::FunctorFactory<Func::SortIndex, Func::NullaryBase, Positions&, bool&, bool&>;
    if (!RunOverColumns(table, Sorting{order, ascending, sorted})) {
        return {};
    }
    if (kept == KeptRow::LAST) {
        std::reverse(order.begin(), order.end());
    }
    Marks boundaries(order.size());
    boundaries.front() = 1;
    using Comparing = Func::FunctorFactory<Func::GroupIndex, Func::NullaryBase, Marks&, Positions&>;
    if (!RunOverColumns(table, Comparing{boundaries, order})) {
        return {};
    }
    Marks marks(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        const bool isFollowed = kept == KeptRow::NONE && i + 1 < order.size() && boundaries[i + 1] == 0;
        marks[order[i]] = boundaries[i] == 0 || isFollowed ? 1 : 0;
    }
    return marks;
}

/// What SelectCol would copy, as columns that stay the table's, cut to its rows. Of a column that is given twice the
/// last place counts, as that one sorts last.
DataFrame Borrowed(const DataFrame& table, const DataFrame::Columns& columns, const Positions& subset)
{
    std::vector<bool> isTaken(columns.size());
    DataFrame::Columns borrowed;
    for (auto position = subset.rbegin(); position != subset.rend(); ++position) {
        if (*position >= columns.size() || Func::ContainerOf(columns[*position]) != CONTAINER_ARRAY) {
            return table.SelectCol(Positions{*position}); // it tells what is wrong with that
        }
        if (!isTaken[*position]) {
            borrowed.push_back(SeriesPtr(columns[*position].get(), {false}));
            isTaken[*position] = true;
        }
    }
    std::reverse(borrowed.begin(), borrowed.end());
    DataFrame result(std::move(borrowed));
    result.SetRowIndex(table.GetRowIndex());
    return result;
}

/// A column of bools, named as a loaded one.
DataFrame TableOfMarks(const Marks& marks)
{
    SeriesPtr column = BuildSeries({static_cast<std::uint32_t>(marks.size()), CONTAINER_ARRAY, TESSERA_BOOL}, "col_0");
    const Cursor cursor = column->GetIterator();
    if (cursor == nullptr || cursor->Length() != marks.size()) {
        throw std::bad_alloc();
    }
    BitPosition to = CursorAs<CONTAINER_ARRAY, bool>(cursor).mHead;
    std::array<bool, 512> block;
    for (std::size_t first = 0; first < marks.size();) {
        const std::size_t count = std::min(block.size(), marks.size() - first);
        std::transform(marks.data() + first, marks.data() + first + count, block.begin(),
            [](std::uint8_t mark) { return mark != 0; });
        PackBits(block.data(), to, static_cast<std::uint32_t>(count));
        to += static_cast<std::int64_t>(count);
        first += count;
    }
    DataFrame::Columns columns;
    columns.push_back(std::move(column));
    return DataFrame(std::move(columns));
}

} // namespace

std::vector<std::uint8_t> DataFrame::DropDuplicatesSubSet(DataFrame& columns, const std::string& keep)
{
    if (columns.GetError().code != ERROR_NONE || columns.RowCount() == 0) {
        return {};
    }
    try {
        const std::vector<Cursor> cursors = CursorsComparedByBits(columns);
        if (cursors.empty()) {
            return MarksBySorting(columns, KeptRowOf(keep));
        }
        Marks marks(columns.RowCount());
        MarkRepeats(cursors, KeptRowOf(keep), marks);
        return marks;
    } catch (...) {
        columns.SetError({ERROR_OUT_OF_MEMORY, "out of memory on DropDuplicatesSubSet"});
        return {};
    }
}

DataFrame DataFrame::Duplicated(const std::vector<std::uint32_t>& subset, const std::string& keep) const
{
    if (error.code != ERROR_NONE) {
        LogError("Invalid dataframe, error code is %d", error.code);
        return Func::FailedTable(error.code, error.message);
    }
    if (RowCount() == 0 || ColumnCount() == 0) {
        LogError("empty dataframe");
        return Func::FailedTable(ERROR_EMPTY_TABLE, "empty dataframe");
    }
    if (keep != "first" && keep != "last" && keep != "false") {
        LogError("Invalid keep");
        return Func::FailedTable(ERROR_BAD_VALUE, "Invalid keep");
    }
    try {
        DataFrame columns;
        if (subset.empty()) {
            columns.ShallowCopy(*this);
        } else {
            columns = Borrowed(*this, *series, subset);
        }
        const Marks marks = DropDuplicatesSubSet(columns, keep);
        const Error& failure = columns.GetError();
        return failure.code == ERROR_NONE ? TableOfMarks(marks) : Func::FailedTable(failure.code, failure.message);
    } catch (...) { // no memory, or more rows than a list has room for
        LogError("Duplicated create internal df failed.");
        return Func::FailedTable(ERROR_OUT_OF_MEMORY, "Duplicated create internal df failed.");
    }
}

ErrorCode DataFrame::DropDuplicatesInplace(const std::vector<std::uint32_t>& subset, const std::string& keep)
try {
    const DataFrame repeats = Duplicated(subset, keep);
    if (repeats.GetError().code != ERROR_NONE) {
        LogError("invalid dataframe while calling DropDuplicatesInplace: %d", repeats.GetError().code);
        return repeats.GetError().code;
    }
    const ErrorCode code = DropRowInplace(repeats);
    if (code != ERROR_NONE) {
        LogError("Drop duplicates failed");
    }
    return code;
} catch (...) { // no memory
    return TellNoMemory("DropDuplicatesInplace");
}

DataFrame DataFrame::DropDuplicatesOutplace(const std::vector<std::uint32_t>& subset, const std::string& keep) const
try {
    DataFrame result;
    result.ShallowCopy(*this); // dropping makes new columns
    const ErrorCode code = result.DropDuplicatesInplace(subset, keep);
    if (code != ERROR_NONE) {
        return Func::FailedTable(code, "Drop duplicates failed");
    }
    return result;
} catch (...) { // no memory
    return Func::TableWithoutMemory("DropDuplicatesOutplace");
}

} // namespace MERVO::Tessera
