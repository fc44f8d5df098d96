#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace MERVO::Tessera {

/// What some keys have between them.
struct KeyRange {
    explicit KeyRange(std::span<const std::uint64_t> keys);

    std::uint64_t lowest;
    std::uint64_t highest;
    std::uint64_t varying = 0; ///< the bits that not all keys share
    bool isSorted = true;      ///< none is less than the one before
};

/**
 * Shortens keys to few bits that are in the same order.
 *
 * Those are the leading bits of what a key is above the lowest one, or the leading ones of the bits that vary: these
 * are fewer where keys are texts, whose bytes have most bits in common.
 */
class KeyPrefix {
public:
    KeyPrefix(const KeyRange& range, unsigned int mostBits);

    unsigned int Bits() const { return bits; }
    /// Whether different keys have different prefixes.
    bool IsWhole() const { return isWhole; }
    /// Writes the prefixes, shifted to the left.
    void Write(std::span<const std::uint64_t> keys, unsigned int shift, std::uint64_t* prefixes) const;

private:
    /// Adjacent bits of a key, as many as the mask has, on their way into the prefix.
    struct Part {
        unsigned int from;
        unsigned int to;
        std::uint64_t mask;
    };
    void TakeLeading(std::uint64_t varying, unsigned int mostBits);

    std::uint64_t base = 0;
    std::array<Part, 32> parts;
    unsigned int partCount = 0;
    unsigned int bits = 0;
    bool isWhole = true;
};

} // namespace MERVO::Tessera
