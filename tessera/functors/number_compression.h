#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "tessera/functors/row_choice.h"
#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera::Func {

#ifdef TESSERA_WIDE_VECTOR_BYTES
/// Whether CompressNumbers serves cells of so many bytes on this processor.
inline bool CanCompress(std::size_t cellSize)
{
    return HasWideVectors() && (cellSize == sizeof(std::uint32_t) || cellSize == sizeof(std::uint64_t));
}
#else
constexpr bool CanCompress(std::size_t) { return false; }
#endif

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
        : cellSize(size), from(numbers), to(destination), isStreamed(streams)
    {
    }

    void Append(const RowChoice& rows);
    /// Writes what is held back: lines of the cache that are not full yet.
    void Finish();

private:
#ifdef TESSERA_WIDE_VECTOR_BYTES
    template <std::size_t CELLS>
    void Compress(const RowChoice& rows);
    void Flush();
    void Write(std::size_t count, bool past);

    static constexpr std::size_t LINE = 64;
    static constexpr std::size_t STAGE = 1024; ///< bytes, at home in the first-level cache with those of other columns

    alignas(LINE) std::array<std::byte, STAGE + LINE + TESSERA_WIDE_VECTOR_BYTES> staged;
    std::size_t held = 0;
#endif
    std::size_t cellSize;
    const std::byte* from;
    std::byte* to;
    bool isStreamed;
};

} // namespace MERVO::Tessera::Func
