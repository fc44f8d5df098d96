#pragma once

#include <cstdint>
#include <span>

#include "tessera/core/bit_words.h"

namespace MERVO::Tessera::Func {

/// Adjacent rows of a table, of which some are chosen.
struct RowChoice {
    std::uint32_t first;                  ///< the number of the first row
    std::uint32_t count;                  ///< of all rows, chosen or not
    std::span<const BitWords::Word> bits; ///< a set bit for each chosen row, 64 rows to a word; clear beyond the last

    /// Writes the numbers of the chosen rows. The buffer has room for those of whole words.
    std::span<const std::uint32_t> Positions(std::span<std::uint32_t> buffer) const;
};

} // namespace MERVO::Tessera::Func
