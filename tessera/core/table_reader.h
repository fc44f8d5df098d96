#pragma once

#include <cstdint>
#include <vector>

#include "tessera/core/cell_walk.h"
#include "tessera/core/data_frame_ref.h"

namespace MERVO::Tessera {

/// Reads the cells of a window whose columns share one value type.
class TableReader {
public:
    explicit TableReader(const DataFrameRef& source) : table(source) {}

    /// Tells whether cells of a value type can be read; logs why not. `target` and `mismatch` are the caller's words.
    bool CanRead(MERVO_TESSERA_TYPEID type, const char* target, const char* mismatch) const;

    /**
     * Calls sink(cell, row, column) once for each cell.
     * @return 0, or without any call 5: a column is gone or got shorter than the window; 3: no memory for a cursor.
     */
    template <typename T, typename Sink>
    [[nodiscard]] ErrorCode Read(Sink&& sink) const
    {
        std::vector<Cursor> cursors;
        const ErrorCode code = MakeCursors(cursors);
        if (code == ERROR_NONE) {
            ForEachCell<T>(cursors, table.RowCount(), sink);
        }
        return code;
    }

private:
    ErrorCode MakeCursors(std::vector<Cursor>& cursors) const;

    const DataFrameRef& table;
};

} // namespace MERVO::Tessera
