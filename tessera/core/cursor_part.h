#pragma once

#include <cstdint>

#include "tessera/core/cursor.h"

namespace MERVO::Tessera {

/// A cursor on `count` elements of another one's range, from element `first` on; all of them lie in the range. On a
/// list it walks there. Throws std::bad_alloc when memory is short.
Cursor PartOf(const Cursor& whole, std::uint32_t first, std::uint32_t count);

} // namespace MERVO::Tessera
