#include "tessera/operations/nan_counts.h"

#include <algorithm>
#include <array>
#include <limits>

#include "tessera/core/bit_bytes.h"
#include "tessera/functors/nan_marks.h"

namespace MERVO::Tessera {
namespace {

/// Rows that are looked at together: what is kept of them fits into a first-level cache.
constexpr std::uint32_t BLOCK = 2048;

/// How many NaN each row of a block has.
class BlockCounts {
public:
    explicit BlockCounts(std::uint32_t length) : count(length) {}

    void Add(const NanSource& column, std::uint32_t first)
    {
        if (added == std::numeric_limits<std::uint8_t>::max()) {
            Widen();
        }
        column.Count(first, count, bytes.data());
        ++added;
    }
    const bool* MarksAbove(std::uint32_t limit)
    {
        Widen();
        for (std::uint32_t i = 0; i < count; ++i) {
            marks[i] = counts[i] > limit;
        }
        return marks.data();
    }

private:
    /// Bytes are counted up quickly, but not far.
    void Widen()
    {
        for (std::uint32_t i = 0; i < count; ++i) {
            counts[i] += bytes[i];
            bytes[i] = 0;
        }
        added = 0;
    }

    std::uint32_t count;
    std::uint32_t added = 0;
    std::array<std::uint32_t, BLOCK> counts{};
    std::array<std::uint8_t, BLOCK> bytes{};
    std::array<bool, BLOCK> marks;
};

} // namespace

NanSource::NanSource(const Cursor& column)
{
    if (column->GetAttr().typeId == TESSERA_FLOAT) {
        single = CursorAs<CONTAINER_ARRAY, float>(column).mHead;
    } else if (column->GetAttr().typeId == TESSERA_DOUBLE) {
        twice = CursorAs<CONTAINER_ARRAY, double>(column).mHead;
    }
}

void NanSource::Mark(std::uint32_t first, std::uint32_t count, bool* marks) const
{
    if (single != nullptr) {
        Func::MarkNans(single + first, marks, count);
    } else if (twice != nullptr) {
        Func::MarkNans(twice + first, marks, count);
    } else {
        std::fill_n(marks, count, false);
    }
}

void NanSource::Count(std::uint32_t first, std::uint32_t count, std::uint8_t* counts) const
{
    if (single != nullptr) {
        Func::CountNans(single + first, counts, count);
    } else if (twice != nullptr) {
        Func::CountNans(twice + first, counts, count);
    }
}

void MarkRowsByNans(std::span<const NanSource> columns, std::uint32_t rows, std::uint32_t limit, BitPosition marks)
{
    for (std::uint32_t first = 0; first < rows;) {
        const std::uint32_t count = std::min(BLOCK, rows - first);
        BlockCounts counts(count);
        for (const NanSource& column : columns) {
            if (column.CanHaveNan()) {
                counts.Add(column, first);
            }
        }
        PackBits(counts.MarksAbove(limit), marks, count);
        marks += count;
        first += count;
    }
}

bool HasMoreNans(const NanSource& column, std::uint32_t rows, std::uint32_t limit)
{
    std::uint32_t nans = 0;
    std::array<bool, BLOCK> marks;
    std::uint32_t left = column.CanHaveNan() ? rows : 0;
    while (nans <= limit && std::uint64_t{nans} + left > limit) { // else it is settled
        const std::uint32_t count = std::min(BLOCK, left);
        column.Mark(rows - left, count, marks.data());
        for (std::uint32_t i = 0; i < count; ++i) {
            nans += marks[i] ? 1 : 0;
        }
        left -= count;
    }
    return nans > limit;
}

} // namespace MERVO::Tessera
