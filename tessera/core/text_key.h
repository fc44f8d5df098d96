#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tessera/core/key_hash.h"

namespace MERVO::Tessera {

/// A view of a text together with its first and last eight bytes, which are all of it up to sixteen: comparing short
/// texts needs no look at where they lie.
class TextKey {
public:
    TextKey() = default;
    explicit TextKey(std::string_view content) : text(content)
    {
        const char* const bytes = text.data();
        const std::size_t size = text.size();
        if (size >= sizeof(std::uint64_t)) {
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

    /// Needs no look at the text either, unless it is a longer one.
    friend std::uint32_t HashOf(const TextKey& key)
    {
        if (key.text.size() > 2 * sizeof(std::uint64_t)) {
            return HashOf(key.text);
        }
        const std::uint64_t hash = KeyHash::Mix(key.text.size() * KeyHash::GOLDEN, key.first);
        return static_cast<std::uint32_t>(KeyHash::Mix(hash, key.last) >> 32);
    }

    friend bool operator==(const TextKey& left, const TextKey& right)
    {
        return left.first == right.first && left.last == right.last && left.text.size() == right.text.size() &&
            (left.text.size() <= 2 * sizeof(std::uint64_t) || left.text == right.text);
    }

private:
    std::string_view text;
    std::uint64_t first = 0;
    std::uint64_t last = 0;
};

} // namespace MERVO::Tessera
