#pragma once

#include "tessera/core/series.h"

namespace MERVO::Tessera::Func {

/**
 * A column's range in an array, for kernels that go back and forth in it.
 *
 * That is the range itself where it lies in an array, and a copy where it lies in a list. Throws std::bad_alloc without
 * memory for a copy.
 */
class ArrayForm {
public:
    explicit ArrayForm(const Cursor& column);

    /// The given cursor, or one on the copy, which lives as long as this object.
    const Cursor& Get() const { return copy == nullptr ? original : cursor; }

private:
    const Cursor& original;
    SeriesPtr copy;
    Cursor cursor;
};

/**
 * Room for results in an array, for kernels that fill one: the destination itself, or a column that Deliver copies into
 * it where it is a list. Throws std::bad_alloc without memory for that, as Deliver does.
 */
class ArrayRoom {
public:
    explicit ArrayRoom(const Cursor& destination);

    const Cursor& Get() const { return room == nullptr ? original : cursor; }
    void Deliver();

private:
    const Cursor& original;
    SeriesPtr room;
    Cursor cursor;
};

} // namespace MERVO::Tessera::Func
