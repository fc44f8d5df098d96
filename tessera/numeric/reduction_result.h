#pragma once

#include <array>

#include "tessera/core/cursor.h"
#include "tessera/core/error.h"

namespace MERVO::Tessera::Func {

/// For each value type of a column the type of the cell that a reduction makes of it; -1 where it makes none.
using ResultTypes = std::array<MERVO_TESSERA_TYPEID, ValueTypes::COUNT>;

/// What the destination of a reduction must be: the source's attribute with length 1 and the type of the result.
SeriesAttr GetResultAttr(const Cursor& src, const ResultTypes& types);

/// Tells whether a destination is what GetResultAttr wants, and the source of a type that has a result.
bool IsResultAttr(const Cursor& src, const Cursor& dst, const ResultTypes& types);

/// Writes the one cell of a reduction's destination. Returns 1, and writes nothing, where it holds another value type.
template <typename T>
ErrorCode StoreResult(const Cursor& dst, const T& result)
{
    const bool fits = dst->GetAttr().typeId == TYPE_ID_OF<T>;
    return fits && SetValueToIterator<T>(dst, result, 0) ? ERROR_NONE : ERROR_GENERAL;
}

} // namespace MERVO::Tessera::Func
