#pragma once

#include <cstdint>
#include <span>

#include "tessera/core/bit_position.h"
#include "tessera/functors/row_choice.h"

namespace MERVO::Tessera {

/// A walk over marks, a bit for each row, that chooses the rows whose mark is as wanted.
class MarkedRows {
public:
    MarkedRows(BitPosition head, std::uint32_t markCount, bool wantedMark)
        : marks(head), count(markCount), wanted(wantedMark)
    {
    }

    bool IsDone() const { return first == count; }
    /// Looks at as many further rows as the buffer has bits for.
    Func::RowChoice Next(std::span<BitWords::Word> buffer);

private:
    BitPosition marks;
    std::uint32_t first = 0; ///< of the rows that have not been looked at
    std::uint32_t count;
    bool wanted;
};

} // namespace MERVO::Tessera
