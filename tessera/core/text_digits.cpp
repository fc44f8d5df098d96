#include "tessera/core/text_digits.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "tessera/platform/multiversion.h"

namespace MERVO::Tessera {
namespace {

std::size_t WordFor(std::size_t size)
{
    const std::size_t width = size >= sizeof(std::uint64_t) ? sizeof(std::uint64_t) : sizeof(std::uint32_t);
    return size < width || size > 2 * width ? 0 : width;
}

template <typename Word>
std::uint64_t LoadWord(const char* bytes)
{
    static_assert(std::endian::native == std::endian::little);
    Word word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Asks for the memory of a text that is read soon; no further ahead, as the innermost cache is small.
void PrefetchLater(const std::string& text)
{
    constexpr std::uintptr_t DISTANCE = 96 * sizeof(std::string);
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(&text) + DISTANCE));
}

} // namespace

TextDigits::TextDigits(std::size_t textSize)
    : size(textSize), width(WordFor(textSize)), lowest{~Bytes{}, ~Bytes{}}, highest{Bytes{}, Bytes{}}
{
}

template <typename Word>
void TextDigits::MeetWords(std::span<const std::string> texts)
{
    Ends low = lowest;
    Ends high = highest;
    for (const std::string& text : texts) {
        if (text.size() != size) {
            width = 0;
            return;
        }
        const auto first = std::bit_cast<Bytes>(LoadWord<Word>(text.data()));
        const auto last = std::bit_cast<Bytes>(LoadWord<Word>(text.data() + size - sizeof(Word)));
        low = {first < low.first ? first : low.first, last < low.last ? last : low.last};
        high = {first > high.first ? first : high.first, last > high.last ? last : high.last};
    }
    lowest = low;
    highest = high;
}

bool TextDigits::Meet(std::span<const std::string> texts, std::uint64_t most)
{
    for (; !texts.empty(); texts = texts.subspan(std::min(texts.size(), MOST))) {
        const auto block = texts.first(std::min(texts.size(), MOST));
        if (width != 0) {
            width == WORD ? MeetWords<std::uint64_t>(block) : MeetWords<std::uint32_t>(block);
        }
        if (Bound() > most) {
            return false;
        }
    }
    return true;
}

/// Calls visit(isOfLast, byte, lowest, highest) for each byte from the last one, which counts least, to the first one.
/// What both words have is left out of the last one.
template <typename Visit>
void TextDigits::ForEachByte(Visit visit) const
{
    for (std::size_t i = width; i-- != 2 * width - size;) {
        visit(true, i, lowest.last[i], highest.last[i]);
    }
    for (std::size_t i = width; i-- != 0;) {
        visit(false, i, lowest.first[i], highest.first[i]);
    }
}

std::uint64_t TextDigits::Bound() const
{
    std::uint64_t bound = width == 0 ? TOO_MANY : 1;
    if (width != 0) {
        ForEachByte([&bound](bool, std::size_t, std::uint8_t low, std::uint8_t high) {
            bound = bound >> 32 != 0 ? TOO_MANY : bound * (high - low + 1U);
        });
    }
    return bound >> 32 != 0 ? TOO_MANY : bound;
}

void TextDigits::Settle()
{
    std::uint32_t weight = 1;
    ForEachByte([this, &weight](bool isOfLast, std::size_t i, std::uint8_t low, std::uint8_t high) {
        if (low != high) {
            base += low * weight;
            digits[digitCount++] = {isOfLast, static_cast<std::uint8_t>(8 * i), weight};
            weight *= high - low + 1U;
        }
    });
}

/// Adds what one digit of each text is worth.
[[gnu::always_inline]] inline void TextDigits::AddEach(
    const std::uint64_t* words, const Digit& digit, std::size_t count, std::uint32_t* sums)
{
    const Digit own = digit; // which no sum can alter
    for (std::size_t i = 0; i < count; ++i) {
        sums[i] += static_cast<std::uint32_t>(words[i] >> own.shift & 0xFF) * own.weight;
    }
}

TESSERA_WIDE_VECTORS void TextDigits::AddWide(
    const std::uint64_t* words, const Digit& digit, std::size_t count, std::uint32_t* sums)
{
    AddEach(words, digit, count, sums);
}

template <typename Word, typename TextAt>
void TextDigits::ReadWords(TextAt textAt, std::size_t count, std::uint64_t* numbers) const
{
    std::array<std::array<std::uint64_t, MOST>, 2> words;
    std::array<std::uint32_t, MOST> sums;
    const std::size_t distance = size - sizeof(Word);
    for (std::size_t i = 0; i < count; ++i) {
        const char* const bytes = textAt(i).data();
        words[0][i] = LoadWord<Word>(bytes);
        words[1][i] = LoadWord<Word>(bytes + distance);
        sums[i] = 0U - base;
    }
    for (std::size_t k = 0; k < digitCount; ++k) {
        const std::uint64_t* const from = words[digits[k].isOfLast ? 1 : 0].data();
        HasWideVectors() ? AddWide(from, digits[k], count, sums.data()) : AddEach(from, digits[k], count, sums.data());
    }
    std::copy_n(sums.begin(), count, numbers);
}

template <typename TextAt>
void TextDigits::ReadEach(TextAt textAt, std::size_t count, std::uint64_t* numbers) const
{
    width == WORD ? ReadWords<std::uint64_t>(textAt, count, numbers) : ReadWords<std::uint32_t>(textAt, count, numbers);
}

void TextDigits::Read(std::span<const std::string> texts, std::uint64_t* numbers) const
{
    const auto textAt = [texts](std::size_t i) -> const std::string& {
        PrefetchLater(texts[i]);
        return texts[i];
    };
    ReadEach(textAt, texts.size(), numbers);
}

void TextDigits::Read(const std::string* texts, std::span<const std::uint32_t> positions, std::uint64_t* numbers) const
{
    const auto textAt = [texts, positions](std::size_t i) -> const std::string& { return texts[positions[i]]; };
    ReadEach(textAt, positions.size(), numbers);
}

} // namespace MERVO::Tessera
