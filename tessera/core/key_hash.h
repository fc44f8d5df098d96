#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Hashes for tables in memory, mixed well in all bits, the upper ones first. They may differ from machine to machine,
/// so no result shows their order.
namespace MERVO::Tessera {

namespace KeyHash {

inline constexpr std::uint64_t GOLDEN = 0x9E3779B97F4A7C15ULL; // 2^64 over the golden ratio

template <typename Word>
std::uint64_t Load(const char* bytes)
{
    Word word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// The upper half of a product depends on all bits of the lower half, so the upper ones are brought there first.
constexpr std::uint64_t Mix(std::uint64_t hash, std::uint64_t word)
{
    hash ^= word;
    return (hash ^ (hash >> 32)) * GOLDEN;
}

/// The first and the last bytes of less than eight, in which all of them are.
inline std::uint64_t LoadShort(const char* bytes, std::size_t size)
{
    if (size >= sizeof(std::uint32_t)) {
        return Load<std::uint32_t>(bytes + size - sizeof(std::uint32_t)) << 32 | Load<std::uint32_t>(bytes);
    }
    const auto byteAt = [bytes](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(bytes[i])}; };
    return size == 0 ? 0 : byteAt(0) | byteAt(size / 2) << 8 | byteAt(size - 1) << 16;
}

} // namespace KeyHash

/// Different keys have different hashes.
constexpr std::uint32_t HashOf(std::uint32_t key)
{
    key = (key ^ (key >> 16)) * 0x9E3779B1U;
    return key ^ (key >> 15);
}

constexpr std::uint32_t HashOf(std::uint64_t key) { return static_cast<std::uint32_t>(KeyHash::Mix(0, key) >> 32); }

/// Takes eight bytes at a time; the last ones overlap those before.
inline std::uint32_t HashOf(std::string_view key)
{
    constexpr std::size_t STEP = sizeof(std::uint64_t);
    const auto load = [&key](std::size_t i) { return KeyHash::Load<std::uint64_t>(key.data() + i); };
    std::uint64_t hash = key.size() * KeyHash::GOLDEN; // plain, it would meet the first byte
    if (key.size() < STEP) {
        hash = KeyHash::Mix(hash, KeyHash::LoadShort(key.data(), key.size()));
    } else {
        hash = KeyHash::Mix(hash, load(0));
        for (std::size_t i = STEP; i + STEP < key.size(); i += STEP) {
            hash = KeyHash::Mix(hash, load(i));
        }
        hash = KeyHash::Mix(hash, load(key.size() - STEP));
    }
    return static_cast<std::uint32_t>(hash >> 32);
}

} // namespace MERVO::Tessera
