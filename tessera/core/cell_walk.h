#pragma once

#include <cstdint>
#include <vector>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera {

/**
 * What a walk over columns of one value type does with each cell: visit(cell, row, column). Only the loops over a
 * block of rows know the visitor's type, so that the walk and its callers are compiled once.
 *
 * The visitor must outlive it.
 */
class CellVisit {
public:
    /// For cells of type T.
    template <typename T, typename Visit>
    static CellVisit Of(const Visit& visit)
    {
        return {&visit, &PassOver<CONTAINER_ARRAY, T, Visit>, &PassOver<CONTAINER_LIST, T, Visit>, TYPE_ID_OF<T>,
            sizeof(T)};
    }

    MERVO_TESSERA_TYPEID Type() const { return type; }

    /// Takes the step for every cell of columns of the value type, column by column within blocks of rows.
    ///
    /// That is how row-major memory meets columns: a block of its rows stays in cache while each column passes over it.
    /// The block is small, so that the processor fetches the next one while it works on this one.
    /// The cursors are spent afterwards. Working set: a record per column.
    void ForEachCell(const std::vector<Cursor>& columns, std::uint32_t rows) const;

private:
    /// A column on the way through a table: the cursor stands on the next row.
    struct Column {
        IteratorInterface* cursor;
        std::uint32_t number;
    };
    /// Visits rows `first` to before `last` of columns in one container, and moves their cursors on.
    using Pass = void (*)(
        const void* visitor, const std::vector<Column>& columns, std::uint32_t first, std::uint32_t last);

    CellVisit(const void* visit, Pass overArrays, Pass overLists, MERVO_TESSERA_TYPEID typeId, std::size_t size)
        : visitor(visit), arrayPass(overArrays), listPass(overLists), type(typeId), cellSize(size)
    {
    }

    template <ContainerID CID, typename T, typename Visit>
    static void PassOver(
        const void* visitor, const std::vector<Column>& columns, std::uint32_t first, std::uint32_t last)
    {
        const Visit& visit = *static_cast<const Visit*>(visitor);
        for (const Column& column : columns) {
            auto& head = static_cast<Iterator<CID, T>&>(*column.cursor).mHead;
            auto place = head; // a copy, which a write to a byte can't touch
            for (std::uint32_t row = first; row < last; ++row, ++place) {
                visit(*place, row, column.number);
            }
            head = place;
        }
    }

    const void* visitor;
    Pass arrayPass;
    Pass listPass;
    MERVO_TESSERA_TYPEID type;
    std::size_t cellSize;
};

} // namespace MERVO::Tessera
