#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace MERVO::Tessera {

/// A view of a text together with its first and last eight bytes, which are all of it up to sixteen: comparing short
/// texts needs no look at where they lie.
class TextKey {
public:
    explicit TextKey(std::string_view content) : text(content)
    {
        const char* const bytes = text.data();
        const std::size_t size = text.size();
        if (size >= sizeof(std::uint64_t)) {
            first = Load<std::uint64_t>(bytes);
            last = Load<std::uint64_t>(bytes + size - sizeof(std::uint64_t));
        } else if (size >= sizeof(std::uint32_t)) {
            first = Load<std::uint32_t>(bytes);
            last = Load<std::uint32_t>(bytes + size - sizeof(std::uint32_t));
        } else if (size != 0) {
            first = Load<std::uint8_t>(bytes) | Load<std::uint8_t>(bytes + size / 2) << 8;
            last = Load<std::uint8_t>(bytes + size - 1);
        }
    }

    friend bool operator==(const TextKey& left, const TextKey& right)
    {
        return left.first == right.first && left.last == right.last && left.text.size() == right.text.size() &&
            (left.text.size() <= 2 * sizeof(std::uint64_t) || left.text == right.text);
    }

private:
    template <typename Word>
    static std::uint64_t Load(const char* bytes)
    {
        Word word = 0;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }

    std::string_view text;
    std::uint64_t first = 0;
    std::uint64_t last = 0;
};

} // namespace MERVO::Tessera
