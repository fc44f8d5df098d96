#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

#include "tessera/core/data_frame.h"
#include "tessera/core/flat_call.h"
#include "tessera/core/raw_texts.h"
#include "tessera/core/window_bounds.h"
#include "tessera/functors/column_runs.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/operations/row_permutation.h"
#include "tessera/operations/select_row.h"
#include "tessera/operations/sort_index.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::vector<std::uint32_t>;
using RowSelection = Func::FunctorFactory<Func::SelectRow, Func::UnaryBase, const Positions&>;

/// Cursors on a window's columns; none where a column is no array, or gives no cursor.
std::vector<Cursor> CursorsOnArrays(const DataFrameRef& table)
{
    std::vector<Cursor> cursors;
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        cursors.push_back(table.GetSlicedIterator(table.GetColumn(k)));
        if (cursors.back() == nullptr || !cursors.back()->IsMemoryContiguous()) {
            return {};
        }
    }
    return cursors;
}

/// Reorders a column of short texts in place; false for any other one, which stays as it is.
bool AreReorderedShortTexts(const Cursor& cells, const RowPermutation& rows)
{
    return cells->GetAttr().typeId == TESSERA_STRING &&
        rows.ReorderShortTexts(CursorAs<CONTAINER_ARRAY, std::string>(cells).mHead);
}

SeriesPtr MovedTexts(const SeriesPtr& column, const Cursor& cells, const RowPermutation& rows)
{
    if (!CanForgetTexts(*column)) {
        return nullptr;
    }
    RawTexts moved = BuildRawTexts(cells->Length(), column->GetName());
    if (moved.column != nullptr) {
        rows.MoveTexts(CursorAs<CONTAINER_ARRAY, std::string>(cells).mHead, moved.cells);
        ForgetTexts(*column);
    }
    return std::move(moved.column);
}

/// A new column in place of one that is wholly under a cursor; null without memory.
SeriesPtr MovedColumn(const SeriesPtr& column, const Cursor& cells, const RowPermutation& rows)
{
    try {
        if (cells->GetAttr().typeId == TESSERA_STRING) {
            return MovedTexts(column, cells, rows);
        }
        SeriesPtr moved = BuildSeries(column->GetAttr(), column->GetName());
        const Cursor cursor = moved->GetIterator();
        if (cursor != nullptr && cursor->Length() == cells->Length()) {
            rows.MoveInto(cells, cursor);
            return moved;
        }
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return nullptr;
}

} // namespace

Error DataFrameRef::PermuteRows(const Positions& positions)
{
    const bool isOwner = dynamic_cast<DataFrame*>(this) != nullptr;
    const bool isWhole = isOwner && ColumnCount() == series->size() &&
        std::all_of(series->begin(), series->end(),
            [this](const SeriesPtr& column) { return column != nullptr && column->Size() == RowCount(); });
    const std::vector<Cursor> cursors = CursorsOnArrays(*this);
    if (error.code != ERROR_NONE || cursors.size() != ColumnCount() || isOwner != isWhole) {
        return PermuteBySelection(positions, isOwner);
    }
    RowPermutation rows(positions);
    if (rows.KeepsAll()) {
        return {};
    }
    for (unsigned int k = 0; k < ColumnCount(); ++k) {
        // From here on nothing may fail: some columns have the new order already.
        if (AreReorderedShortTexts(cursors[k], rows)) {
            continue;
        }
        SeriesPtr moved = isOwner ? MovedColumn(GetColumn(k), cursors[k], rows) : nullptr;
        if (moved == nullptr) {
            rows.ReorderInPlace(cursors[k]);
        } else {
            (*series)[k] = std::move(moved);
        }
    }
    return {};
}

/// The general form: all columns are made anew before one is replaced.
Error DataFrameRef::PermuteBySelection(const Positions& positions, bool isOwner)
{
    if (!isOwner) {
        DataFrameRef window(*this); // a failure is stored there
        const ErrorCode code = window.ApplyInplace(RowSelection{positions}, *this);
        return {code, window.GetError().message};
    }
    DataFrame result;
    const ErrorCode code = result.ApplyInplace(RowSelection{positions}, *this);
    if (code == ERROR_NONE) {
        *series = std::move(*static_cast<DataFrameRef&>(result).series);
        isColNameDirty = true;
        RefreshShape();
    }
    return {code, result.GetError().message};
}

ErrorCode DataFrameRef::SortByPositions(const Positions& keys, bool ascending)
{
    std::set<std::uint32_t> given;
    Positions order; // each key once
    for (const std::uint32_t key : keys) {
        if (key >= ColumnCount() || given.insert(key).second) {
            order.push_back(key);
        }
    }
    Positions index;
    if (HasRows(*this, GetColumn(order.back()))) { // else the functor refuses, however many the window claims
        index.resize(RowCount());
        std::iota(index.begin(), index.end(), 0U);
    }
    const Func::FunctorFactory<Func::SortIndex, Func::NullaryBase, Positions&, bool> make(index, ascending);
    for (auto key = order.rbegin(); key != order.rend(); ++key) {
        if (*key >= ColumnCount()) {
            LogError("the indexlist contains index which is out of range");
            return ERROR_OUT_OF_RANGE;
        }
        const SeriesPtr& column = GetColumn(*key);
        const Error outcome = make(Func::ContainerOf(column))->ProcessSeries(GetSlicedIterator(column));
        if (outcome.code != ERROR_NONE) {
            LogError("Error happens when performing sortIndex functor");
            return outcome.code;
        }
    }
    const Error moved = PermuteRows(index);
    if (moved.code != ERROR_NONE) {
        SetError(moved);
        LogError("Error happens when performing Reorder functor");
    }
    return moved.code;
}

ErrorCode DataFrameRef::Sort(const Positions& keys, const bool& ascending)
{
    if (keys.empty()) {
        LogError("the input indexlist is an empty vector");
        return ERROR_BAD_VALUE;
    }
    return Guarded("Sort", [&] { return SortByPositions(keys, ascending); });
}

ErrorCode DataFrameRef::Sort(const std::vector<std::string>& keys, const bool& ascending)
{
    return Guarded("Sort", [&]() -> ErrorCode {
        Positions positions;
        const ErrorCode code = GetIndexVector(positions, keys);
        if (code != ERROR_NONE) {
            LogError("Error on transformming string list to index list in Sort.");
            return code;
        }
        for (std::uint32_t& position : positions) {
            position -= colIndex[0]; // a column before the window becomes one beyond it
        }
        return Sort(positions, ascending);
    });
}

} // namespace MERVO::Tessera
