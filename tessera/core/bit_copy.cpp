#include "tessera/core/bit_copy.h"

namespace MERVO::Tessera {

void CopyBits(BitPosition from, BitPosition to, std::uint32_t count)
{
    for (; count != 0 && to.offset != 0; --count, ++from, ++to) {
        *to = static_cast<bool>(*from);
    }
    // The destination now stands at a whole byte; each takes the end of one source byte and the start of the next.
    for (; count > 8; count -= 8, from += 8, to += 8) {
        const unsigned int pair = from.byte[0] | (from.offset == 0 ? 0U : static_cast<unsigned int>(from.byte[1]) << 8);
        *to.byte = static_cast<std::uint8_t>(pair >> from.offset);
    }
    for (; count != 0; --count, ++from, ++to) {
        *to = static_cast<bool>(*from);
    }
}

} // namespace MERVO::Tessera
