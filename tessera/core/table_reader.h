#pragma once

#include <cstdint>
#include <vector>

#include "tessera/core/cell_walk.h"
#include "tessera/core/data_frame_ref.h"

namespace MERVO::Tessera {

/**
 * Cursors on the rows of all columns of a window.
 * @return 0; or 5: a column is gone or got shorter than the window; 3: no memory for a cursor. The log tells which.
 */
[[nodiscard]] ErrorCode OpenColumns(const DataFrameRef& table, std::vector<Cursor>& cursors);

/// Reads the cells of a window whose columns share one value type.
class TableReader {
public:
    explicit TableReader(const DataFrameRef& source);
    ~TableReader();

    /// Tells whether cells of a value type can be read; logs why not. `target` and `mismatch` are the caller's words.
    bool CanRead(MERVO_TESSERA_TYPEID type, const char* target, const char* mismatch) const;

    /// Comes before Read, and before room is made for as many cells as the window claims. Returns as OpenColumns.
    [[nodiscard]] ErrorCode Open() { return OpenColumns(table, cursors); }
    /// Visits each cell once.
    void Read(const CellVisit& visit) const { visit.ForEachCell(cursors, table.RowCount()); }

private:
    const DataFrameRef& table;
    std::vector<Cursor> cursors;
};

} // namespace MERVO::Tessera
