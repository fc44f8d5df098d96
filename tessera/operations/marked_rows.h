#pragma once

#include <cstdint>
#include <span>

#include "tessera/core/bit_position.h"

namespace MERVO::Tessera {

/// A walk over marks, a bit for each row, that gives the numbers of the rows whose mark is as wanted.
class MarkedRows {
public:
    MarkedRows(BitPosition head, std::uint32_t markCount, bool wantedMark)
        : marks(head), count(markCount), wanted(wantedMark)
    {
    }

    bool IsDone() const { return first == count; }
    /// Looks at as many further rows as the buffer has room for, a multiple of 64, and gives those that are wanted.
    std::span<const std::uint32_t> Next(std::span<std::uint32_t> buffer);

private:
    BitPosition marks;
    std::uint32_t first = 0; ///< of the rows that have not been looked at
    std::uint32_t count;
    bool wanted;
};

} // namespace MERVO::Tessera
