#pragma once

#include <cstdint>
#include <span>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera {

/// The elements of an array column, as far as NaN is concerned. It points into the column.
class NanSource {
public:
    explicit NanSource(const Cursor& column);

    /// Marks of `count` elements from `first` on whether they are NaN.
    void Mark(std::uint32_t first, std::uint32_t count, bool* marks) const;
    /// Counts 1 up for each of them that is NaN.
    void Count(std::uint32_t first, std::uint32_t count, std::uint8_t* counts) const;
    /// Whether an element of the column can be NaN at all.
    bool CanHaveNan() const { return single != nullptr || twice != nullptr; }
    /// The first element where they are of float, else null.
    const float* Floats() const { return single; }
    /// The same of double.
    const double* Doubles() const { return twice; }

private:
    const float* single = nullptr;
    const double* twice = nullptr;
};

/// Marks the rows in which more than `limit` of the columns are NaN. A column that comes several times counts as often.
void MarkRowsByNans(std::span<const NanSource> columns, std::uint32_t rows, std::uint32_t limit, BitPosition marks);

/// Tells whether more than `limit` elements of a column are NaN.
bool HasMoreNans(const NanSource& column, std::uint32_t rows, std::uint32_t limit);

} // namespace MERVO::Tessera
