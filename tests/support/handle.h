#pragma once

#include <gtest/gtest.h>

#include "tessera/tessera.hpp"

namespace MERVO::Tessera {

/// A handle that holds a table or a window, as a host of flat calls would keep it.
class Handle {
public:
    Handle() : context(MERVO_TSR_CreateDF()) {}
    explicit Handle(DataFrame table) : Handle() { *context->dataFrame = std::move(table); }
    explicit Handle(const DataFrameRef& window) : context(new MERVO_TSR_CONTEXT{nullptr, new DataFrameRef(window)}) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { EXPECT_EQ(MERVO_TSR_Release(&context), 0); }

    MERVO_TSR_CONTEXT* Get() const { return context; }
    DataFrame& Table() const { return *context->dataFrame; }

private:
    MERVO_TSR_CONTEXT* context;
};

} // namespace MERVO::Tessera
