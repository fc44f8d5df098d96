#include "tessera/core/key_numbers.h"

#include <algorithm>
#include <bit>
#include <new>

namespace MERVO::Tessera {
namespace {

constexpr unsigned int HASH_BITS = 32;
constexpr unsigned int FEWEST_SLOT_BITS = 4;

/// As many bits as a slot's place needs so that `keys` fill at most half of the slots.
unsigned int SlotBitsFor(std::uint32_t keys)
{
    return std::clamp(static_cast<unsigned int>(std::bit_width(keys)) + 1, FEWEST_SLOT_BITS, HASH_BITS);
}

} // namespace

KeyNumbers::KeyNumbers(std::uint32_t expected)
    : slots(std::size_t{1} << SlotBitsFor(expected)), shift(HASH_BITS - SlotBitsFor(expected))
{
}

void KeyNumbers::Grow()
{
    if (shift == 0) {
        throw std::bad_alloc();
    }
    std::vector<Slot> old(2 * slots.size());
    old.swap(slots);
    --shift;
    for (const Slot& slot : old) {
        if (slot.mark != FREE) {
            slots[FreePlaceFor(slot.hash)] = slot;
        }
    }
}

} // namespace MERVO::Tessera
