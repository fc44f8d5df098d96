#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include "tessera/core/memory_room.h"

namespace MERVO::Tessera::Func {

/// One text may go to millions of cells. Each copy alone the system would grant, and end the process while they are
/// filled; so once long texts have added up to something, all of them are counted before the next one is copied.
class LongTexts {
public:
    /// Comes before a text is copied, one of `count` that placeOf(i) gives the addresses of. Throws std::bad_alloc.
    template <typename PlaceOf>
    void Add(std::size_t length, PlaceOf placeOf, std::size_t count)
    {
        if (length >= LONG && !isCounted && (copied += length) >= MANY) [[unlikely]] {
            RequireRoom(placeOf, count);
        }
    }

private:
    static constexpr std::size_t LONG = 256; // shorter ones take up little beside the column itself
    static constexpr std::size_t MANY = std::size_t{64} << 20;

    template <typename PlaceOf>
    void RequireRoom(PlaceOf placeOf, std::size_t count)
    {
        std::uint64_t bytes = 0;
        for (std::size_t i = 0; i < count; ++i) {
            bytes += placeOf(i)->size();
        }
        if (!HasRoomFor(bytes, 1)) {
            throw std::bad_alloc();
        }
        isCounted = true;
    }

    std::size_t copied = 0;
    bool isCounted = false;
};

} // namespace MERVO::Tessera::Func
