#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera {

/**
 * A new order of rows: row i becomes the one that stood at positions[i]. Each position occurs once.
 *
 * Strings and nested tables are moved. Columns are arrays as long as the list.
 */
class RowPermutation {
public:
    /// Makes what the in-place form needs, a bit per row. The list outlives the object. Throws std::bad_alloc.
    explicit RowPermutation(std::span<const std::uint32_t> order);

    /// Whether each row stays where it is.
    bool KeepsAll() const;
    /// Fills a column of the same value type, but not of texts, with the cells of another, which holds nothing of use
    /// afterwards.
    void MoveInto(const Cursor& from, const Cursor& to) const noexcept;
    /// Reorders texts of up to 15 bytes by way of 16 bytes for each, which is less than the column takes. False,
    /// with nothing moved, where a text is longer or there is no memory.
    bool ReorderShortTexts(std::string* texts) const noexcept;
    /// Constructs texts of those at the positions, which it destroys.
    void MoveTexts(std::string* from, std::string* to) const noexcept;
    /// Needs no further memory, but more time: it follows the cells from place to place.
    void ReorderInPlace(const Cursor& column) noexcept;

private:
    std::span<const std::uint32_t> positions;
    std::vector<bool> isPlaced;
};

} // namespace MERVO::Tessera
