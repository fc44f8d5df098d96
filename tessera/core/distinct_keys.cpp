#include "tessera/core/distinct_keys.h"

#include <algorithm>
#include <array>
#include <string>

#include "tessera/core/key_hash.h"

namespace MERVO::Tessera {
namespace {

constexpr unsigned int PLACE_BITS = 32;

/// The number of a key; a new one is kept at its number.
template <typename Key>
std::uint32_t FindOrKeep(KeyNumbers& numbers, std::vector<Key>& keys, std::uint32_t hash, const Key& key)
{
    const std::uint32_t number = numbers.FindOrAdd(hash, [&](std::uint32_t other) { return keys[other] == key; });
    if (number == keys.size()) {
        keys.push_back(key);
    }
    return number;
}

/// Short texts of an array of strings are in its cells, so it is known where later ones lie: memory is asked for these
/// while others are numbered.
void PrefetchLater(std::string_view text)
{
    constexpr std::uintptr_t DISTANCE = 512 * sizeof(std::string);
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(text.data()) + DISTANCE));
}
void PrefetchLater(std::uint64_t) {}

/// Numbers a block of keys at a time, so that all their slots are asked for before the first one is needed.
template <typename Key, typename Source>
void NumberBlocks(
    KeyNumbers& numbers, std::vector<Key>& keys, std::span<const Source> sources, std::uint32_t* keyNumbers)
{
    std::array<std::uint32_t, 64> hashes;
    std::array<Key, hashes.size()> read;
    while (!sources.empty()) {
        const auto block = sources.first(std::min(sources.size(), hashes.size()));
        for (std::size_t i = 0; i < block.size(); ++i) {
            PrefetchLater(block[i]);
            read[i] = Key(block[i]);
            hashes[i] = HashOf(read[i]);
            numbers.Prefetch(hashes[i]);
        }
        for (std::size_t i = 0; i < block.size(); ++i) {
            *keyNumbers++ = FindOrKeep(numbers, keys, hashes[i], read[i]);
        }
        sources = sources.subspan(block.size());
    }
}

} // namespace

DistinctKeys::DistinctKeys(unsigned int keyBits, std::uint32_t mostPlaces)
{
    if (keyBits < PLACE_BITS && std::uint32_t{1} << keyBits <= mostPlaces) {
        places.resize(std::size_t{1} << keyBits);
    }
}

void DistinctKeys::Number(std::span<const std::uint64_t> keys, std::uint32_t* keyNumbers)
{
    if (places.empty()) {
        NumberBlocks(numbers, numberedKeys, keys, keyNumbers);
        count = numbers.Count();
        return;
    }
    for (const std::uint64_t key : keys) {
        std::uint32_t& place = places[static_cast<std::size_t>(key)];
        if (place == 0) {
            place = ++count;
        }
        *keyNumbers++ = place - 1;
    }
}

void DistinctTexts::Number(std::span<const std::string_view> texts, std::uint32_t* textNumbers)
{
    NumberBlocks(numbers, keys, texts, textNumbers);
}

} // namespace MERVO::Tessera
