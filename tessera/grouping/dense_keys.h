#pragma once

#include <cstdint>
#include <memory>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera {

/// Small numbers in the place of two tables' keys: they are in the order of the keys, and equal where these are.
class DenseKeys {
public:
    enum Side : std::uint8_t { LEFT, RIGHT };

    virtual ~DenseKeys() = default;

    /// All numbers are below this.
    std::uint32_t Bound() const { return bound; }
    /// Writes the numbers of adjacent rows of a side; no more than BLOCK at a time.
    virtual void Read(Side side, std::uint32_t first, std::uint32_t count, std::uint64_t* numbers) const = 0;
    static constexpr std::uint32_t BLOCK = 512;

protected:
    explicit DenseKeys(std::uint32_t keyBound) : bound(keyBound) {}

private:
    std::uint32_t bound;
};

/**
 * Finds such numbers for two arrays of one value type: what a key is above the lowest one, or, for texts of one size,
 * their bytes as digits, of which each has as many values as lie between the lowest and the highest byte there.
 * @return null where a number would be `most` or above; for floating keys, which need not be the same to match; for
 *         texts of several sizes, of less than 4 or more than 16 bytes. Throws std::bad_alloc.
 */
std::unique_ptr<DenseKeys> DenseKeysOf(const Cursor& left, const Cursor& right, std::uint32_t most);

} // namespace MERVO::Tessera
