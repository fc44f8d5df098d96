#pragma once

#include <array>
#include <cstddef>
#include <mutex>

namespace MERVO::Tessera {

/// Smaller blocks are cheap to get.
inline constexpr std::size_t SMALLEST_KEPT_BLOCK = std::size_t{256} << 10;
/// The most bytes that are kept: enough for a table of fifteen million numbers; on a device of 32 bits, which has less,
/// a sixteenth of that.
inline constexpr std::size_t MOST_KEPT_BYTES = std::size_t{sizeof(void*) == 4 ? 8 : 128} << 20;

/**
 * Large blocks that were given back, for the columns that come next: memory that was used before costs no page faults.
 * They go before the library runs out of memory, and when it is unloaded. Any thread may take and keep.
 *
 * On a device of 32 bits the system is told that it may take their pages back whenever it runs short (MADV_FREE), so
 * nobody goes without memory for their sake. Elsewhere that would cost more time than it is worth.
 */
class KeptBlocks {
public:
    constexpr KeptBlocks() = default;
    ~KeptBlocks();

    /// A block of at least so many bytes, and not many more; null where none is kept.
    void* Take(std::size_t bytes) noexcept;
    /// Keeps a block, and lets the oldest ones go where they would be too many. False if it is too large to be kept.
    bool Keep(void* block, std::size_t bytes) noexcept;
    /// False where there was nothing to release.
    bool ReleaseAll() noexcept;

private:
    struct Entry {
        void* block = nullptr;
        std::size_t bytes = 0;
    };
    void ReleaseOldest() noexcept;

    std::mutex mutex;
    std::array<Entry, 32> entries; ///< the oldest first
    std::size_t count = 0;
    std::size_t total = 0;
    bool isClosed = false; ///< columns of the host may outlive what is static here
};

extern KeptBlocks keptBlocks;

/// Gives a block back to the system.
void ReleaseBlock(void* block) noexcept;

} // namespace MERVO::Tessera
