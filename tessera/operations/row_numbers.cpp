#include "tessera/operations/row_numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>

namespace MERVO::Tessera {
namespace {

constexpr unsigned int KEY_BITS = 64;

/// Replaces keys by their numbers.
void NumberInPlace(DistinctKeys& numbering, std::span<std::uint64_t> keys)
{
    std::array<std::uint32_t, RowNumbers::BLOCK> numbers;
    numbering.Number(keys, numbers.data());
    std::copy_n(numbers.begin(), keys.size(), keys.begin());
}

} // namespace

void RowNumbers::MeasureCells(Part& part, std::uint32_t rows) const
{
    if (rows == 0) {
        return;
    }
    const auto [lowest, highest] = part.cells->BoundsOf(rows);
    const bool hasUnequalNan = nan == Nan::NONE_EQUAL && part.cells->MayHaveNan() && highest == SortKeys::NAN_KEY;
    part.lowest = hasUnequalNan ? 0 : lowest; // each NaN takes one of the keys above those of all numbers
    part.bits = static_cast<unsigned int>(std::bit_width(highest - part.lowest));
}

/// Texts are read as numbers where a place for each number takes no more room than one for each row. A few different
/// ones, as the first texts show, are found faster in a table that the innermost cache holds.
void RowNumbers::MeasureTexts(Part& part, std::uint32_t rows)
{
    constexpr std::uint64_t FEW = 1024;
    const std::span<const std::string> texts(part.texts, rows);
    const auto firsts = texts.first(std::min(texts.size(), TextDigits::MOST));
    TextDigits digits(rows == 0 ? 0 : texts.front().size());
    if (rows != 0 && digits.Meet(firsts, rows) && digits.Bound() >= FEW &&
        digits.Meet(texts.subspan(firsts.size()), rows)) {
        digits.Settle();
        part.bits = static_cast<unsigned int>(std::bit_width(digits.Bound() - 1));
        part.digits = std::make_unique<TextDigits>(digits);
        return;
    }
    part.bits = static_cast<unsigned int>(std::bit_width(rows));
    part.textNumbers = std::make_unique<DistinctTexts>(texts);
}

RowNumbers::RowNumbers(std::span<const Cursor> columns, Nan nanRule) : nan(nanRule)
{
    const std::uint32_t rows = columns.empty() ? 0 : columns.front()->Length();
    const auto numberBits = static_cast<unsigned int>(std::bit_width(rows));
    unsigned int used = 0;
    for (const Cursor& column : columns) {
        Part& part = parts.emplace_back();
        if (column->GetAttr().typeId == TESSERA_STRING) {
            part.texts = CursorAs<CONTAINER_ARRAY, std::string>(column).mHead;
            MeasureTexts(part, rows);
        } else {
            part.cells = KeysOf(column);
            MeasureCells(part, rows);
        }
        if (used + part.bits > KEY_BITS && used > numberBits) {
            part.packedNumbers = std::make_unique<DistinctKeys>(used, rows);
            used = numberBits;
        }
        if (used + part.bits > KEY_BITS) {
            part.ownNumbers = std::make_unique<DistinctKeys>(part.bits, rows);
            part.bits = numberBits;
        }
        used += part.bits;
    }
    const bool isNumbered = parts.size() == 1 && parts.front().textNumbers != nullptr;
    rowNumbers = isNumbered ? nullptr : std::make_unique<DistinctKeys>(used, rows);
}

bool RowNumbers::NumbersTexts() const
{
    return std::any_of(parts.begin(), parts.end(), [](const Part& part) { return part.textNumbers != nullptr; });
}

std::uint32_t RowNumbers::Count() const
{
    return rowNumbers != nullptr ? rowNumbers->Count() : parts.front().textNumbers->Count();
}

void RowNumbers::NumberTexts(Part& part, const Rows& rows, std::uint32_t* numbers)
{
    if (rows.positions != nullptr) {
        part.textNumbers->Number({rows.positions, rows.count}, numbers);
    } else if (!rows.isDownward) {
        part.textNumbers->Number(rows.first, rows.count, numbers);
    } else {
        std::array<std::uint32_t, BLOCK> positions;
        std::iota(positions.rend() - rows.count, positions.rend(), rows.first);
        part.textNumbers->Number({positions.data(), rows.count}, numbers);
    }
}

void RowNumbers::ReadNumbers(Part& part, const Rows& rows, std::uint64_t* keys)
{
    if (part.digits != nullptr) {
        rows.positions != nullptr ? part.digits->Read(part.texts, {rows.positions, rows.count}, keys)
                                  : part.digits->Read({part.texts + rows.first, rows.count}, keys);
    } else if (rows.positions != nullptr) {
        part.cells->Read({rows.positions, rows.count}, 0, keys);
        for (std::uint32_t i = 0; i < rows.count; ++i) {
            keys[i] -= part.lowest;
        }
    } else {
        part.cells->ReadRange(rows.first, rows.count, part.lowest, keys);
    }
    if (rows.isDownward) {
        std::reverse(keys, keys + rows.count);
    }
    if (part.cells != nullptr && part.cells->MayHaveNan() && nan == Nan::NONE_EQUAL) {
        for (std::uint32_t i = 0; i < rows.count; ++i) {
            keys[i] -= keys[i] == SortKeys::NAN_KEY - part.lowest ? nanCount++ : 0;
        }
    }
    if (part.ownNumbers != nullptr) {
        NumberInPlace(*part.ownNumbers, {keys, rows.count});
    }
}

void RowNumbers::NumberRows(const Rows& rows, std::uint32_t* numbers)
{
    if (rowNumbers == nullptr) {
        NumberTexts(parts.front(), rows, numbers);
        return;
    }
    std::array<std::uint64_t, BLOCK> packed;
    std::array<std::uint64_t, BLOCK> next;
    if (parts.empty()) { // and all rows are equal
        std::fill_n(packed.begin(), rows.count, std::uint64_t{0});
    }
    for (Part& part : parts) {
        std::uint64_t* const keys = &part == &parts.front() ? packed.data() : next.data();
        if (part.packedNumbers != nullptr) {
            NumberInPlace(*part.packedNumbers, {packed.data(), rows.count});
        }
        if (part.textNumbers != nullptr) {
            NumberTexts(part, rows, numbers);
            std::copy_n(numbers, rows.count, keys);
        } else {
            ReadNumbers(part, rows, keys);
        }
        const unsigned int bits = part.bits % KEY_BITS; // beside a part of all bits, no other one has any
        for (std::uint32_t i = 0; keys == next.data() && i < rows.count; ++i) {
            packed[i] = packed[i] << bits | next[i];
        }
    }
    rowNumbers->Number({packed.data(), rows.count}, numbers);
}

void RowNumbers::Number(std::span<const std::uint32_t> positions, std::uint32_t* numbers)
{
    NumberRows({positions.data(), 0, static_cast<std::uint32_t>(positions.size()), false}, numbers);
}

void RowNumbers::NumberUp(std::uint32_t first, std::uint32_t count, std::uint32_t* numbers)
{
    NumberRows({nullptr, first, count, false}, numbers);
}

void RowNumbers::NumberDown(std::uint32_t first, std::uint32_t count, std::uint32_t* numbers)
{
    NumberRows({nullptr, first, count, true}, numbers);
}

} // namespace MERVO::Tessera
