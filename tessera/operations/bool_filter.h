#pragma once

#include "tessera/core/data_frame.h"
#include "tessera/tessera.h"

namespace MERVO::Tessera {

/// The words of one way to filter; a shape that doesn't fit is not always told to the log.
struct FilterTexts {
    const char* invalidTable;
    const char* invalidFilter;
    const char* mismatch;
    const char* refusal;
};

/// Why a table can't be filtered; code 0 where it can. `fits` tells whether the filter has the wanted shape, and
/// `toldCode` is what the log is told of a filter that failed before.
Error FilterRefusal(
    const DataFrame& table, const DataFrame& filter, bool fits, ErrorCode toldCode, const FilterTexts& texts);

/// The table behind a handle that holds a table or a window; of a window `copy` becomes a copy.
const DataFrame& FilterBehind(const MERVO_TSR_CONTEXT* handle, DataFrame& copy);

} // namespace MERVO::Tessera
