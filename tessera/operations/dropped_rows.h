#pragma once

#include <cstdint>

#include "tessera/core/series.h"

namespace MERVO::Tessera {

/// Rows that go, a bit for each row of a table: a list of rows brought into the form that columns are cut by.
class DroppedRows {
public:
    explicit DroppedRows(std::uint32_t rowCount);

    /// False where memory for the marks was short; then nothing may be added.
    bool HasMarks() const { return marks != nullptr; }
    /// Adds a row below the row count; a second time it does nothing.
    void Add(std::uint32_t row);

    std::uint32_t Count() const { return count; }
    /// The last of the rows, 0 where there is none.
    std::uint32_t Largest() const { return largest; }
    /// The marks of all rows, true for those that go.
    const Cursor& Marks() const { return marks; }

private:
    SeriesPtr column;
    Cursor marks;
    std::uint32_t count = 0;
    std::uint32_t largest = 0;
};

} // namespace MERVO::Tessera
