#include "tessera/core/distinct_keys.h"

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
        for (const std::uint64_t key : keys) {
            *keyNumbers++ = FindOrKeep(numbers, numberedKeys, HashOf(key), key);
        }
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

std::uint32_t DistinctTexts::NumberOf(std::string_view text)
{
    return FindOrKeep(numbers, keys, HashOf(text), TextKey(text));
}

} // namespace MERVO::Tessera
