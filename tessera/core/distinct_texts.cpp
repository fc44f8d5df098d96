#include "tessera/core/distinct_texts.h"

#include <algorithm>
#include <array>
#include <new>
#include <string>

namespace MERVO::Tessera {
namespace {

/// Short texts of an array of strings are in its cells, so it is known where later ones lie: memory is asked for these
/// while others are numbered.
void PrefetchLater(std::string_view text)
{
    constexpr std::uintptr_t DISTANCE = 96 * sizeof(std::string);
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(text.data()) + DISTANCE));
}

} // namespace

DistinctTexts::Slot& DistinctTexts::FreeSlotFor(std::uint32_t hash)
{
    std::size_t place = PlaceOf(hash);
    while (slots[place].number != FREE) {
        place = (place + 1) & (slots.size() - 1);
    }
    return slots[place];
}

void DistinctTexts::Grow()
{
    if (shift == 0) {
        throw std::bad_alloc();
    }
    BlockVector<Slot> old(2 * slots.size());
    old.swap(slots);
    --shift;
    for (const Slot& slot : old) {
        if (slot.number != FREE) {
            FreeSlotFor(HashOf(slot)) = slot;
        }
    }
}

inline std::uint32_t DistinctTexts::NumberOf(const TextKey& key, std::uint32_t hash)
{
    for (std::size_t place = PlaceOf(hash);; place = (place + 1) & (slots.size() - 1)) {
        const Slot& slot = slots[place];
        if (slot == key) {
            return slot.number;
        }
        if (slot.number == FREE) {
            break;
        }
    }
    if (IsFull()) {
        Grow();
    }
    FreeSlotFor(hash) = Slot{key, count};
    return count++;
}

template <typename Text>
void DistinctTexts::NumberAll(std::span<const Text> texts, std::uint32_t* textNumbers)
{
    if (slots.size() <= FEW_SLOTS) {
        for (const Text& text : texts) {
            PrefetchLater(text);
            const TextKey key(text);
            *textNumbers++ = NumberOf(key, HashOf(key));
        }
        return;
    }
    std::array<TextKey, 64> keys; // of a block of texts, whose slots are all asked for before one is needed
    std::array<std::uint32_t, keys.size()> hashes;
    while (!texts.empty()) {
        const auto block = texts.first(std::min(texts.size(), keys.size()));
        for (std::size_t i = 0; i < block.size(); ++i) {
            PrefetchLater(block[i]);
            keys[i] = TextKey(block[i]);
            hashes[i] = HashOf(keys[i]);
            __builtin_prefetch(slots.data() + PlaceOf(hashes[i]));
        }
        for (std::size_t i = 0; i < block.size(); ++i) {
            *textNumbers++ = NumberOf(keys[i], hashes[i]);
        }
        texts = texts.subspan(block.size());
    }
}

template void DistinctTexts::NumberAll(std::span<const std::string> texts, std::uint32_t* textNumbers);
template void DistinctTexts::NumberAll(std::span<const std::string_view> texts, std::uint32_t* textNumbers);

} // namespace MERVO::Tessera
