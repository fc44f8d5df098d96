#pragma once

#include <cstdint>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera {

/// A cursor on `count` elements of another one's range, from element `first` on; all of them lie in the range. On a
/// list it walks there. Throws std::bad_alloc when memory is short.
Cursor PartOf(const Cursor& whole, std::uint32_t first, std::uint32_t count);

/**
 * A cursor on one part after the other of another one's range, made once and moved.
 *
 * It may be left anywhere in its part in between. Throws std::bad_alloc when memory is short, but not when it is moved.
 */
class MovingPart {
public:
    explicit MovingPart(const Cursor& whole);

    /// Moves to `count` elements from `first` on; all of them lie in the range. On a list it walks there.
    const Cursor& At(std::uint32_t first, std::uint32_t count)
    {
        move(place, std::int64_t{first} - reached, part, count);
        reached = first;
        return part;
    }

private:
    using Mover = void (*)(const Cursor& place, std::int64_t distance, const Cursor& part, std::uint32_t count);

    Cursor place; ///< where the part begins
    Cursor part;
    std::int64_t reached = 0; ///< how far the place is from the range's first element
    Mover move;
};

} // namespace MERVO::Tessera
