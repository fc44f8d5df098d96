#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "tessera/core/series.h"
#include "tessera/functors/number_compression.h"

namespace MERVO::Tessera::Func {

/// A column in the making, an array of elements of another, to be appended by position. Texts are constructed where
/// they come to stand, without having been empty before.
class GatheredColumn {
public:
    /// Makes room for `length` elements. `source` is on an array, or null where memory was short.
    /// @param streams whether numbers are written past the caches, where AppendChosen serves them.
    GatheredColumn(Cursor source, std::uint32_t length, std::string name, bool streams);
    GatheredColumn(const GatheredColumn&) = delete;
    GatheredColumn& operator=(const GatheredColumn&) = delete;
    ~GatheredColumn() { FillTexts(); }

    /// False where memory was short; then nothing may be appended.
    bool HasRoom() const { return to != nullptr || next != end; }
    /// Appends the elements at some positions, each below source's length, and no more than there is room for. Throws
    /// std::bad_alloc where a long text has no room.
    void Append(std::span<const std::uint32_t> positions);
    /// Whether AppendChosen serves the column: numbers are copied by vectors, where the processor has the means. A
    /// column is appended to in one of the two ways only.
    bool IsCompressible() const { return compression.has_value(); }
    /// Appends the elements of chosen rows.
    void AppendChosen(const RowChoice& rows) { compression->Append(rows); }
    /// Gives the column away; texts that were not appended are empty.
    SeriesPtr Finish();

private:
    void AppendTexts(std::span<const std::uint32_t> positions);
    void FillTexts() { std::uninitialized_default_construct(std::exchange(next, end), end); }

    Cursor from;
    SeriesPtr column;
    Cursor to; ///< on what has not been appended, unless they are texts
    std::optional<NumberCompression> compression;
    std::string* next = nullptr; ///< the first of the texts that are not constructed yet
    std::string* end = nullptr;
};

} // namespace MERVO::Tessera::Func
