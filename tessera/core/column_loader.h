#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tessera/core/cell_walk.h"
#include "tessera/core/data_frame.h"

namespace MERVO::Tessera {

/// Fills tables for the loaders and the vector calls: builds the columns, has them filled, casts where asked, and
/// refreshes the table.
class ColumnLoader {
public:
    using Shape = std::array<unsigned int, 2>;

    /**
     * Replaces a table's columns by new ones with dataSize cells, after CheckLoad; `fill` writes each cell once.
     *
     * Whatever throws on the way leaves the table as it was; a failure that has a code leaves the columns made so far,
     * and the code.
     * @param types      what columns are cast to, or nothing.
     * @param containers what they are built in, or nothing for arrays.
     */
    static ErrorCode Load(DataFrame& table, std::uint64_t dataSize, Shape shape, const DataFrame::Types& types,
        const DataFrame::Containers& containers, const CellVisit& fill);

private:
    ColumnLoader(DataFrame& loaded, const DataFrame::Types& castTypes, const DataFrame::Containers& columnContainers)
        : table(loaded), types(castTypes), containers(columnContainers)
    {
    }

    Error BuildColumns(Shape shape, MERVO_TESSERA_TYPEID type, std::vector<Cursor>& cursors);
    Error CastColumns(MERVO_TESSERA_TYPEID loadedType);
    ErrorCode Install(const Error& failure);

    DataFrame& table;
    const DataFrame::Types& types;
    const DataFrame::Containers& containers;
    DataFrame::Columns columns;
};

} // namespace MERVO::Tessera
