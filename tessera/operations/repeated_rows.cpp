#include "tessera/operations/repeated_rows.h"

#include <algorithm>
#include <array>

#include "tessera/operations/row_numbers.h"

namespace MERVO::Tessera {
namespace {

/// Marks the rows to which an equal one has come before.
void MarkLaterOnes(std::span<const Cursor> columns, std::span<std::uint8_t> marks)
{
    RowNumbers rows(columns, RowNumbers::Nan::ALL_EQUAL);
    std::array<std::uint32_t, RowNumbers::BLOCK> numbers;
    std::uint32_t met = 0;
    for (std::size_t first = 0; first < marks.size();) {
        const std::size_t count = std::min<std::size_t>(RowNumbers::BLOCK, marks.size() - first);
        rows.NumberUp(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(count), numbers.data());
        for (std::size_t i = 0; i < count; ++i) {
            const bool isNew = numbers[i] == met;
            met += isNew ? 1 : 0;
            marks[first + i] = isNew ? marks[first + i] : 1;
        }
        first += count;
    }
}

/// Marks the rows behind which an equal one comes.
void MarkEarlierOnes(std::span<const Cursor> columns, std::span<std::uint8_t> marks)
{
    RowNumbers rows(columns, RowNumbers::Nan::ALL_EQUAL);
    std::array<std::uint32_t, RowNumbers::BLOCK> numbers;
    std::uint32_t met = 0;
    for (std::size_t end = marks.size(); end != 0;) {
        const std::size_t count = std::min<std::size_t>(RowNumbers::BLOCK, end);
        end -= count;
        rows.NumberDown(static_cast<std::uint32_t>(end), static_cast<std::uint32_t>(count), numbers.data());
        for (std::size_t i = 0; i < count; ++i) {
            const bool isNew = numbers[i] == met;
            met += isNew ? 1 : 0;
            std::uint8_t& mark = marks[end + count - 1 - i];
            mark = isNew ? mark : 1;
        }
    }
}

} // namespace

bool IsComparedByBits(const Cursor& column)
{
    const MERVO_TESSERA_TYPEID type = column->GetAttr().typeId;
    return column->IsMemoryContiguous() && type != TESSERA_FLOAT && type != TESSERA_DOUBLE && type != TESSERA_DATAFRAME;
}

void MarkRepeats(std::span<const Cursor> columns, KeptRow kept, std::span<std::uint8_t> marks)
{
    std::fill(marks.begin(), marks.end(), std::uint8_t{0});
    if (kept != KeptRow::LAST) {
        MarkLaterOnes(columns, marks);
    }
    if (kept != KeptRow::FIRST) {
        MarkEarlierOnes(columns, marks);
    }
}

} // namespace MERVO::Tessera
