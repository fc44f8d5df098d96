#include "tessera/core/bit_bytes.h"

namespace MERVO::Tessera {
namespace {

constexpr std::uint32_t BYTE_BITS = 8;

} // namespace

void UnpackBits(BitPosition from, bool* to, std::uint32_t count)
{
    for (; count != 0 && from.offset != 0; --count, ++from, ++to) {
        *to = *from;
    }
    for (; count >= BYTE_BITS; count -= BYTE_BITS, ++from.byte, to += BYTE_BITS) {
        for (std::uint32_t bit = 0; bit < BYTE_BITS; ++bit) {
            to[bit] = ((*from.byte >> bit) & 1) != 0;
        }
    }
    for (; count != 0; --count, ++from, ++to) {
        *to = *from;
    }
}

void PackBits(const bool* from, BitPosition to, std::uint32_t count)
{
    for (; count != 0 && to.offset != 0; --count, ++from, ++to) {
        *to = *from;
    }
    for (; count >= BYTE_BITS; count -= BYTE_BITS, from += BYTE_BITS, ++to.byte) {
        std::uint32_t byte = 0;
        for (std::uint32_t bit = 0; bit < BYTE_BITS; ++bit) {
            byte |= static_cast<std::uint32_t>(from[bit]) << bit;
        }
        *to.byte = static_cast<std::uint8_t>(byte);
    }
    for (; count != 0; --count, ++from, ++to) {
        *to = *from;
    }
}

} // namespace MERVO::Tessera
