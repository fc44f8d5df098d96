#include "tessera/core/distinct_keys.h"

#include <algorithm>
#include <array>

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

/// Numbers a block of keys at a time, so that all their slots are asked for before the first one is needed.
template <typename Key, typename Source>
void NumberBlocks(
    KeyNumbers& numbers, std::vector<Key>& keys, std::span<const Source> sources, std::uint32_t* keyNumbers)
{
    std::array<std::uint32_t, 64> hashes;
    while (!sources.empty()) {
        const auto block = sources.first(std::min(sources.size(), hashes.size()));
        for (std::size_t i = 0; i < block.size(); ++i) {
            hashes[i] = HashOf(block[i]);
            numbers.Prefetch(hashes[i]);
        }
        for (std::size_t i = 0; i < block.size(); ++i) {
            *keyNumbers++ = FindOrKeep(numbers, keys, hashes[i], Key(block[i]));
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
