#pragma once

#include <cstddef>
#include <cstdint>

namespace MERVO::Tessera {

/// A place in packed bits, lowest bit first: a byte and an offset of 0 to 7 in it. Reads and writes like an iterator
/// over bool.
class BitPosition {
public:
    /// One bit, standing in for a bool&.
    class Reference {
    public:
        Reference(std::uint8_t* target, std::uint32_t position)
            : byte(target), mask(static_cast<std::uint8_t>(1U << position))
        {
        }
        Reference(const Reference&) = default;
        operator bool() const { return (*byte & mask) != 0; }
        Reference& operator=(bool value)
        {
            *byte = static_cast<std::uint8_t>(value ? *byte | mask : *byte & ~mask);
            return *this;
        }
        Reference& operator=(const Reference& other) { return *this = static_cast<bool>(other); }

    private:
        std::uint8_t* byte;
        std::uint8_t mask;
    };

    BitPosition() = default;
    BitPosition(std::uint8_t* target, std::uint32_t position) : byte(target), offset(position) {}

    Reference operator*() const { return {byte, offset}; }
    BitPosition& operator++() { return *this += 1; }
    BitPosition& operator+=(std::int64_t count)
    {
        const std::int64_t sum = static_cast<std::int64_t>(offset) + count;
        byte += static_cast<std::ptrdiff_t>(sum >> 3); // rounds down, so that a step back carries too
        offset = static_cast<std::uint32_t>(sum & 7);
        return *this;
    }
    friend BitPosition operator+(BitPosition position, std::int64_t count) { return position += count; }
    /// Bits from `other` to `position`.
    friend std::int64_t operator-(const BitPosition& position, const BitPosition& other)
    {
        return static_cast<std::int64_t>(position.offset) - static_cast<std::int64_t>(other.offset) +
            8 * static_cast<std::int64_t>(position.byte - other.byte);
    }
    friend bool operator==(const BitPosition&, const BitPosition&) = default;

    std::uint8_t* byte = nullptr;
    std::uint32_t offset = 0;
};

} // namespace MERVO::Tessera
