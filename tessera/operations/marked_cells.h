#pragma once

#include "tessera/core/cursor.h"

namespace MERVO::Tessera {

/**
 * Copies the elements whose mark is as wanted, in their order, to the front of dst.
 *
 * It walks marks and src together, and ends where one of them does, or where dst is full. `marks` holds bools; src and
 * dst are different columns of one value type. Any containers are served. The cursors stay where they are. Throws
 * std::bad_alloc where a long text has no room, after which dst may stand elsewhere.
 */
void CopyMarked(const Cursor& src, const Cursor& marks, bool wanted, const Cursor& dst);

} // namespace MERVO::Tessera
