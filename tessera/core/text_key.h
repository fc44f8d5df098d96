#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "tessera/core/key_hash.h"

namespace MERVO::Tessera {

/// A text for comparing: its first and last eight bytes, which are all of it up to sixteen, so that comparing short
/// ones needs no look at where they lie. Of a longer one, which stays as it is meanwhile, its hash and size instead.
class TextKey {
public:
    /// Equal to no text's.
    TextKey() = default;
    [[gnu::always_inline]] explicit TextKey(std::string_view text) // its words stay in registers
        : bytes(text.data()), size(static_cast<std::uint32_t>(std::min(text.size(), LONG)))
    {
        if (size == LONG) [[unlikely]] {
            first = HashOfLong(text);
            last = text.size();
        } else if (size >= sizeof(std::uint64_t)) [[likely]] {
            first = KeyHash::Load<std::uint64_t>(bytes);
            last = KeyHash::Load<std::uint64_t>(bytes + size - sizeof(std::uint64_t));
        } else if (size >= sizeof(std::uint32_t)) {
            first = KeyHash::Load<std::uint32_t>(bytes);
            last = KeyHash::Load<std::uint32_t>(bytes + size - sizeof(std::uint32_t));
        } else if (size != 0) {
            first = KeyHash::Load<std::uint8_t>(bytes) | KeyHash::Load<std::uint8_t>(bytes + size / 2) << 8;
            last = KeyHash::Load<std::uint8_t>(bytes + size - 1);
        }
    }

    friend std::uint32_t HashOf(const TextKey& key)
    {
        if (key.size == LONG) {
            return static_cast<std::uint32_t>(key.first);
        }
        const std::uint64_t hash = KeyHash::Mix(key.size * KeyHash::GOLDEN, key.first);
        return static_cast<std::uint32_t>(KeyHash::Mix(hash, key.last) >> 32);
    }

    friend bool operator==(const TextKey& left, const TextKey& right)
    {
        return left.first == right.first && left.last == right.last && left.size == right.size &&
            (left.size != LONG || std::memcmp(left.bytes, right.bytes, static_cast<std::size_t>(left.last)) == 0);
    }

private:
    [[gnu::noinline]] static std::uint32_t HashOfLong(std::string_view text) { return HashOf(text); }

    static constexpr std::size_t LONG = 2 * sizeof(std::uint64_t) + 1;

    std::uint64_t first = 0;
    std::uint64_t last = 0;
    const char* bytes = nullptr;
    std::uint32_t size = 0xFFFFFFFF; ///< LONG for all longer ones
};

} // namespace MERVO::Tessera
