#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "tessera/core/distinct_keys.h"
#include "tessera/core/distinct_texts.h"
#include "tessera/core/text_digits.h"
#include "tessera/operations/sort_keys.h"

namespace MERVO::Tessera {

/**
 * Numbers rows by their cells: equal rows get one number, and new ones the next, from 0 on in the order in which they
 * come. 0.0 and -0.0 are equal; floating cells are compared without a tolerance.
 *
 * A row's cells are packed into a key of 64 bits, each with as many bits as its column's range needs. Texts that can't
 * be read as numbers, and what would not fit, are numbered first. Working set: for each distinct row, and each value
 * numbered first, some 32 bytes, where texts come often up to 8 per row; or 4 bytes per row where the keys are few.
 */
class RowNumbers {
public:
    enum class Nan : std::uint8_t { ALL_EQUAL, NONE_EQUAL };

    /// Takes arrays of one length, of any value types but nested tables. Throws std::bad_alloc, as Number does.
    RowNumbers(std::span<const Cursor> columns, Nan nanRule);

    /// The number that the next row gets, unless it is equal to one before.
    [[nodiscard]] std::uint32_t Count() const;

    /// Whether texts are numbered first: how many bits their numbers need shows only at the end.
    [[nodiscard]] bool NumbersTexts() const;

    /// The most rows that are numbered at a time.
    static constexpr std::uint32_t BLOCK = 512;
    /// Numbers the rows at some positions.
    void Number(std::span<const std::uint32_t> positions, std::uint32_t* numbers);
    /// Numbers adjacent rows, upwards from a row or downwards to it.
    void NumberUp(std::uint32_t first, std::uint32_t count, std::uint32_t* numbers);
    void NumberDown(std::uint32_t first, std::uint32_t count, std::uint32_t* numbers);

private:
    /// A column's part in the keys.
    struct Part {
        std::unique_ptr<SortKeys> cells; ///< what a number's part is made of, less the lowest one
        std::uint64_t lowest = 0;
        const std::string* texts = nullptr;
        std::unique_ptr<TextDigits> digits;          ///< what texts of few digits take part by
        std::unique_ptr<DistinctTexts> textNumbers;  ///< by whose numbers all others do
        std::unique_ptr<DistinctKeys> ownNumbers;    ///< where a number takes part by its number
        std::unique_ptr<DistinctKeys> packedNumbers; ///< where what was packed before is numbered, to make room
        unsigned int bits = 0;
    };
    /// Up to BLOCK rows: those at given positions, or adjacent ones.
    struct Rows {
        const std::uint32_t* positions;
        std::uint32_t first;
        std::uint32_t count;
        bool isDownward;
    };

    void MeasureCells(Part& part, std::uint32_t rows) const;
    static void MeasureTexts(Part& part, std::uint32_t rows);
    static void NumberTexts(Part& part, const Rows& rows, std::uint32_t* numbers);
    void ReadNumbers(Part& part, const Rows& rows, std::uint64_t* keys);
    void NumberRows(const Rows& rows, std::uint32_t* numbers);

    std::vector<Part> parts;
    std::unique_ptr<DistinctKeys> rowNumbers; ///< null where the one column's numbers are the rows'
    Nan nan;
    std::uint64_t nanCount = 0;
};

} // namespace MERVO::Tessera
