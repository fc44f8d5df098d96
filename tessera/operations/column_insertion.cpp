#include <iterator>
#include <numeric>
#include <utility>

#include "tessera/core/flat_call.h"
#include "tessera/operations/column_copies.h"

namespace MERVO::Tessera {

ErrorCode DataFrame::InsertColInplace(const DataFrame& other, const unsigned int& position)
try {
    for (const DataFrame* table : {static_cast<const DataFrame*>(this), &other}) {
        if (table->error.code != ERROR_NONE) {
            LogError("Invalid dataframe %d for inserting column inplace operation", table->error.code);
            return table->error.code;
        }
    }
    if (other.ColumnCount() == 0) {
        LogError("Invalid dataframe %d for inserting column inplace operation", other.error.code);
        return ERROR_EMPTY_TABLE;
    }
    if (ColumnCount() == 0) {
        *this = other;
        return error.code;
    }
    if (other.RowCount() != RowCount()) {
        SetError({ERROR_FAILED_TABLE, "Num of Row is different."});
        return error.code;
    }
    if (position > ColumnCount()) {
        SetError({ERROR_BAD_VALUE, "Exceed maximum index of dataframe."});
        return error.code;
    }
    std::vector<std::uint32_t> all(other.ColumnCount());
    std::iota(all.begin(), all.end(), 0U);
    Columns copies;
    SetError(CopyColumns(other, all, copies));
    DataFrameRef whole(*this);
    whole.RefreshShape();
    if (error.code == ERROR_NONE && (whole.GetRowIndex() != rowIndex || whole.GetColIndex() != colIndex)) {
        DataFrame cut(static_cast<const DataFrameRef&>(*this)); // as long as the new columns
        SetError(cut.error);
        series = cut.error.code == ERROR_NONE ? cut.series : series;
    }
    if (error.code != ERROR_NONE) {
        return error.code;
    }
    series->reserve(series->size() + copies.size()); // behind this nothing fails
    series->insert(series->begin() + static_cast<std::ptrdiff_t>(position), std::make_move_iterator(copies.begin()),
        std::make_move_iterator(copies.end()));
    isColNameDirty = true;
    RefreshShape();
    return error.code;
} catch (...) { // no memory
    return KeepNoMemory(*this);
}

ErrorCode DataFrame::AppendColInplace(const DataFrame& other) { return InsertColInplace(other, ColumnCount()); }

} // namespace MERVO::Tessera
