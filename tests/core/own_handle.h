#pragma once

#include <memory>

#include "tessera/core/handles.h"
#include "tests/support/sample_columns.h"

namespace MERVO::Tessera {

/// Releases a handle by the call that hosts use.
struct ReleaseHandle {
    void operator()(MERVO_TSR_CONTEXT* handle) const { EXPECT_EQ(MERVO_TSR_Release(&handle), 0); }
};
using Handle = std::unique_ptr<MERVO_TSR_CONTEXT, ReleaseHandle>;

/// Handles that are released, as a host must, where they go out of scope.
inline Handle NewTable() { return Handle(MERVO_TSR_CreateDF()); }
inline Handle HandleOf(const DataFrameRef& window)
{
    return Handle(new MERVO_TSR_CONTEXT{nullptr, new DataFrameRef(window)});
}
inline Handle HandleOfTable(DataFrame&& table)
{
    return Handle(new MERVO_TSR_CONTEXT{new DataFrame(std::move(table)), nullptr});
}

} // namespace MERVO::Tessera
