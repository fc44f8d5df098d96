#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera {

/// What elements are sorted by: a 64-bit key that is in the order of the elements; for texts, one for every seven
/// bytes.
///
/// A part that only numbers or only texts have is empty for the others.
class SortKeys {
public:
    using Positions = std::span<const std::uint32_t>;
    enum class Kind : std::uint8_t { NUMBERS, FLOATING_NUMBERS, TEXTS };

    explicit SortKeys(Kind keyKind) : kind(keyKind) {}
    virtual ~SortKeys() = default;

    /**
     * Writes the keys of the elements at some positions.
     * @param offset how many bytes of each text come before those that count; 0 for numbers. Each text has as many.
     */
    virtual void Read(Positions positions, std::size_t offset, std::uint64_t* keys) const = 0;
    /// Writes by how much the keys of adjacent numbers, from a position on, exceed a key that is not above them.
    virtual void ReadRange(
        std::uint32_t first, std::uint32_t count, std::uint64_t lowest, std::uint64_t* keys) const = 0;
    /// The lowest and the highest key of that many numbers from the first on.
    virtual std::pair<std::uint64_t, std::uint64_t> BoundsOf(std::uint32_t count) const = 0;
    /// How many bytes all texts at some positions have in common. It is known that they share the first `offset`.
    virtual std::size_t SharedBytes(Positions positions, std::size_t offset) const = 0;
    /// Sets flag i to 1 where the elements at positions i - 1 and i are different ones, see AreDifferent; flag 0 is
    /// left alone.
    virtual void MarkChanges(Positions positions, std::uint8_t* flags) const = 0;

    bool MayHaveNan() const { return kind == Kind::FLOATING_NUMBERS; }
    bool AreOfTexts() const { return kind == Kind::TEXTS; }
    /// Whether a text goes on behind the bytes that its key stands for.
    bool GoesOn(std::uint64_t key) const { return AreOfTexts() && (key & 0xFF) > BYTES; }

    /// How far a key reaches into a text.
    static constexpr std::size_t BYTES = 7;
    /// Stands for NaN, which is neither less nor greater than anything. It is above the keys of all floating numbers.
    static constexpr std::uint64_t NAN_KEY = ~std::uint64_t{0};

private:
    Kind kind;
};

/// The keys of an array; null for nested tables, which have none. Throws std::bad_alloc.
std::unique_ptr<SortKeys> KeysOf(const Cursor& column);
/// The same of two arrays of one value type, as if the second one stood behind the first.
std::unique_ptr<SortKeys> KeysOf(const Cursor& first, const Cursor& second);

} // namespace MERVO::Tessera
