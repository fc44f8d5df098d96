#pragma once

#include "tessera/core/data_frame.h"
#include "tessera/tessera.h"

namespace MERVO::Tessera {

/// True for a handle that holds a table, and nothing else.
TESSERA_API bool CheckDataFrame(const Tag_MERVO_TSR_CONTEXT* handle);
/// True for a handle that holds a window, and nothing else.
TESSERA_API bool CheckDataFrameRef(const Tag_MERVO_TSR_CONTEXT* handle);
/// The table or window behind a handle; null for a handle that holds neither or both.
TESSERA_API DataFrameRef* TableBehind(const Tag_MERVO_TSR_CONTEXT* handle);

} // namespace MERVO::Tessera
