#include "tessera/core/distinct_texts.h"

#include <algorithm>
#include <array>
#include <bit>

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

DistinctTexts::DistinctTexts(std::span<const std::string> column)
    : texts(column), mostSlots(std::max(std::bit_floor(column.size() / TEXTS_PER_SLOT), FEW_SLOTS)), slots(FEWEST_SLOTS)
{
}

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
    BlockVector<Slot> old(2 * slots.size());
    old.swap(slots);
    --shift;
    for (const Slot& slot : old) {
        if (slot.number != FREE) {
            FreeSlotFor(HashOf(slot)) = slot;
        }
    }
}

void DistinctTexts::DropKeys()
{
    KeyNumbers numbers(Count() + BLOCK);
    for (const std::uint32_t position : firstPositions) {
        numbers.FindOrAdd(HashOf(TextKey(texts[position])), [](std::uint32_t) { return false; });
    }
    hashes = std::move(numbers);
    slots = {};
}

[[gnu::noinline]] std::uint32_t DistinctTexts::Add(std::uint32_t hash, const std::string& text)
{
    const std::uint32_t number = Count();
    if (number >= MostKeys(slots.size())) {
        Grow();
    }
    firstPositions.push_back(PositionOf(text));
    FreeSlotFor(hash) = Slot{TextKey(text), number};
    return number;
}

[[gnu::always_inline]] inline std::uint32_t DistinctTexts::NumberOf(
    const TextKey& key, std::uint32_t hash, const std::string& text)
{
    for (std::size_t place = PlaceOf(hash);; place = (place + 1) & (slots.size() - 1)) {
        const Slot& slot = slots[place];
        if (slot == key) {
            return slot.number;
        }
        if (slot.number == FREE) {
            return Add(hash, text);
        }
    }
}

template <typename TextAt>
void DistinctTexts::NumberOneByOne(TextAt textAt, std::uint32_t count, std::uint32_t* textNumbers)
{
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::string& text = textAt(i);
        PrefetchLater(text);
        const TextKey key(text);
        textNumbers[i] = NumberOf(key, HashOf(key), text);
    }
}

template <typename TextAt>
void DistinctTexts::NumberByKeys(TextAt textAt, std::uint32_t count, KeyBlock& keys, std::uint32_t* textNumbers)
{
    std::array<std::uint32_t, BLOCK> keyHashes;
    for (std::uint32_t i = 0; i < count; ++i) {
        PrefetchLater(textAt(i));
        keys[i] = TextKey(textAt(i));
        keyHashes[i] = HashOf(keys[i]);
        __builtin_prefetch(slots.data() + PlaceOf(keyHashes[i]));
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        textNumbers[i] = NumberOf(keys[i], keyHashes[i], textAt(i));
    }
}

/// Each step asks for the memory that the next one needs: the slots, where texts of those hashes were met, these texts.
template <typename TextAt>
void DistinctTexts::NumberByHashes(TextAt textAt, std::uint32_t count, std::uint32_t* textNumbers)
{
    if (firstPositions.capacity() - firstPositions.size() < count) {
        firstPositions.reserve(std::min(2 * firstPositions.capacity() + count, texts.size()));
    }
    std::array<std::uint32_t, BLOCK> keyHashes;
    std::array<std::uint32_t, BLOCK> likely;
    for (std::uint32_t i = 0; i < count; ++i) {
        PrefetchLater(textAt(i));
        keyHashes[i] = HashOf(TextKey(textAt(i)));
        hashes.Prefetch(keyHashes[i]);
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t number = hashes.LikelyNumber(keyHashes[i]);
        likely[i] = number == KeyNumbers::NONE ? 0 : number;
        __builtin_prefetch(firstPositions.data() + likely[i]);
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        __builtin_prefetch(texts.data() + firstPositions[likely[i]]);
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::string& text = textAt(i);
        const auto isText = [&](std::uint32_t number) { return texts[firstPositions[number]] == text; };
        if (isText(likely[i])) {
            textNumbers[i] = likely[i];
            continue;
        }
        textNumbers[i] = hashes.FindOrAdd(keyHashes[i], isText);
        if (textNumbers[i] == Count()) {
            firstPositions.push_back(PositionOf(text));
        }
    }
}

template <typename TextAt>
void DistinctTexts::NumberAll(TextAt textAt, std::uint32_t count, std::uint32_t* textNumbers)
{
    if (HasKeys() && slots.size() <= FEW_SLOTS && HasRoomForKeys(count)) {
        NumberOneByOne(textAt, count, textNumbers);
        return;
    }
    KeyBlock keys;
    for (std::uint32_t first = 0; first < count; first += BLOCK) {
        const std::uint32_t length = std::min(BLOCK, count - first);
        const auto textInBlock = [=](std::uint32_t i) -> const std::string& { return textAt(first + i); };
        if (HasKeys() && !HasRoomForKeys(length)) {
            DropKeys();
        }
        if (!HasKeys()) {
            NumberByHashes(textInBlock, length, textNumbers + first);
        } else if (slots.size() <= FEW_SLOTS) {
            NumberOneByOne(textInBlock, length, textNumbers + first);
        } else {
            NumberByKeys(textInBlock, length, keys, textNumbers + first);
        }
    }
}

void DistinctTexts::Number(std::span<const std::uint32_t> positions, std::uint32_t* textNumbers)
{
    const auto textAt = [positions, cells = texts.data()](
                            std::uint32_t i) -> const std::string& { return cells[positions[i]]; };
    NumberAll(textAt, static_cast<std::uint32_t>(positions.size()), textNumbers);
}

void DistinctTexts::Number(std::uint32_t first, std::uint32_t count, std::uint32_t* textNumbers)
{
    const auto textAt = [cells = texts.data() + first](std::uint32_t i) -> const std::string& { return cells[i]; };
    NumberAll(textAt, count, textNumbers);
}

} // namespace MERVO::Tessera
