#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>

namespace MERVO::Tessera {

/**
 * Reads texts of one size as numbers, their bytes as digits: such as "id0017", of which the first two bytes are the
 * same in all. Numbers are in the order of the texts, and equal where these are.
 */
class TextDigits {
public:
    /// Takes the size of all texts.
    explicit TextDigits(std::size_t textSize);

    /// Learns which digits texts have; false once numbers would be `most` or above, and all else is in vain.
    bool Meet(std::span<const std::string> texts, std::uint64_t most);
    /// All numbers are below this, which is TOO_MANY for more than 32 bits can count, and where texts are of several
    /// sizes, or of one for which two words are too many or too few.
    std::uint64_t Bound() const;
    static constexpr std::uint64_t TOO_MANY = std::numeric_limits<std::uint64_t>::max();

    /// Has to be called when all texts were met, and before they are read. The bound is within 32 bits.
    void Settle();
    /// Write the number of each text, adjacent ones or those at some positions; of no more than MOST at a time.
    void Read(std::span<const std::string> texts, std::uint64_t* numbers) const;
    void Read(const std::string* texts, std::span<const std::uint32_t> positions, std::uint64_t* numbers) const;
    static constexpr std::size_t MOST = 512;

private:
    static constexpr std::size_t WORD = sizeof(std::uint64_t);
    using Bytes [[gnu::vector_size(8)]] = std::uint8_t;
    /// A text's first and last bytes, between them all of it.
    struct Ends {
        Bytes first;
        Bytes last;
    };
    /// A byte that differs between texts: where in which word, and what one more of it adds to the number.
    struct Digit {
        bool isOfLast;
        std::uint8_t shift;
        std::uint32_t weight;
    };

    template <typename Word>
    void MeetWords(std::span<const std::string> texts);
    template <typename TextAt>
    void ReadEach(TextAt textAt, std::size_t count, std::uint64_t* numbers) const;
    template <typename Word, typename TextAt>
    void ReadWords(TextAt textAt, std::size_t count, std::uint64_t* numbers) const;
    static void AddEach(const std::uint64_t* words, const Digit& digit, std::size_t count, std::uint32_t* sums);
    static void AddWide(const std::uint64_t* words, const Digit& digit, std::size_t count, std::uint32_t* sums);
    template <typename Visit>
    void ForEachByte(Visit visit) const;

    std::size_t size;
    std::size_t width; ///< of a word; 0 where texts have no digits
    Ends lowest;
    Ends highest;
    std::array<Digit, 2 * WORD> digits;
    std::size_t digitCount = 0;
    std::uint32_t base = 0; ///< the lowest text's number, before it is taken off
};

} // namespace MERVO::Tessera
