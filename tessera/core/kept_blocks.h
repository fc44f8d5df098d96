#pragma once

#include <array>
#include <cstddef>
#include <mutex>

namespace MERVO::Tessera {

/// Smaller blocks are cheap to get.
inline constexpr std::size_t SMALLEST_KEPT_BLOCK = std::size_t{256} << 10;
/// The most bytes that are kept, if that is no more than a sixteenth of the machine's memory: enough for a table of
/// fifteen million texts; on a device of 32 bits, which has less, far less.
inline constexpr std::size_t MOST_KEPT_BYTES = std::size_t{sizeof(void*) == 4 ? 8 : 512} << 20;
/// The most bytes that are kept without the system being told that it may have them.
inline constexpr std::size_t MOST_UNOFFERED_BYTES = std::size_t{sizeof(void*) == 4 ? 0 : 128} << 20;

/**
 * Large blocks that were given back, for the columns that come next: memory that was used before costs no page faults.
 * They go before the library runs out of memory, and when it is unloaded. Any thread may take and keep.
 *
 * With them the library never takes up more than a sixteenth above the most that was in use at a time: the oldest ones
 * go before a fresh block would make it more. So an operation needs no more memory for what another one left.
 *
 * Of all but those used last the system is told that it may take their pages back whenever it runs short (MADV_FREE),
 * so nobody goes without memory for their sake. On a device of 32 bits that is said of all; elsewhere it would cost
 * short operations more time than it is worth.
 */
class KeptBlocks {
public:
    constexpr KeptBlocks() = default;
    ~KeptBlocks();

    /// A block of at least so many bytes, and not many more. Null where none is kept: then there is room for a fresh
    /// one, which counts as being in use from here on.
    void* Take(std::size_t bytes) noexcept;
    /// Keeps a block that was in use, and lets the oldest ones go where they would be too many. False if it is too
    /// large to be kept: then it counts no longer.
    bool Keep(void* block, std::size_t bytes) noexcept;
    /// Tell that a fresh block is in use, and that one is no longer without being kept.
    void CountIn(std::size_t bytes) noexcept;
    void CountOut(std::size_t bytes) noexcept;
    /// False where there was nothing to release.
    bool ReleaseAll() noexcept;

private:
    struct Entry {
        void* block = nullptr;
        std::size_t bytes = 0;
    };
    void AddInUse(std::size_t bytes) noexcept;
    void ReleaseOldest() noexcept;
    void Remove(std::size_t place) noexcept;

    std::mutex mutex;
    std::array<Entry, 64> entries; ///< the oldest first
    std::size_t count = 0;
    std::size_t total = 0;
    std::size_t inUse = 0;        ///< bytes of large blocks that are not here
    std::size_t mostInUse = 0;    ///< of all times
    std::size_t offeredCount = 0; ///< so many of the oldest have been offered to the system
    std::size_t offered = 0;      ///< their bytes
    bool isClosed = false;        ///< columns of the host may outlive what is static here
};

extern KeptBlocks keptBlocks;

/// Gives a block back to the system.
void ReleaseBlock(void* block) noexcept;

} // namespace MERVO::Tessera
