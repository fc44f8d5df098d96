#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "tessera/core/block_vector.h"
#include "tessera/functors/functor_base.h"

namespace MERVO::Tessera {

/**
 * The groups that DataFrame::GroupBy without an order makes of rows with equal keys, told by numbers, while all cells
 * stay where they are.
 *
 * Where keys are compared by their bits, rows are numbered by a hash of them, and only the first row of each group
 * takes part in finding the order of the groups. Floating keys, which are compared with those of the next row, need the
 * order of all rows.
 */
class GroupedRows {
public:
    /// Takes arrays of one length, at least 1, of any value types but nested tables. Throws std::bad_alloc.
    explicit GroupedRows(std::span<const Cursor> keys);

    std::uint32_t Count() const { return static_cast<std::uint32_t>(firstRows.size()); }
    Func::RowGroups Groups() const { return {groupOfRow.data(), firstRows.data(), begins}; }
    std::span<const std::uint32_t> GroupOfRow() const { return groupOfRow; }
    const std::vector<std::uint32_t>& FirstRows() const { return firstRows; }
    /// The rows of the first group, in the order of the table, then those of the next one. Throws std::bad_alloc.
    std::span<const std::uint32_t> RowOrder();

private:
    void NumberByBits(std::span<const Cursor> keys);
    void OrderGroups(std::span<const Cursor> keys);
    void NumberInOrder(std::span<const Cursor> keys);

    BlockVector<std::uint32_t> groupOfRow;
    std::vector<std::uint32_t> firstRows;
    BlockVector<std::uint32_t> begins; ///< at first the sizes, from place 1 on
    std::vector<std::uint32_t> rowOrder;
};

} // namespace MERVO::Tessera
