#pragma once

#include "tessera/core/data_frame_view.h"

namespace MERVO::Tessera {

/// Whether a column has the window's rows. One may have been replaced by a shorter one since the window was cut.
inline bool HasRows(const DataFrameView& window, const SeriesPtr& column)
{
    const DataFrameView::Range& rows = window.GetRowIndex();
    return column != nullptr && rows[0] <= rows[1] && rows[1] <= column->Size();
}

/// Whether a window claims so many columns that are not there that a list of them would fill the memory. Only a host
/// that sets the window itself can make one; of a few missing columns each is treated as such.
inline bool IsFarBeyondColumns(const DataFrameView& window)
{
    constexpr unsigned int FEW = 1U << 16;
    return window.ColumnCount() > FEW && window.GetColumn(window.ColumnCount() - 1) == nullptr &&
        window.GetColumn(window.ColumnCount() - FEW) == nullptr;
}

} // namespace MERVO::Tessera
