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

    /// Calls sink(cell, row, column) once for each cell. False when a column can't be reached (any more).
    template <typename T, typename Sink>
    bool Read(Sink&& sink) const
    {
        std::vector<Cursor> cursors;
        if (!MakeCursors(cursors)) {
            return false;
        }
        ForEachCell<T>(cursors, table.RowCount(), sink);
        return true;
    }

private:
    bool MakeCursors(std::vector<Cursor>& cursors) const;

    const DataFrameRef& table;
};

} // namespace MERVO::Tessera
