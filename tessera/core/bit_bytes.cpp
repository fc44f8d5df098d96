#include "tessera/core/bit_bytes.h"

#include <bit>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace MERVO::Tessera {
namespace {

constexpr std::uint32_t BYTE_BITS = 8;
#ifdef __SSE2__
constexpr std::uint32_t VECTOR = sizeof(__m128i);
#endif
static_assert(std::endian::native == std::endian::little, "the first bool is the lowest byte of a word");

/// Eight bools as the bits of a byte. The multiplication shifts the bool of byte i to bit 56 + i, and none onto
/// another.
std::uint8_t PackByte(const bool* bools)
{
    std::uint64_t word = 0;
    std::memcpy(&word, bools, BYTE_BITS);
    return static_cast<std::uint8_t>((word * 0x0102040810204080U) >> 56);
}

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
#ifdef __SSE2__
    for (; count >= VECTOR; count -= VECTOR, from += VECTOR, to.byte += VECTOR / BYTE_BITS) {
        const __m128i bools = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const auto bits = static_cast<std::uint16_t>(_mm_movemask_epi8(_mm_slli_epi16(bools, BYTE_BITS - 1)));
        std::memcpy(to.byte, &bits, sizeof bits);
    }
#endif
    for (; count >= BYTE_BITS; count -= BYTE_BITS, from += BYTE_BITS, ++to.byte) {
        *to.byte = PackByte(from);
    }
    for (; count != 0; --count, ++from, ++to) {
        *to = *from;
    }
}

} // namespace MERVO::Tessera
