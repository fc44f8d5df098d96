#include "tessera/core/distinct_keys.h"

#include <algorithm>
#include <array>

#include "tessera/core/key_hash.h"

namespace MERVO::Tessera {
namespace {

constexpr unsigned int PLACE_BITS = 32;

/// Numbers a block of keys at a time, so that all their slots are asked for before the first one is needed.
void NumberBlocks(KeyNumbers& numbers, std::vector<std::uint64_t>& numberedKeys, std::span<const std::uint64_t> keys,
    std::uint32_t* keyNumbers)
{
    std::array<std::uint32_t, 64> hashes;
    while (!keys.empty()) {
        const auto block = keys.first(std::min(keys.size(), hashes.size()));
        for (std::size_t i = 0; i < block.size(); ++i) {
            hashes[i] = HashOf(block[i]);
            numbers.Prefetch(hashes[i]);
        }
        for (std::size_t i = 0; i < block.size(); ++i) {
            const std::uint32_t number =
                numbers.FindOrAdd(hashes[i], [&](std::uint32_t other) { return numberedKeys[other] == block[i]; });
            if (number == numberedKeys.size()) {
                numberedKeys.push_back(block[i]);
            }
            *keyNumbers++ = number;
        }
        keys = keys.subspan(block.size());
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

} // namespace MERVO::Tessera
