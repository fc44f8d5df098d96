#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tessera/core/cell_walk.h"
#include "tessera/core/data_frame.h"

namespace MERVO::Tessera {

/**
 * Checks a load of dataSize cells, with the texts of all loads. The lists count 0 where they are left out.
 * @return 0; the table's own code if it failed before; or 15: a shape without cells, a list of another length than
 *         shape[1], or data that don't fill the shape.
 */
ErrorCode CheckLoad(const DataFrameView& table, std::uint64_t dataSize, std::array<unsigned int, 2> shape,
    std::size_t typeCount, std::size_t containerCount);

/// Fills tables for the loaders and the vector calls: builds the columns, has them filled, casts where asked, and
/// refreshes the table.
class ColumnLoader {
public:
    ColumnLoader(DataFrame& loaded, const DataFrame::Types& castTypes, const DataFrame::Containers& columnContainers)
        : table(loaded), types(castTypes), containers(columnContainers)
    {
    }

    /// Replaces the table's columns by new ones; fill(cell, row, column) writes each cell once. Whatever throws on the
    /// way leaves the table as it was; a failure that has a code leaves the columns made so far, and the code.
    template <typename T, typename Fill>
    ErrorCode Load(std::array<unsigned int, 2> shape, Fill&& fill)
    {
        std::vector<Cursor> cursors;
        Error failure = BuildColumns(shape, TYPE_ID_OF<T>, cursors);
        ForEachCell<T>(cursors, shape[0], fill);
        if (failure.code == ERROR_NONE) {
            failure = CastColumns(TYPE_ID_OF<T>);
        }
        return Install(failure);
    }

private:
    Error BuildColumns(std::array<unsigned int, 2> shape, MERVO_TESSERA_TYPEID type, std::vector<Cursor>& cursors);
    Error CastColumns(MERVO_TESSERA_TYPEID loadedType);
    ErrorCode Install(const Error& failure);

    DataFrame& table;
    const DataFrame::Types& types;
    const DataFrame::Containers& containers;
    DataFrame::Columns columns;
};

} // namespace MERVO::Tessera
