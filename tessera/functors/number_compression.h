#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "tessera/functors/row_choice.h"
#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera::Func {

#ifdef TESSERA_WIDE_VECTOR_BYTES
/// Whether NumberCompression serves cells of so many bytes on this processor.
inline bool CanCompress(std::size_t cellSize)
{
    return HasWideVectors() && (cellSize == sizeof(std::uint32_t) || cellSize == sizeof(std::uint64_t));
}
#else
constexpr bool CanCompress(std::size_t) { return false; }
#endif

/// Where bytes come to stand one behind the other: past the caches whole lines of them, so that some may have to wait.
struct ByteSequence {
    static constexpr std::size_t LINE = 64;

    std::byte* to; ///< where the first waiting byte belongs
    bool isStreamed;
    std::size_t waitingCount = 0; ///< of bytes; less than a line
    std::array<std::byte, LINE> waiting{};
};

/**
 * Copies the chosen ones of the numbers of an array, one behind the other: whole vectors at a time, as many of whose
 * cells as are chosen are moved to the front. It takes the same time however the choice falls.
 *
 * Only where CanCompress; elsewhere nothing is done.
 */
class NumberCompression {
public:
    /// @param numbers the first cell of the array, that of row 0.
    /// @param destination has room for all that will be chosen.
    /// @param streams whether it is written past the caches.
    NumberCompression(std::size_t size, const std::byte* numbers, std::byte* destination, bool streams)
        : cellSize(size), from(numbers), written{destination, streams}
    {
    }

    /// Copies those of further rows.
    void Append(const RowChoice& rows);
    /// Copies what is left to copy, and makes sure that other threads see all of it.
    void Finish();

private:
    std::size_t cellSize;
    const std::byte* from;
    ByteSequence written;
};

} // namespace MERVO::Tessera::Func
