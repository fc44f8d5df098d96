#pragma once

#include <functional>

#include "tessera/core/data_frame_view.h"
#include "tessera/core/factories.h"

namespace MERVO::Tessera::Func {

/// Tells whether a column suits what the functor asks for; a non-zero code stops the walk.
using AttributeCheck = std::function<ErrorCode(SeriesAttr& attr, const Cursor& cursor)>;

/**
 * Runs a nullary functor over the columns of a view.
 * @return 0, also for a view without columns; the view's own code if it failed before; the check's; or the functor's,
 *         which the view then holds.
 */
[[nodiscard]] ErrorCode ApplyNullaryCommon(
    const NullaryFactory& factory, DataFrameView& view, const AttributeCheck& check);

} // namespace MERVO::Tessera::Func
